#include "cglobaldata.h"

#include "ctablet.h"

QMap<QString, CTablet *> CGlobalData::TabletMap;
CTablet *CGlobalData::TabletArray[kTabletSlots] = {};
QMutex CGlobalData::ConfigFileWaitMutex;
QSettings *CGlobalData::Name_Config = nullptr;
QString CGlobalData::ConfigFolder = QStringLiteral("/usr/lib/scribora/conf/norva");

bool CGlobalTabletSlots::inputOf(int slot, QueuedTabletInput &input) const
{
    if (slot < 0 || slot >= kTabletSlots)
        return false;
    CTablet *tablet = CGlobalData::TabletArray[slot];
    if (!tablet || !tablet->m_TabletXMLData)
        return false;
    input.tablet = tablet;
    input.attributes = tablet->m_DeviceAttributes;
    input.settings = tablet->m_TabletXMLData;
    input.appConfigs = &tablet->m_AppConfigs;
    return true;
}
