#include "localclock.h"

#include <QDateTime>
#include <atomic>

namespace
{

constexpr qint64 kMsPerDay = 24 * 60 * 60 * 1000;
constexpr qint64 kOffsetLifetimeMs = 60 * 60 * 1000;

std::atomic<qint64> cachedOffsetMs{0};
std::atomic<qint64> offsetTakenAtMs{-kOffsetLifetimeMs};

qint64 offsetMsAt(qint64 utcMs)
{
    if (utcMs - offsetTakenAtMs.load(std::memory_order_relaxed) < kOffsetLifetimeMs)
        return cachedOffsetMs.load(std::memory_order_relaxed);
    const qint64 offsetMs = qint64(QDateTime::currentDateTime().offsetFromUtc()) * 1000;
    cachedOffsetMs.store(offsetMs, std::memory_order_relaxed);
    offsetTakenAtMs.store(utcMs, std::memory_order_relaxed);
    return offsetMs;
}

} // namespace

QTime LocalClock::currentTime()
{
    const qint64 utcMs = QDateTime::currentMSecsSinceEpoch();
    const qint64 localMs = utcMs + offsetMsAt(utcMs);
    return QTime::fromMSecsSinceStartOfDay(int(((localMs % kMsPerDay) + kMsPerDay) % kMsPerDay));
}
