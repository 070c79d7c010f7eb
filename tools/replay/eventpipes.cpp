#include "eventpipes.h"

#include "myinput.h"

#include <fcntl.h>
#include <unistd.h>

namespace
{

void closeEnd(int &fd)
{
    if (fd >= 0)
        close(fd);
    fd = -1;
}

} // namespace

EventPipes::~EventPipes()
{
    if (m_driver)
        m_driver->AttachDevices(0, 0, 0);
    closeAll();
}

// Both ends are non-blocking, as the uinput nodes are: a full pipe loses
// events instead of stopping the replay.
bool EventPipes::attach(MyInput &driver)
{
    for (int device = 0; device < kDeviceCount; ++device) {
        int ends[2];
        if (pipe2(ends, O_NONBLOCK | O_CLOEXEC) != 0) {
            closeAll();
            return false;
        }
        m_readEnds[device] = ends[0];
        m_writeEnds[device] = ends[1];
    }
    m_driver = &driver;
    driver.AttachDevices(m_writeEnds[Pen], m_writeEnds[Mouse], m_writeEnds[Eraser]);
    return true;
}

// The driver writes whole frames at once, far below PIPE_BUF, so a read never
// splits an event.
int EventPipes::read(Device device, input_event *events, int capacity) const
{
    const ssize_t bytes = ::read(m_readEnds[device], events, capacity * sizeof *events);
    return bytes > 0 ? static_cast<int>(bytes / sizeof *events) : 0;
}

const char *EventPipes::name(Device device)
{
    static const char *const kNames[kDeviceCount] = {"pen", "mouse", "eraser"};
    return kNames[device];
}

void EventPipes::closeAll()
{
    for (int device = 0; device < kDeviceCount; ++device) {
        closeEnd(m_readEnds[device]);
        closeEnd(m_writeEnds[device]);
    }
}
