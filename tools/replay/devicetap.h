#pragma once

#include <linux/input.h>

class EventPrinter;
class MyInput;

// Stands in for the three virtual devices: the driver writes into /dev/null,
// and its write hook prints each frame as it is written, so that events of
// different devices keep their order.
class DeviceTap
{
public:
    explicit DeviceTap(EventPrinter &printer) : m_printer(printer) {}
    // Detaches the driver before the descriptors close.
    ~DeviceTap();
    DeviceTap(const DeviceTap &) = delete;
    DeviceTap &operator=(const DeviceTap &) = delete;

    // Points the driver's devices and its write hook here.
    bool attach(MyInput &driver);

private:
    enum Device { Pen, Mouse, Eraser, kDeviceCount };

    static void onWrite(void *context, int fd, const input_event *events, int count);
    const char *deviceName(int fd) const;
    void closeAll();

    EventPrinter &m_printer;
    MyInput *m_driver = nullptr;
    int m_fds[kDeviceCount] = {-1, -1, -1};
};
