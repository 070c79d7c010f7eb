#include "dataaction.h"

#include "caction.h"
#include "cglobaldata.h"
#include "ctablet.h"

#include <QDebug>
#include <QMutexLocker>

DataAction::DataAction(QObject *parent)
    : QThread(parent), m_Action(new CAction), m_Settings(std::make_unique<stTablet_XMLData>())
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
        QMutexLocker lock(&CGlobalData::WaitMutex);
        CGlobalData::WaitCondition.wakeAll();
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
        QMutexLocker lock(&CGlobalData::WaitMutex);
        // Checked under the mutex, so a stop between the check and the wait is not lost.
        if (isInterruptionRequested())
            break;
        CGlobalData::WaitCondition.wait(&CGlobalData::WaitMutex);
        drainQueue();
    }
    qDebug() << "DataAction Thread exit";
}

void DataAction::drainQueue()
{
    for (;;) {
        TabletDataEX data;
        {
            QMutexLocker lock(&CGlobalData::DataMutex);
            if (CGlobalData::QueueTabletData.isEmpty())
                return;
            data = CGlobalData::QueueTabletData.dequeue();
        }
        if (data.tabletIndex < 0 || data.tabletIndex >= kTabletSlots)
            continue;
        CTablet *tablet = CGlobalData::TabletArray[data.tabletIndex];
        if (!tablet || !tablet->m_TabletXMLData)
            continue;
        _DEVICE_ATTRIBUTES attributes = tablet->m_DeviceAttributes;
        {
            QMutexLocker lock(&CGlobalData::XMLMutex);
            *m_Settings = *tablet->m_TabletXMLData;
        }
        m_Action->setDeviceIndex(data.tabletIndex);
        const _MultiData result =
            m_Action->ActionTabletData(data, attributes, m_Settings.get(), tablet->m_AppConfigs);
        emit SentMultiData(tablet, result);
    }
}
