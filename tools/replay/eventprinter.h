#pragma once

#include <QString>
#include <cstdio>
#include <linux/input.h>

// One line per event or action message, without time stamps, so that two
// replays of one capture can be compared line by line.
class EventPrinter
{
public:
    explicit EventPrinter(FILE *out) : m_out(out) {}

    // "pen EV_ABS ABS_X 1234"; kernel names, or numbers where the kernel has none.
    void printEvent(const char *device, const input_event &event);
    // "msg 0 89 1"
    void printMessage(int tablet, int id, const QString &value);
    void flush();

private:
    FILE *m_out;
};
