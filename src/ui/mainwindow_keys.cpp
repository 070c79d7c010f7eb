// The key page: one choice box per express key; for the remote, its four key groups, its
// all-keys dialog and the keypad preview on the desktop.
#include "mainwindow.h"

#include "buttonlistwidget.h"
#include "cglobaldata.h"
#include "checktextbutton.h"
#include "ctablet.h"
#include "customkeyfunction.h"
#include "hotkeygroups.h"
#include "hotkeysettingdialog.h"
#include "importsettingdialog.h"
#include "jsonserver.h"
#include "keypreviewswitch.h"
#include "keyslot.h"
#include "textfield.h"
#include "ui_mainwindow.h"

#include <QCursor>
#include <QDebug>
#include <QScrollArea>

#include <cstring>

namespace
{
// The page shows through the list's empty parts.
void putListInto(QScrollArea *area, buttonListWidget *list)
{
    area->setWidget(list);
    area->viewport()->setAutoFillBackground(false);
    list->setAutoFillBackground(false);
}
} // namespace

// Once, from the constructor: the two lists, the group tabs and the preview switch.
void MainWindow::createKeyPages()
{
    m_KeyLists[0] = new buttonListWidget;
    m_KeyLists[1] = new buttonListWidget;
    putListInto(ui->scrollArea_key, m_KeyLists[0]);
    putListInto(ui->scrollArea_keypad, m_KeyLists[1]);
    for (buttonListWidget *list : m_KeyLists)
        connect(list, &buttonListWidget::onComboBoxHotkeySignal, this,
                &MainWindow::ComboBoxKeyActivated);
    m_KeyGroups =
        new HotKeyGroups({ui->GroupTab1, ui->GroupTab2, ui->GroupTab3, ui->GroupTab4}, this);
    connect(m_KeyGroups, &HotKeyGroups::GroupShown, this,
            [this](_stAppConfigNode *record, int orientation) {
                m_KeyPreview->Refresh(record, orientation);
            });
    m_KeyPreview = new KeyPreviewSwitch(this);
    connect(ui->pushButton_hotkey, &QPushButton::clicked, this,
            &MainWindow::onResetHotkeyDefaultSetting);
}

void MainWindow::InitKeyUI(int count)
{
    if (!m_KeyLists[0])
        createKeyPages();
    stTablet_XMLData *settings = mappedProfile();
    if (!settings)
        return;
    const bool grouped = settings->SupportGroupKeys != 0;
    buttonListWidget *list = m_KeyLists[grouped ? 1 : 0];
    list->setHotkeyCount(count);
    if (!grouped)
        ui->HotkeyPushButton->setVisible(count > buttonListWidget::kShownKeys);
    m_KeyGroups->SetRecord(grouped ? editedRecord() : nullptr, settings);
    m_KeyGroups->SetKeySlots(grouped ? list->keySlots() : QVector<KeySlot>());
    if (grouped) {
        SelectM07HotKeyGroup(editedRecord()->SelectID);
        return;
    }
    for (int key = 0; key < list->keySlots().size(); ++key)
        list->keySlots()[key].Show(editedRecord()->Key[key]);
}

stKeyConfig *MainWindow::editedKey(int key) const
{
    stTablet_XMLData *settings = mappedProfile();
    if (!settings || key < 0 || key >= kKeyCount)
        return nullptr;
    _stAppConfigNode &record = *editedRecord();
    return settings->SupportGroupKeys ? &record.KeyGroup[m_KeyGroups->CurrentGroup()].Key[key]
                                      : &record.Key[key];
}

void MainWindow::ComboBoxKeyActivated(int key)
{
    qDebug() << "Function  ComboBoxKeyActivated:" << key;
    stKeyConfig *target = editedKey(key);
    stTablet_XMLData *settings = mappedProfile();
    const QVector<KeySlot> &boxes = m_KeyLists[settings && settings->SupportGroupKeys]->keySlots();
    if (!target || key >= boxes.size())
        return;
    boxes[key].Activate(*target, [this, settings](QString &func) {
        return EditCustomKeyFunction(
            this, *settings, productIdOf(fieldText(m_CurrentTablet->m_DeviceAttributes.PidString)),
            func);
    });
    sendUsage([&] {
        return keyActivatedEvent(*target, fieldText(editedRecord()->path), currentTabletName());
    });
}

void MainWindow::onResetHotkeyDefaultSetting()
{
    stTablet_XMLData *settings = mappedProfile();
    if (!settings || settings->DeviceKeyNum <= 0)
        return;
    const QVector<KeySlot> &boxes = m_KeyLists[0]->keySlots();
    for (int key = 0; key < boxes.size(); ++key)
        boxes[key].Reset(editedRecord()->Key[key]);
    sendUsage([&] {
        return JsonServer::GetJsonDataSon(
                   "ResetHotkeySetting",
                   JsonServer::GetJsonData("curapp", fieldText(editedRecord()->path))) +
               "," + JsonServer::GetJsonData("tablet", currentTabletName());
    });
}

void MainWindow::SelectM07HotKeyGroup(int group)
{
    m_KeyGroups->SelectM07HotKeyGroup(group);
}

void MainWindow::onSelectHotKeyItem(int group, bool on, int unused)
{
    m_KeyGroups->onSelectHotKeyItem(group, on, unused);
}

