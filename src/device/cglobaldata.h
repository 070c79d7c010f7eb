#pragma once

#include "cpipelineglobals.h"
#include "ctabletslots.h"
#include "languagetexts.h"

#include <QMap>
#include <QMutex>
#include <QString>

class CTablet;
class QSettings;

constexpr int kTabletSlots = 5;

// Process-wide state shared by the window, the devices and the engine. The engine's and
// the pipeline's own members are reached through it too.
class CGlobalData : public CPipelineGlobals, public LanguageTexts
{
public:
    CGlobalData() = delete;

    static QMap<QString, CTablet *> TabletMap;
    static CTablet *TabletArray[kTabletSlots];
    static QMutex ConfigFileWaitMutex;
    static QSettings *Name_Config;

    // The configuration folder; tests point it at a folder of their own.
    static QString ConfigFolder;
    static QString configFile(const QString &name) { return ConfigFolder + name; }
};

// The slots of CGlobalData::TabletArray, as the queued stages of the pipeline see them.
class CGlobalTabletSlots : public CTabletSlots
{
public:
    bool inputOf(int slot, QueuedTabletInput &input) const override;
};
