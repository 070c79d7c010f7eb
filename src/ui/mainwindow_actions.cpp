// Action messages of the tablets: show, pen or eraser, fine mode, battery, touch strip.
#include "mainwindow.h"

#include "actionmessages.h"
#include "batterywidget.h"
#include "cglobaldata.h"
#include "ctablet.h"
#include "jingximode.h"
#include "jsonserver.h"
#include "textfield.h"

#include <QCursor>
#include <QDebug>
#include <QIcon>

#include <algorithm>

void MainWindow::ReceivActionMsg(int tabletId, int msgId, int msgData)
{
    // An unplug may overtake a queued message: start from the slot, not a pointer.
    if (tabletId < 0 || tabletId >= kTabletSlots || !CGlobalData::TabletArray[tabletId])
        return;
    CTablet *tablet = CGlobalData::TabletArray[tabletId];
    switch (msgId) {
    case kMsgShowDriver:
        OnShowDriver();
        break;
    case kMsgScreenMapping:
        // A remote moves every tablet on.
        for (int slot = 0; slot < kTabletSlots; ++slot) {
            const bool remote = tablet->m_DeviceAttributes.DeviceType == DeviceTypeRemote;
            if (CGlobalData::TabletArray[slot] && (remote || slot == tabletId))
                ChangeScreenForTablet(slot);
        }
        break;
    case kMsgPenEraser:
        if (tablet->m_DeviceAttributes.DeviceType == DeviceTypeRemote)
            SwitchOtherTablets(tabletId, msgData != 0);
        break;
    case kMsgFineMode:
        ToggleFineMode(tabletId);
        break;
    case kMsgBattery:
        onBatteryMsg(tablet, msgData);
        break;
    case kMsgPenChange:
        // The page follows the pen now on the tablet.
        if (tablet == m_CurrentTablet) {
            UpdatePenPicture();
            UpdataPenSelect(editedPenIndex());
        }
        break;
    case kMsgTrackPad:
        ToggleTouchStrip(tablet);
        break;
    case kMsgWirelessConnected:
        RestoreTouchStrip(tablet);
        break;
    case kMsgColourSpace:
    case kMsgColourTemperature:
    case kMsgRedGain:
    case kMsgGreenGain:
    case kMsgBlueGain:
    case kMsgBrightness:
    case kMsgContrast:
        onDisplayReply(tablet, msgId, msgData);
        break;
    default:
        break;
    }
}

void MainWindow::ReceivActionMsg(int tabletId, int msgId, QString text)
{
    if (tabletId < 0 || tabletId >= kTabletSlots || !CGlobalData::TabletArray[tabletId])
        return;
    CTablet *tablet = CGlobalData::TabletArray[tabletId];
    if (msgId == kMsgKeyGroup)
        onKeyGroupMessage(tablet, text);
    else if (msgId == kMsgKeyPreview)
        onKeyPreviewMessage(tablet, text);
    else if (msgId == kMsgRingFunctions || msgId == kMsgRing2Functions ||
             msgId == kMsgPenRingFunctions)
        onRingFunctionsMessage(tablet, msgId, text);
    if (msgId == kMsgUsage) {
        sendUsage([&] {
            return JsonServer::GetJsonData("tablet",
                                           fieldText(tablet->m_DeviceAttributes.PidString)) +
                   "," + text;
        });
    }
}

void MainWindow::onBatteryMsg(CTablet *tablet, int chargeState)
{
    noteLowBattery(tablet, chargeState);
    if (tablet != m_CurrentTablet || !m_BatteryWidget)
        return;
    m_BatteryWidget->SetBatteryValue(tablet->m_BatteryValue, chargeState);
    m_BatteryWidget->show();
    m_BatteryWidget->update();
}

// One tray warning per fall to 20 % or below; charging or a higher value re-arms it.
void MainWindow::noteLowBattery(CTablet *tablet, int chargeState)
{
    if (chargeState == 1) {
        tablet->m_LowBatteryNoted = 0;
        return;
    }
    qDebug() << "m_BatteryValue" << tablet->m_BatteryValue << tablet->m_LowBatteryNoted;
    if (tablet->m_BatteryValue > 20) {
        tablet->m_LowBatteryNoted = 0;
        return;
    }
    if (tablet->m_LowBatteryNoted || !m_TrayIcon)
        return;
    tablet->m_LowBatteryNoted = 1;
    const QString text = languageText("Common.battery", "Low Battery") + ":" +
                         QString::number(tablet->m_BatteryValue) + "%";
    m_TrayIcon->showMessage(QString(), text, QIcon(), 15000);
}

void MainWindow::RestoreTouchStrip(CTablet *tablet)
{
    const stTablet_XMLData *settings = tablet->m_TabletXMLData;
    if (!settings || settings->CommonAPP.Ring[1].type != 1)
        return;
    sendStripMode(tablet, settings->CommonAPP.Ring[1].mode != 0);
}

// A remote's Pen/Eraser switch acts on the pens of the other tablets.
void MainWindow::SwitchOtherTablets(int tabletId, bool eraser)
{
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        CTablet *other = CGlobalData::TabletArray[slot];
        if (other && slot != tabletId)
            other->ChangeTabletPenOrErase(eraser);
    }
}

void MainWindow::ToggleFineMode(int tabletId)
{
    if (m_JingXiMode) {
        emit m_JingXiMode->CloseJingxiMode();
        return;
    }
    OpenFineMode(tabletId);
}

// The overlay opens on the screen of the current mapping.
void MainWindow::OpenFineMode(int tabletId)
{
    const int screenId =
        m_CurrentTablet
            ? std::clamp<int>(m_CurrentTablet->m_TabletXMLData->ScreenId, 0, kScreenSlots - 1)
            : 0;
    m_JingXiMode = new JingXiMode(CGlobalData::ScreenArray[screenId], QCursor::pos(), this);
    connect(m_JingXiMode, &JingXiMode::GetModeRect, this, &MainWindow::GetBERect);
    connect(m_JingXiMode, &JingXiMode::CloseJingxiMode, this, &MainWindow::CloseJingxiMode);
    m_JingXiMode->show();
    CTablet *target = FineModeTarget(tabletId);
    if (target)
        target->m_TabletXMLData->bBERectOn = 1;
}

// A remote has no pen: the fine area goes to the first other tablet.
CTablet *MainWindow::FineModeTarget(int tabletId) const
{
    CTablet *sender = CGlobalData::TabletArray[tabletId];
    if (sender->m_DeviceAttributes.DeviceType != DeviceTypeRemote)
        return sender;
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        if (slot != tabletId && CGlobalData::TabletArray[slot])
            return CGlobalData::TabletArray[slot];
    }
    return nullptr;
}

void MainWindow::GetBERect(QRect rect)
{
    const stBERect area = {static_cast<int16_t>(rect.x()), static_cast<int16_t>(rect.y()),
                           static_cast<int16_t>(rect.width()), static_cast<int16_t>(rect.height())};
    if (m_CurrentTablet && m_CurrentTablet->m_TabletXMLData->bBERectOn) {
        m_CurrentTablet->m_TabletXMLData->BERect = area;
        return;
    }
    for (CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet && tablet->m_TabletXMLData->bBERectOn)
            tablet->m_TabletXMLData->BERect = area;
    }
}

// Reached from the overlay's own key handler, so it is deleted later.
void MainWindow::CloseJingxiMode()
{
    if (!m_JingXiMode)
        return;
    m_JingXiMode->close();
    m_JingXiMode->deleteLater();
    m_JingXiMode = nullptr;
    for (CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet)
            tablet->m_TabletXMLData->bBERectOn = 0;
    }
}
