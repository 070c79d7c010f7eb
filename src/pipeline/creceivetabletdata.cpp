#include "creceivetabletdata.h"

#include "caction.h"
#include "ctabletslots.h"

#include <QGuiApplication>

CReceiveTabletData::CReceiveTabletData(const CTabletSlots &tabletSlots, QObject *parent)
    : QObject(parent), m_Slots(tabletSlots), m_Action(new CAction(this)),
      m_InputReady(m_Action->InitInput()), m_Settings(std::make_unique<stTablet_XMLData>())
{
    connect(m_Action, qOverload<int, int, int>(&CAction::PostActionMsg), this,
            &CReceiveTabletData::ReceivActionMsg);
}

CReceiveTabletData::~CReceiveTabletData() = default;

void CReceiveTabletData::ReceiveTabletDataEX(TabletDataEX data)
{
    QueuedTabletInput input;
    if (!m_Slots.inputOf(data.tabletIndex, input))
        return;
    *m_Settings = *input.settings;
    m_Action->setDeviceIndex(data.tabletIndex);
    const _MultiData result =
        m_Action->ActionTabletData(data, input.attributes, m_Settings.get(), *input.appConfigs);
    if (QGuiApplication::applicationState() == Qt::ApplicationActive)
        emit SentMultiData(input.tablet, result);
}

void CReceiveTabletData::ReceivActionMsg(int tabletId, int msgId, int msgData)
{
    emit PostActionMsg(tabletId, msgId, msgData);
}
