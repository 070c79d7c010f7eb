#pragma once

#include "keyslot.h"
#include "scriboradialog.h"

#include <QString>
#include <QVector>

class HotKeyWidget;

namespace Ui
{
class HotkeySettingDialog;
}

// Every express key of a device at once: one box per key under a picture of the device. It
// edits the keys of the record given, in place; a grouped device shows one group.
class HotkeySettingDialog : public ScriboraDialog
{
    Q_OBJECT
public:
    explicit HotkeySettingDialog(QWidget *parent = nullptr);
    ~HotkeySettingDialog() override;

    // One box per key, placed for that count; `pid` is the device's product id.
    void initWidget(int count, int pid);
    // The key group shown, for a device with groups.
    void SetCurUISelectID(int group);
    // `picture` is a resource path of the device picture.
    void LoadDefaultHotkeyInfo(_stAppConfigNode *record, QString picture,
                               stTablet_XMLData *settings);
    void ChangeDialogSize(int count);
    void UpdateHotkeyPositon(int count);

public slots:
    void ComboBoxKeyActivated(int key);

signals:
    void SendJsonDataToServer(QString message);

private slots:
    void on_CloseButton_clicked();
    void on_pushButton_ok_clicked();

private:
    void InitLanguageUI();
    stKeyConfig *keyRecord(int key) const;
    void fitListToCells();

    Ui::HotkeySettingDialog *ui;
    QVector<HotKeyWidget *> m_Cells;
    int m_Count = 0;
    int m_Pid = 0;
    int m_Group = 0;
    _stAppConfigNode *m_Record = nullptr;
    stTablet_XMLData *m_Settings = nullptr;
};
