#include "cpipelineglobals.h"

QQueue<TabletDataEX> CPipelineGlobals::QueueTabletData;
QMutex CPipelineGlobals::DataMutex;
QMutex CPipelineGlobals::WaitMutex;
QWaitCondition CPipelineGlobals::WaitCondition;
QMutex CPipelineGlobals::XMLMutex;
