#pragma once

#include <QString>

class CTablet;

// The five tablet slots and the map by show name in CGlobalData; GUI thread only.
class TabletSlots
{
public:
    TabletSlots() = delete;

    // The first free slot, or -1 when all five are in use.
    // The "PID_%04X" name of a product, as PidString holds it.
    static QString pidString(int pid);
    static int GetEmptyTabletArray();
    static int GetTabletArraySize();
    static bool isPathOpen(const char *path);
    // Despite its name it compares PID strings: the slot of the first equal tablet other than
    // except, or -1.
    static int IsDeviceShowNameExit(const QString &pidString, const CTablet *except = nullptr);
    // Whether a tablet of the product is open and named in the map.
    static bool GetSameTablet(int pid);
    // Removes the first map entry of the tablet and gives its key, empty if there is none.
    static QString DeleteMapItem(CTablet *tablet);
    // Puts the tablet in the first free slot, which must exist, and maps its show name to it;
    // a like tablet registered earlier loses its map entry.
    static void registerTablet(CTablet *tablet);
};
