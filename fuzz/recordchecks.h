#pragma once

// What the sanitizers cannot see in the plain records: a text field that lost
// its NUL was written past, into its neighbour in the same record.
#include "settingsrecords.h"

#include <cstdlib>
#include <cstring>

template <size_t N> void expectTerminated(const char (&field)[N])
{
    if (strnlen(field, N) == N)
        abort();
}

inline void expectTerminated(const _stAppConfigNode &node)
{
    expectTerminated(node.path);
    for (const stPenConfig &pen : node.Pen)
        for (const stPenBtn &button : pen.PenBtn)
            expectTerminated(button.func);
    for (const stRingConfig &ring : node.Ring)
        for (const stRingItem &item : ring.Item)
            expectTerminated(item.func);
    for (const stKeyConfig &key : node.Key)
        expectTerminated(key.func);
    for (const stKeyGroup &group : node.KeyGroup)
        for (const stKeyConfig &key : group.Key)
            expectTerminated(key.func);
}
