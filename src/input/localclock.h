#pragma once

#include <QTime>

// Local time of day without a time-zone lookup per call: QTime::currentTime()
// re-reads the zone (and allocates) every time, which the report path must not.
// The UTC offset is cached and taken again at most once an hour.
class LocalClock
{
public:
    LocalClock() = delete;

    static QTime currentTime();
};
