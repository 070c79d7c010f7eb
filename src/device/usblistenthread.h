#pragma once

#include <QMutex>
#include <QThread>
#include <atomic>
#include <memory>

class HotplugContext;
struct HotplugEvent;

// Turns libusb's hot-plug events for the vendor into a queued Qt signal.
class UsbListenThread : public QThread
{
    Q_OBJECT
public:
    explicit UsbListenThread(QObject *parent = nullptr);
    ~UsbListenThread() override;

    void create_listener();
    void Exit();
    void delete_listener();

    void tablet_callback(const HotplugEvent &event);

    static constexpr int kEventTimeoutUs = 500000;

signals:
    // state: 1 arrived, 2 left, as libusb numbers its events.
    void SentListenMsg(unsigned short vid, unsigned short pid, short state);

protected:
    void run() override;

private:
    std::atomic<bool> m_Stop{false};
    // Between Exit() on the GUI thread and the end of run().
    QMutex m_ContextMutex;
    std::unique_ptr<HotplugContext> m_Context;
    bool m_CallbackRegistered = false;
};
