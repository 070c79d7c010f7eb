#pragma once

#include "settingsrecords.h"

#include <QStringList>

#include <functional>
#include <optional>

// The names of a wheel's usable functions, and which of them is now selected.
struct RingFunctionChoice {
    QStringList names;
    int index = 0;
};

// Moves `ring` on to its next usable function: slots on no action are skipped, and after
// the last slot the first comes again. `itemNumber` gives the "TR.Item.%1" number that names
// a slot's own function. Nothing when no slot is usable; the ring then stays as it was.
std::optional<RingFunctionChoice> NextRingFunction(stRingConfig &ring,
                                                   const std::function<int(int slot)> &itemNumber);
