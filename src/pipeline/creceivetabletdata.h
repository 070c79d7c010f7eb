#pragma once

#include "multidata.h"
#include "tabletdata.h"

#include <QObject>
#include <memory>

class CAction;
class CTablet;
class CTabletSlots;
struct stTablet_XMLData;

// Takes decoded reports by queued signal and runs them through an engine of its own.
// Held ready in place of the direct route; the driver does not create it.
class CReceiveTabletData : public QObject
{
    Q_OBJECT
public:
    explicit CReceiveTabletData(const CTabletSlots &tabletSlots, QObject *parent = nullptr);
    ~CReceiveTabletData() override;

    bool inputReady() const { return m_InputReady; }

signals:
    void SentMultiData(CTablet *tablet, MultiData data);
    void PostActionMsg(int tabletId, int msgId, int msgData);

public slots:
    void ReceiveTabletDataEX(TabletDataEX data);
    void ReceivActionMsg(int tabletId, int msgId, int msgData);

private:
    const CTabletSlots &m_Slots;
    CAction *m_Action;
    bool m_InputReady;
    std::unique_ptr<stTablet_XMLData> m_Settings;
};

Q_DECLARE_METATYPE(TabletDataEX)
