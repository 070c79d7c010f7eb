#pragma once

#include "scriboradialog.h"

#include <QString>

class KeySequenceField;
class QButtonGroup;

namespace Ui
{
class HotKeyWin;
}

// Builds the custom function of a key or pen button: a key sequence, mouse and modifier
// keys, a program to start or a system function, as the string the input engine runs.
class HotKeyWin : public ScriboraDialog
{
    Q_OBJECT
public:
    explicit HotKeyWin(QWidget *parent = nullptr);
    ~HotKeyWin() override;

    void LoadCustomQString(QString str);
    // The display name; the function string goes to `out`.
    QString GetData(QString &out);
    // `ringNum` and `trackPad` of the device, and the product id from the key pages or the
    // index of the pen from the pen page; 11 for `ringNum` makes a wheel key's dialog.
    void LoadForRingNumber(short ringNum, short trackPad, int third);
    void InitUIForEraser(bool eraser);
    // "-1" closes the open combination instead of adding text.
    void AddKeyboardString(QString text, bool held);

public slots:
    void UpdateFunctionNameShow();
    void UseCustomFunName();
    void CustomNameTextChange();
    void BtnClickClearFuc();
    void BtnClickDeleteFuc();
    void BtnSelectFile();
    void onGetInputKeyFormString(QString title, QString codes);
    void onCloseInputKeyForm();

private slots:
    void on_hotkeywin_ok_button_clicked();
    void on_pushButton_cancel_clicked();
    void on_CloseButton_clicked();
    void on_pushButton_super_clicked();

private:
    void InitLanguageUI();
    void InitButtonGroups();
    void setMode(int mode);
    QString generatedName() const;
    QString mouseAndModifierNames() const;
    QString mouseAndModifierIds() const;
    void loadMouseAndModifierIds(const QString &ids);
    void loadFunction(int id);
    void arrangeFunctions();

    Ui::HotKeyWin *ui;
    QButtonGroup *m_modeGroup;
    QButtonGroup *m_functionGroup;
    QButtonGroup *m_modifierGroup;
    QButtonGroup *m_mouseGroup;
    KeySequenceField *m_keys = nullptr;
    bool m_ringFunctions = false;
};
