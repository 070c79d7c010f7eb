#include "usblistenthread.h"

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
    if (libusb_init(&m_Context) < 0) {
        m_Context = nullptr;
        std::puts("initialize libusb failed");
        return;
    }
    if (!libusb_has_capability(LIBUSB_CAP_HAS_HOTPLUG)) {
        std::puts("this version's libusb doesn't support hotplug");
        return;
    }
    const int events = LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED | LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT;
    if (libusb_hotplug_register_callback(
            m_Context, events, 0, static_cast<int>(kVendorId), LIBUSB_HOTPLUG_MATCH_ANY,
            LIBUSB_HOTPLUG_MATCH_ANY, libusb_callback, this, &m_CallbackHandle) != LIBUSB_SUCCESS) {
        m_CallbackHandle = 0;
        std::puts("resigter hotplug_callback failed");
    }
}

void UsbListenThread::run()
{
    while (m_Context && !m_Stop) {
        timeval timeout = {0, kEventTimeoutUs};
        libusb_handle_events_timeout(m_Context, &timeout);
    }
    delete_listener();
}

// Wakes the event wait at once rather than at its time-out: quitting waits
// for this thread. The lock keeps the context from going away meanwhile.
void UsbListenThread::Exit()
{
    m_Stop = true;
    QMutexLocker lock(&m_ContextMutex);
    if (m_Context)
        libusb_interrupt_event_handler(m_Context);
}

void UsbListenThread::delete_listener()
{
    QMutexLocker lock(&m_ContextMutex);
    if (m_CallbackHandle) {
        libusb_hotplug_deregister_callback(m_Context, m_CallbackHandle);
        m_CallbackHandle = 0;
    }
    if (m_Context) {
        libusb_exit(m_Context);
        m_Context = nullptr;
    }
}

// Returning 0 keeps the callback registered.
int UsbListenThread::libusb_callback(libusb_context *context, libusb_device *device,
                                     libusb_hotplug_event event, void *user)
{
    static_cast<UsbListenThread *>(user)->tablet_callback(context, device, event);
    return 0;
}

// Runs inside libusb's event handling: the GUI thread does all the work.
void UsbListenThread::tablet_callback(libusb_context *, libusb_device *device,
                                      libusb_hotplug_event event)
{
    libusb_device_descriptor descriptor{};
    if (libusb_get_device_descriptor(device, &descriptor) != LIBUSB_SUCCESS)
        return;
    qDebug("VENDOR(0x%x) PRODUCT(0x%x)\n", descriptor.idVendor, descriptor.idProduct);
    emit SentListenMsg(descriptor.idVendor, descriptor.idProduct, static_cast<short>(event));
}
