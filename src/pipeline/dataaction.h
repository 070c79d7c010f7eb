#pragma once

#include "multidata.h"

#include <QThread>
#include <memory>

class CAction;
class CTablet;
class CTabletSlots;
struct stTablet_XMLData;

// The queued alternative to the direct report route: a worker that drains
// CPipelineGlobals::QueueTabletData into its own engine. The driver does not start it.
class DataAction : public QThread
{
    Q_OBJECT
public:
    explicit DataAction(const CTabletSlots &tabletSlots, QObject *parent = nullptr);
    ~DataAction() override;

    // Ends the loop; the wait is woken, since an interruption request alone does not.
    void stop();

signals:
    void SentMultiData(CTablet *tablet, MultiData data);
    void PostActionMsg(int tabletId, int msgId, int msgData);

public slots:
    void ReceivActionMsg(int tabletId, int msgId, int msgData);

protected:
    void run() override;

private:
    void drainQueue();

    const CTabletSlots &m_Slots;
    CAction *m_Action;
    // A settings copy is too large for the thread's stack.
    std::unique_ptr<stTablet_XMLData> m_Settings;
};
