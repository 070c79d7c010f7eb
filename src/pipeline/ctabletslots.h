#pragma once

#include "deviceattributes.h"
#include "settingsrecords.h"

#include <QMap>
#include <QString>

class CTablet;

// What a queued stage needs of the device in a slot.
struct QueuedTabletInput {
    CTablet *tablet = nullptr;
    _DEVICE_ATTRIBUTES attributes{};
    stTablet_XMLData *settings = nullptr;
    QMap<QString, _stAppConfigNode *> *appConfigs = nullptr;
};

// The device slots as the queued stages see them; the device link implements it.
class CTabletSlots
{
public:
    virtual ~CTabletSlots() = default;

    // False for an empty slot, an index out of range or a device without settings.
    virtual bool inputOf(int slot, QueuedTabletInput &input) const = 0;
};
