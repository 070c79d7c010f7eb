#include "usblistenthread.h"

#include "usblink.h"
#include "zelkdevice.h"

#include <QDebug>
#include <cstdio>

UsbListenThread::UsbListenThread(QObject *parent) : QThread(parent)
{
    create_listener();
}

// A listener that never ran still holds its context.
UsbListenThread::~UsbListenThread()
{
    delete_listener();
}

// Every failure leaves the program without hot-plug, with the devices seen at start.
void UsbListenThread::create_listener()
{
    m_Context = usbLink().hotplugContext();
    if (!m_Context) {
        std::puts("initialize libusb failed");
        return;
    }
    if (!m_Context->hasHotplug()) {
        std::puts("this version's libusb doesn't support hotplug");
        return;
    }
    m_CallbackRegistered = m_Context->registerCallback(
        kVendorId, [this](const HotplugEvent &event) { tablet_callback(event); });
    if (!m_CallbackRegistered)
        std::puts("resigter hotplug_callback failed");
}

void UsbListenThread::run()
{
    while (m_Context && !m_Stop)
        m_Context->handleEvents(kEventTimeoutUs);
    delete_listener();
}

// Wakes the event wait at once rather than at its time-out: quitting waits
// for this thread. The lock keeps the context from going away meanwhile.
void UsbListenThread::Exit()
{
    m_Stop = true;
    QMutexLocker lock(&m_ContextMutex);
    if (m_Context)
        m_Context->interruptEvents();
}

void UsbListenThread::delete_listener()
{
    QMutexLocker lock(&m_ContextMutex);
    if (m_CallbackRegistered) {
        m_Context->deregisterCallback();
        m_CallbackRegistered = false;
    }
    m_Context.reset();
}

// Runs inside libusb's event handling: the GUI thread does all the work.
void UsbListenThread::tablet_callback(const HotplugEvent &event)
{
    if (!event.described)
        return;
    qDebug("VENDOR(0x%x) PRODUCT(0x%x)\n", event.vendorId, event.productId);
    emit SentListenMsg(event.vendorId, event.productId, event.event);
}
