// The pen display's picture settings: the dialog sends each choice to the current tablet, and
// the display's answers come back to it.
#include "mainwindow.h"

#include "actionmessages.h"
#include "cglobaldata.h"
#include "ctablet.h"
#include "devicecommands.h"
#include "displaymodels.h"
#include "displaysetting.h"

#include <QApplication>
#include <QDesktopWidget>

namespace
{
constexpr int kLowBlueBrightness = 80;
constexpr int kPlainBrightness = 50;
} // namespace

void MainWindow::on_pushButton_ScreenSetting_clicked()
{
    if (!m_CurrentTablet)
        return;
    delete m_DisplaySetting;
    m_DisplaySetting = new DisplaySetting(this);
    m_DisplaySetting->setAttribute(Qt::WA_DeleteOnClose);
    connect(this, &MainWindow::HideDialog, m_DisplaySetting, &QWidget::close);
    connect(m_DisplaySetting, &DisplaySetting::SendTabletCmd, this,
            &MainWindow::onScreenColorChange);
    setUpDisplaySetting(DisplayModels::productId(m_CurrentTablet->m_DeviceAttributes));
    m_DisplaySetting->show();
    sendUsageEvent("ScreenSettingClicked", "1", true);
}

void MainWindow::setUpDisplaySetting(int product)
{
    using namespace DisplayModels;
    const bool zone = product >= kFirstWithPictureSettings;
    m_DisplaySetting->SetColorZoneEnable(zone);
    if (zone) {
        m_CurrentTablet->SentCmd(kCmdDisplayState, 0, 0);
        if (hasFactoryValues(product))
            m_DisplaySetting->SetScreenFacturyValue(true);
    }
    QRect screen = displayScreenRect();
    m_DisplaySetting->SetZKDisplayInfo(&m_displayContent, screen);
    m_DisplaySetting->SupportContrast(!m_displayContent.bNoContrast);
    const bool lowBlue = hasLowBlueLight(product);
    m_DisplaySetting->Change5000KToLowBlueLineMode(lowBlue);
    const bool bright = lowBlue || product >= kFirstBrightByDefault;
    m_DisplaySetting->SetDefaultBright(bright ? kLowBlueBrightness : kPlainBrightness);
}

// The display's screen; with no screen index known, the whole desktop.
QRect MainWindow::displayScreenRect() const
{
    const int index = m_displayContent.nScreenIndex;
    if (index <= 0 || index >= kScreenSlots)
        return QApplication::desktop()->geometry();
    if (CGlobalData::LogicScreenArray[index].isEmpty())
        EnumLogicDisplay();
    return CGlobalData::LogicScreenArray[index];
}

void MainWindow::onScreenColorChange(int command, int p1, int p2)
{
    if (m_CurrentTablet)
        m_CurrentTablet->SentCmd(command, p1, p2);
}

// What the display reports after a setting or a state request, for the dialog of its tablet.
void MainWindow::onDisplayReply(CTablet *tablet, int msgId, int value)
{
    if (tablet != m_CurrentTablet || !m_DisplaySetting)
        return;
    const int none = -1;
    switch (msgId) {
    case kMsgColourSpace:
        m_DisplaySetting->SetColorMode(2, value, none, none, none, none, none);
        break;
    case kMsgColourTemperature:
        m_DisplaySetting->SetColorMode(1, value, none, none, none, none, none);
        break;
    case kMsgRedGain:
        m_DisplaySetting->SetColorMode(3, none, none, none, value, none, none);
        break;
    case kMsgGreenGain:
        m_DisplaySetting->SetColorMode(3, none, none, none, none, value, none);
        break;
    case kMsgBlueGain:
        m_DisplaySetting->SetColorMode(3, none, none, none, none, none, value);
        break;
    case kMsgBrightness:
        m_DisplaySetting->SetColorMode(none, none, value, none, none, none, none);
        break;
    case kMsgContrast:
        m_DisplaySetting->SetColorMode(none, none, none, value, none, none, none);
        break;
    default:
        break;
    }
}
