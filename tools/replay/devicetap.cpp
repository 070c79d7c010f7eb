#include "devicetap.h"

#include "eventprinter.h"
#include "myinput.h"

#include <fcntl.h>
#include <unistd.h>

DeviceTap::~DeviceTap()
{
    if (m_driver) {
        m_driver->SetWriteHook(nullptr, nullptr);
        m_driver->AttachDevices(0, 0, 0);
    }
    closeAll();
}

// One descriptor per device, so that the hook can tell them apart.
bool DeviceTap::attach(MyInput &driver)
{
    for (int &fd : m_fds) {
        fd = open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (fd < 0) {
            closeAll();
            return false;
        }
    }
    m_driver = &driver;
    driver.AttachDevices(m_fds[Pen], m_fds[Mouse], m_fds[Eraser]);
    driver.SetWriteHook(&DeviceTap::onWrite, this);
    return true;
}

void DeviceTap::onWrite(void *context, int fd, const input_event *events, int count)
{
    const DeviceTap &tap = *static_cast<const DeviceTap *>(context);
    const char *device = tap.deviceName(fd);
    for (int i = 0; i < count; ++i)
        tap.m_printer.printEvent(device, events[i]);
}

const char *DeviceTap::deviceName(int fd) const
{
    static const char *const kNames[kDeviceCount] = {"pen", "mouse", "eraser"};
    for (int device = 0; device < kDeviceCount; ++device) {
        if (m_fds[device] == fd)
            return kNames[device];
    }
    return "unknown";
}

void DeviceTap::closeAll()
{
    for (int &fd : m_fds) {
        if (fd >= 0)
            close(fd);
        fd = -1;
    }
}
