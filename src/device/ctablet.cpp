#include "ctablet.h"

#include "caction.h"
#include "cglobaldata.h"
#include "xmlhelp.h"

#include <QDebug>
#include <QHash>
#include <QMutexLocker>
#include <cstring>

CTablet::CTablet()
{
    m_TabletXMLData = new stTablet_XMLData{};
    m_IncomingNode = new _stAppConfigNode{};
    m_XMLHelp = new XMLHelp(CGlobalData::configFile("/config.xml"));
    memset(&m_DeviceAttributes, 0, sizeof m_DeviceAttributes);
    m_Action = new CAction(this);
    connect(m_Action, qOverload<int, int, int>(&CAction::PostActionMsg), this,
            qOverload<int, int, int>(&CTablet::ReceivActionMsg));
    connect(m_Action, qOverload<int, int, QString>(&CAction::PostActionMsg), this,
            qOverload<int, int, QString>(&CTablet::ReceivActionMsg));
}

CTablet::~CTablet()
{
    m_Active = false;
    ClearAppConfigs();
    delete m_XMLHelp;
    delete m_IncomingNode;
    delete m_TabletXMLData;
}

bool CTablet::InitTablet(const char *, const ZelkDevice &)
{
    return false;
}

void CTablet::SentCmd(int, int, int) {}

void CTablet::SentSaveFileCmd(int, unsigned char *, int) {}

void CTablet::SentReadFileCmd(int, int) {}

void CTablet::SaveConfigToDevice(QString, _stAppConfigNode *) {}

void CTablet::DelTablet() {}

void CTablet::SendCMDToGetTabletInfo() {}

void CTablet::ReceiveTabletPackets(quint8 *, int) {}

void CTablet::ReceivActionMsg(int tabletId, int msgId, int msgData)
{
    emit PostActionMsg(tabletId, msgId, msgData);
}

void CTablet::ReceivActionMsg(int tabletId, int msgId, QString appPath)
{
    emit PostActionMsg(tabletId, msgId, appPath);
}

// The records of an earlier load are freed here; the profile's cursor must
// not keep pointing at them.
void CTablet::ClearAppConfigs()
{
    qDeleteAll(m_AppConfigs);
    m_AppConfigs.clear();
    if (m_TabletXMLData)
        m_TabletXMLData->stAppConfigPtr = nullptr;
}

int CTablet::LoadXML(const char *name)
{
    ClearAppConfigs();
    int loaded = 0;
    {
        QMutexLocker lock(&CGlobalData::ConfigFileWaitMutex);
        loaded = m_XMLHelp ? m_XMLHelp->LoadConfig(m_TabletXMLData, name, m_AppConfigs) : 0;
    }
    if (!loaded) {
        qDebug() << "ReadXml Failed!";
        return 0;
    }
    qDebug() << "Function  LoadConfig success";
    m_PenSeenMask = -1;
    refreshCachedMapping();
    stTablet_XMLData &data = *m_TabletXMLData;
    if (data.TW == 0)
        data.TW = static_cast<int16_t>(m_DeviceAttributes.Width);
    if (data.TH == 0)
        data.TH = static_cast<int16_t>(m_DeviceAttributes.Height);
    if (data.SW == 0 && data.SH == 0)
        applyDefaultMapping();
    return 1;
}

void CTablet::applyDefaultMapping()
{
    stTablet_XMLData &data = *m_TabletXMLData;
    const int id = data.ScreenId;
    const QRect screen = id >= 0 && id < kScreenSlots ? CGlobalData::ScreenArray[id] : QRect();
    data.SX = static_cast<int16_t>(screen.left());
    data.SY = static_cast<int16_t>(screen.top());
    data.SW = static_cast<int16_t>(screen.right() - screen.left() + 1);
    data.SH = static_cast<int16_t>(screen.bottom() - screen.top() + 1);
    m_DefaultMappingPending = true;
}

void CTablet::refreshCachedMapping()
{
    const stTablet_XMLData &data = *m_TabletXMLData;
    m_MappedScreenId = data.ScreenId;
    m_MappedScreenRect = QRect(data.SX, data.SY, data.SW, data.SH);
}

void CTablet::CopySettingsFrom(const CTablet &other)
{
    ClearAppConfigs();
    *m_TabletXMLData = *other.m_TabletXMLData;
    QHash<const _stAppConfigNode *, _stAppConfigNode *> copies;
    for (auto it = other.m_AppConfigs.cbegin(); it != other.m_AppConfigs.cend(); ++it) {
        auto *copy = new _stAppConfigNode(*it.value());
        copies.insert(it.value(), copy);
        m_AppConfigs.insert(it.key(), copy);
    }
    for (_stAppConfigNode *copy : qAsConst(m_AppConfigs))
        copy->next = copies.value(copy->next, nullptr);
    m_TabletXMLData->CommonAPP.next = nullptr;
    m_TabletXMLData->stAppConfigPtr = copies.value(other.m_TabletXMLData->stAppConfigPtr, nullptr);
    refreshCachedMapping();
}
