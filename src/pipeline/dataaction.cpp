#include "dataaction.h"

#include "caction.h"
#include "cpipelineglobals.h"
#include "ctabletslots.h"

#include <QDebug>
#include <QMutexLocker>

DataAction::DataAction(const CTabletSlots &tabletSlots, QObject *parent)
    : QThread(parent), m_Slots(tabletSlots), m_Action(new CAction),
      m_Settings(std::make_unique<stTablet_XMLData>())
{
    connect(m_Action, qOverload<int, int, int>(&CAction::PostActionMsg), this,
            &DataAction::ReceivActionMsg);
}

DataAction::~DataAction()
{
    stop();
    delete m_Action;
}

void DataAction::stop()
{
    requestInterruption();
    {
        QMutexLocker lock(&CPipelineGlobals::WaitMutex);
        CPipelineGlobals::WaitCondition.wakeAll();
    }
    wait();
}

void DataAction::ReceivActionMsg(int tabletId, int msgId, int msgData)
{
    qDebug() << "DataAction ReceivActionMsg:" << tabletId << msgId << msgData;
    emit PostActionMsg(tabletId, msgId, msgData);
}

void DataAction::run()
{
    for (;;) {
        QMutexLocker lock(&CPipelineGlobals::WaitMutex);
        // Checked under the mutex, so a stop between the check and the wait is not lost.
        if (isInterruptionRequested())
            break;
        CPipelineGlobals::WaitCondition.wait(&CPipelineGlobals::WaitMutex);
        drainQueue();
    }
    qDebug() << "DataAction Thread exit";
}

void DataAction::drainQueue()
{
    for (;;) {
        TabletDataEX data;
        {
            QMutexLocker lock(&CPipelineGlobals::DataMutex);
            if (CPipelineGlobals::QueueTabletData.isEmpty())
                return;
            data = CPipelineGlobals::QueueTabletData.dequeue();
        }
        QueuedTabletInput input;
        if (!m_Slots.inputOf(data.tabletIndex, input))
            continue;
        {
            QMutexLocker lock(&CPipelineGlobals::XMLMutex);
            *m_Settings = *input.settings;
        }
        m_Action->setDeviceIndex(data.tabletIndex);
        const _MultiData result =
            m_Action->ActionTabletData(data, input.attributes, m_Settings.get(), *input.appConfigs);
        emit SentMultiData(input.tablet, result);
    }
}
