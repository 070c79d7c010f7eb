#include "tabletslots.h"

#include "cglobaldata.h"
#include "ctablet.h"

#include <QDebug>
#include <algorithm>
#include <cstring>
#include <iterator>

int TabletSlots::GetEmptyTabletArray()
{
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        if (!CGlobalData::TabletArray[slot])
            return slot;
    }
    return -1;
}

int TabletSlots::GetTabletArraySize()
{
    return static_cast<int>(std::count_if(std::begin(CGlobalData::TabletArray),
                                          std::end(CGlobalData::TabletArray),
                                          [](const CTablet *tablet) { return tablet != nullptr; }));
}

bool TabletSlots::isPathOpen(const char *path)
{
    for (const CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet && path && strcmp(tablet->m_DeviceAttributes.DevicePath, path) == 0)
            return true;
    }
    return false;
}

int TabletSlots::IsDeviceShowNameExit(const QString &pidString, const CTablet *except)
{
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        const CTablet *tablet = CGlobalData::TabletArray[slot];
        if (tablet && tablet != except &&
            pidString == QLatin1String(tablet->m_DeviceAttributes.PidString))
            return slot;
    }
    return -1;
}

QString TabletSlots::pidString(int pid)
{
    return QString::asprintf("PID_%04X", pid & 0xFFFF);
}

bool TabletSlots::GetSameTablet(int product)
{
    const QString pid = TabletSlots::pidString(product);
    for (const CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet && pid == QLatin1String(tablet->m_DeviceAttributes.PidString) &&
            CGlobalData::TabletMap.contains(QString::fromUtf8(tablet->m_DeviceAttributes.ShowName)))
            return true;
    }
    return false;
}

QString TabletSlots::DeleteMapItem(CTablet *tablet)
{
    for (auto entry = CGlobalData::TabletMap.begin(); entry != CGlobalData::TabletMap.end();
         ++entry) {
        if (entry.value() != tablet)
            continue;
        const QString key = entry.key();
        CGlobalData::TabletMap.erase(entry);
        return key;
    }
    return QString();
}

void TabletSlots::registerTablet(CTablet *tablet)
{
    const int slot = GetEmptyTabletArray();
    tablet->m_Index = slot;
    CGlobalData::TabletArray[slot] = tablet;
    const QString showName = QString::fromUtf8(tablet->m_DeviceAttributes.ShowName);
    CGlobalData::TabletMap[showName] = tablet;
    qDebug() << "EnmuTabeltDevice:" << showName
             << QString::fromUtf8(tablet->m_DeviceAttributes.ModelName);
}
