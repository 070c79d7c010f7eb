#pragma once

#include "cinputglobals.h"
#include "tabletdata.h"

#include <QMutex>
#include <QQueue>
#include <QWaitCondition>

// Process-wide state of the report pipeline, on top of the engine's.
class CPipelineGlobals : public CInputGlobals
{
public:
    CPipelineGlobals() = delete;

    // Input of the queued worker; nothing feeds it while reports take the direct route.
    static QQueue<TabletDataEX> QueueTabletData;
    static QMutex DataMutex;
    static QMutex WaitMutex;
    static QWaitCondition WaitCondition;
    // Held by the window while it changes mapping fields that a copy must not tear.
    static QMutex XMLMutex;
};
