#include "creceivetabletdata.h"

#include "caction.h"
#include "cglobaldata.h"
#include "ctablet.h"

#include <QGuiApplication>

CReceiveTabletData::CReceiveTabletData(QObject *parent)
    : QObject(parent), m_Action(new CAction(this)), m_InputReady(m_Action->InitInput()),
      m_Settings(std::make_unique<stTablet_XMLData>())
{
    connect(m_Action, qOverload<int, int, int>(&CAction::PostActionMsg), this,
            &CReceiveTabletData::ReceivActionMsg);
}

CReceiveTabletData::~CReceiveTabletData() = default;

void CReceiveTabletData::ReceiveTabletDataEX(TabletDataEX data)
{
    if (data.tabletIndex < 0 || data.tabletIndex >= kTabletSlots)
        return;
    CTablet *tablet = CGlobalData::TabletArray[data.tabletIndex];
    if (!tablet || !tablet->m_TabletXMLData)
        return;
    _DEVICE_ATTRIBUTES attributes = tablet->m_DeviceAttributes;
    *m_Settings = *tablet->m_TabletXMLData;
    m_Action->setDeviceIndex(data.tabletIndex);
    const _MultiData result =
        m_Action->ActionTabletData(data, attributes, m_Settings.get(), tablet->m_AppConfigs);
    if (QGuiApplication::applicationState() == Qt::ApplicationActive)
        emit SentMultiData(tablet, result);
}

void CReceiveTabletData::ReceivActionMsg(int tabletId, int msgId, int msgData)
{
    emit PostActionMsg(tabletId, msgId, msgData);
}
