#pragma once

#include "scriboradialog.h"

#include <QString>

class KeySequenceField;
class QButtonGroup;

namespace Ui
{
class RollerKey;
}

// Builds a custom wheel function: one key sequence for each way the wheel turns, as the
// string "4|name|keys1|keys2|tokens1|tokens2" that the input engine runs.
class RollerKey : public ScriboraDialog
{
    Q_OBJECT
public:
    // Field 0 serves direction -1, field 1 direction +1.
    static constexpr int kFieldCount = 2;

    explicit RollerKey(QWidget *parent = nullptr);
    ~RollerKey() override;

    // Takes a stored function of six fields; anything else leaves the dialog empty.
    void LoadDataForDialog(QString str);
    // The display name; the function string goes to `out`.
    QString GetData(QString &out);
    // Adds a key name to `field`; "-1" closes its open combination instead.
    void AddKeyboardString(QString text, bool held, int field);

public slots:
    void onButtonOkClick();
    // A field's delete, clear or Super key button.
    void buttonNumslot(int button);
    void UseCustomFunName();
    void UpdateFunctionNameShow();
    void CustomNameTextChange();

private slots:
    void on_pushButton_cancel_clicked();
    void on_CloseButton_clicked();

private:
    void InitLanguageUI();
    void InitButtons();
    QString generatedName() const;

    Ui::RollerKey *ui;
    KeySequenceField *m_fields[kFieldCount] = {};
    QButtonGroup *m_buttons;
};
