#include "replaytablet.h"

#include "cglobaldata.h"
#include "ctablet.h"
#include "devicethread.h"
#include "xmlhelp.h"

#include <cstdio>

namespace
{

constexpr int kReplayIndex = 0;

void fillScreenTable(QRect (&table)[kScreenSlots], const QVector<QRect> &screens)
{
    QRect desktop;
    for (int slot = 0; slot < kScreenSlots; ++slot)
        table[slot] = QRect();
    for (int i = 0; i < screens.size() && i + 1 < kScreenSlots; ++i) {
        table[i + 1] = screens.at(i);
        desktop = desktop.united(screens.at(i));
    }
    table[0] = desktop;
}

} // namespace

ReplayTablet::ReplayTablet() : m_tablet(std::make_unique<CTablet>()) {}

ReplayTablet::~ReplayTablet()
{
    if (CGlobalData::TabletArray[kReplayIndex] == m_tablet.get())
        CGlobalData::TabletArray[kReplayIndex] = nullptr;
}

// Screens and attributes come first: loading the profile fills an empty
// mapping from them.
bool ReplayTablet::setUp(const ReplayedTablet &description)
{
    installScreens(description.screens);
    setAttributes(description);
    if (!loadProfile(description))
        return false;
    m_tablet->m_ProductId = description.productId;
    m_tablet->m_Index = kReplayIndex;
    m_tablet->m_Active = true;
    CGlobalData::TabletArray[kReplayIndex] = m_tablet.get();
    return true;
}

void ReplayTablet::feed(quint8 *report, int length)
{
    if (DeviceThread::PassesOn(report))
        m_tablet->ReceiveTabletPackets(report, length);
}

void ReplayTablet::installScreens(const QVector<QRect> &screens)
{
    fillScreenTable(CGlobalData::ScreenArray, screens);
    fillScreenTable(CGlobalData::LogicScreenArray, screens);
    CGlobalData::ScreenNum = screens.size();
    CGlobalData::PrimaryID = 1;
}

void ReplayTablet::setAttributes(const ReplayedTablet &description)
{
    _DEVICE_ATTRIBUTES &attributes = m_tablet->m_DeviceAttributes;
    std::snprintf(attributes.PidString, sizeof attributes.PidString, "PID_%04X",
                  description.productId);
    attributes.DeviceType = description.deviceType;
    attributes.MaxX = description.maxX;
    attributes.MaxY = description.maxY;
    attributes.MaxPressure = description.maxPressure;
    // As from the device: LPI 0 means the default.
    attributes.LPI = description.lpi > 0 ? description.lpi : kDefaultLpi;
    attributes.Width = static_cast<int>(description.maxX * 100 / attributes.LPI);
    attributes.Height = static_cast<int>(description.maxY * 100 / attributes.LPI);
}

// The tablet's own reader is pointed at the given file, so that the load is
// the session's own and the installed configuration folder stays untouched.
bool ReplayTablet::loadProfile(const ReplayedTablet &description)
{
    delete m_tablet->m_XMLHelp;
    m_tablet->m_XMLHelp = new XMLHelp(description.configFile);
    if (m_tablet->LoadXML(description.model.toUtf8().constData()))
        return true;
    m_error = QString("cannot load section '%1' of profile '%2'")
                  .arg(description.model, description.configFile);
    return false;
}
