#pragma once

#include <linux/input.h>

class MyInput;

// Three pipes that stand in for the virtual devices: the driver writes its
// events into them, and the replay reads them back after each report.
class EventPipes
{
public:
    enum Device { Pen, Mouse, Eraser };
    static constexpr int kDeviceCount = 3;

    EventPipes() = default;
    // Detaches the driver before the pipes close.
    ~EventPipes();
    EventPipes(const EventPipes &) = delete;
    EventPipes &operator=(const EventPipes &) = delete;

    // Creates the pipes and points the driver's devices at them.
    bool attach(MyInput &driver);

    // Reads up to capacity events waiting for one device; 0 when none are left.
    int read(Device device, input_event *events, int capacity) const;

    static const char *name(Device device);

private:
    void closeAll();

    MyInput *m_driver = nullptr;
    int m_readEnds[kDeviceCount] = {-1, -1, -1};
    int m_writeEnds[kDeviceCount] = {-1, -1, -1};
};