void MainWindow::onSelectAppHotKeyItem(int group, bool on, int unused, _stAppConfigNode *record)
{
    m_KeyGroups->onSelectAppHotKeyItem(group, on, unused, record);
}

void MainWindow::on_HotkeyPushButton_clicked()
{
    openAllKeys(false);
}

void MainWindow::on_HotkeyPushButton_QRM07_clicked()
{
    openAllKeys(true);
}

// Every key at once over the device picture; the page shows what the dialog changed.
void MainWindow::openAllKeys(bool grouped)
{
    stTablet_XMLData *settings = mappedProfile();
    if (!settings)
        return;
    HotkeySettingDialog dialog(this);
    connect(this, &MainWindow::HideDialog, &dialog, &QWidget::close);
    connect(&dialog, &HotkeySettingDialog::SendJsonDataToServer, this,
            &MainWindow::onSendJsonDataToServer);
    dialog.initWidget(settings->DeviceKeyNum,
                      productIdOf(fieldText(m_CurrentTablet->m_DeviceAttributes.PidString)));
    const int group = m_KeyGroups->CurrentGroup();
    if (grouped)
        dialog.SetCurUISelectID(group);
    dialog.LoadDefaultHotkeyInfo(
        editedRecord(),
        QString(":/image/tablet/HY_%1_K%2.png")
            .arg(QString::fromUtf8(m_CurrentTablet->m_DeviceAttributes.ModelName))
            .arg(settings->Orientation),
        settings);
    dialog.ChangeDialogSize(settings->DeviceKeyNum);
    sendUsageEvent("HotkeyPushButtonClicked", "1", true);
    dialog.ShowDialogInCenter();
    dialog.exec();
    if (grouped)
        SelectM07HotKeyGroup(group);
    else
        InitUI(currentTabletName());
}

// The remote back to its first group, every key and the wheel to their own actions.
void MainWindow::on_DefaultQRM07Button_clicked()
{
    stTablet_XMLData *settings = mappedProfile();
    if (!settings)
        return;
    _stAppConfigNode &record = *editedRecord();
    for (int group = 0; group < kKeyGroupCount; ++group) {
        record.KeyGroup[group].bEnable = group == 0;
        for (stKeyConfig &key : record.KeyGroup[group].Key)
            key.id = 0;
    }
    record.SelectID = 0;
    onSelectHotKeyItem(0, true, 0);
    record.Ring[0].id = 0;
    for (stRingItem &item : record.Ring[0].Item)
        item.id = 0;
}

// The key group the device switched to, in the record of the application in front.
void MainWindow::onKeyGroupMessage(CTablet *tablet, const QString &app)
{
    _stAppConfigNode *record = appRecord(tablet, app);
    onSelectAppHotKeyItem(record->SelectID, true, 0, record);
    m_KeyPreview->Refresh(record, tablet->m_TabletXMLData->Orientation);
}

// The preview key shows the keypad over the screen under the cursor, or takes it away.
void MainWindow::onKeyPreviewMessage(CTablet *tablet, const QString &app)
{
    EnumLogicDisplay();
    m_KeyPreviewTablet = tablet;
    m_KeyPreview->Toggle(appRecord(tablet, app), tablet->m_TabletXMLData->Orientation,
                         KeyPreviewSwitch::FrameAt(QCursor::pos()));
}

_stAppConfigNode *MainWindow::appRecord(CTablet *tablet, const QString &app) const
{
    _stAppConfigNode *record = app.isEmpty() ? nullptr : tablet->m_AppConfigs.value(app, nullptr);
    return record ? record : &tablet->m_TabletXMLData->CommonAPP;
}

void MainWindow::closeKeyPreviewOf(CTablet *tablet)
{
    if (tablet == m_KeyPreviewTablet)
        m_KeyPreview->Close();
}

// The remote keeps the key groups and the wheel of the edited record in its own memory.
void MainWindow::on_SaveQRM07Button_clicked()
{
    transferRemoteProfile(false);
}

// What the remote keeps replaces the edited record's key groups and wheels; its pens stay.
void MainWindow::on_ImportQRM07Button_clicked()
{
    transferRemoteProfile(true);
}

void MainWindow::transferRemoteProfile(bool read)
{
    if (!m_CurrentTablet)
        return;
    // The remote may be unplugged, and freed, while the dialog runs.
    const QPointer<CTablet> tablet = m_CurrentTablet;
    ImportSettingDialog dialog(this);
    connect(this, &MainWindow::HideDialog, &dialog,
            &ImportSettingDialog::on_ImportCloseButton_clicked);
    dialog.setCurrentTablet(tablet, editedRecord(), read);
    dialog.ShowDialogInCenter();
    const int result = dialog.exec();
    if (!tablet)
        return;
    disconnect(tablet, &CTablet::PostDeviceOperatorMsg, &dialog, nullptr);
    if (!read || result != QDialog::Accepted || !tablet->m_IncomingNode ||
        tablet != m_CurrentTablet)
        return;
    _stAppConfigNode &record = *editedRecord();
    const _stAppConfigNode &incoming = *tablet->m_IncomingNode;
    record.SelectID = incoming.SelectID;
    std::memcpy(record.path, incoming.path, sizeof record.path);
    std::memcpy(record.KeyGroup, incoming.KeyGroup, sizeof record.KeyGroup);
    std::memcpy(record.Ring, incoming.Ring, sizeof record.Ring);
    UpdateUIByAppChange();
}
