// The report path at report rate: one pen report from the dispatcher down to
// the pen device, written to /dev/null; the heap allocations it makes; and the
// floor, the one write of a pen frame.

#include "cglobaldata.h"
#include "replaytablet.h"

#include <QCoreApplication>
#include <QString>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <iterator>
#include <linux/input.h>
#include <malloc.h>
#include <unistd.h>

// Every heap allocation of the process passes here, Qt's and operator new's
// alike; only those made while counting is on are counted.
namespace
{

std::atomic<bool> counting{false};
std::atomic<long long> allocations{0};

void noteAllocation()
{
    if (counting.load(std::memory_order_relaxed))
        allocations.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);
void *__libc_memalign(size_t alignment, size_t size);
void __libc_free(void *block);

void *malloc(size_t size) noexcept
{
    noteAllocation();
    return __libc_malloc(size);
}

void *calloc(size_t count, size_t size) noexcept
{
    noteAllocation();
    return __libc_calloc(count, size);
}

void *realloc(void *block, size_t size) noexcept
{
    noteAllocation();
    return __libc_realloc(block, size);
}

void *memalign(size_t alignment, size_t size) noexcept
{
    noteAllocation();
    return __libc_memalign(alignment, size);
}

void *aligned_alloc(size_t alignment, size_t size) noexcept
{
    noteAllocation();
    return __libc_memalign(alignment, size);
}

int posix_memalign(void **block, size_t alignment, size_t size) noexcept
{
    noteAllocation();
    void *memory = __libc_memalign(alignment, size);
    if (!memory)
        return ENOMEM;
    *block = memory;
    return 0;
}

void free(void *block) noexcept
{
    __libc_free(block);
}
}

namespace
{

constexpr int kReportSize = 64;
constexpr int kFrameEvents = 8;

// Counts the allocations made in its scope.
class AllocationCount
{
public:
    AllocationCount() : m_start(allocations.load()) { counting = true; }
    ~AllocationCount() { counting = false; }
    long long made() const { return allocations.load() - m_start; }

private:
    long long m_start;
};

// The three virtual devices write into /dev/null for the life of the object.
class NullDevices
{
public:
    NullDevices() : m_fd(open("/dev/null", O_WRONLY))
    {
        CGlobalData::MyInputDriver.AttachDevices(m_fd, m_fd, m_fd);
    }
    ~NullDevices()
    {
        CGlobalData::MyInputDriver.AttachDevices(0, 0, 0);
        close(m_fd);
    }
    int fd() const { return m_fd; }

private:
    int m_fd;
};

// What the 0B40 tablet sends with the tip down: 64 bytes, 24-bit position,
// pressure and tilt.
struct PenReport {
    quint8 bytes[kReportSize];
};

PenReport penReport(int x, int y, int pressure, quint8 tiltX, quint8 tiltY)
{
    PenReport report{};
    const quint8 head[] = {
        0x02,      0xA1,           quint8(x),        quint8(x >> 8),
        quint8(y), quint8(y >> 8), quint8(pressure), quint8((pressure >> 8) & 0x1F),
        tiltX,     tiltY,          quint8(x >> 16),  quint8(y >> 16)};
    std::copy(std::begin(head), std::end(head), report.bytes);
    return report;
}

ReplayedTablet defaultTablet()
{
    ReplayedTablet tablet;
    tablet.configFile = SCRIBORA_DEFAULT_CONFIG;
    tablet.model = "QTB0610";
    tablet.productId = 0x0B40;
    tablet.deviceType = 1;
    tablet.maxX = 52324;
    tablet.maxY = 29600;
    tablet.maxPressure = 8191;
    tablet.lpi = 5080;
    tablet.screens = {QRect(0, 0, 1920, 1080)};
    return tablet;
}

// Proves that the hook sees Qt's allocations, so that a count of 0 means something.
bool hookCountsAllocations()
{
    AllocationCount count;
    const QString text = QString::number(1234567);
    benchmark::DoNotOptimize(text.constData());
    return count.made() > 0;
}

void BM_PenReport(benchmark::State &state)
{
    if (!hookCountsAllocations()) {
        state.SkipWithError("the allocation hook counts nothing");
        return;
    }
    ReplayTablet tablet;
    if (!tablet.setUp(defaultTablet())) {
        state.SkipWithError(tablet.error().toUtf8().constData());
        return;
    }
    NullDevices devices;
    PenReport reports[] = {penReport(12000, 8000, 2000, 0x05, 0xFB),
                           penReport(40000, 21000, 6000, 0xF0, 0x0C)};
    // The first report of a stroke announces the pen; measure the stroke after it.
    tablet.feed(reports[0].bytes, kReportSize);
    long long made = 0;
    {
        AllocationCount count;
        unsigned next = 0;
        for (auto _ : state) {
            tablet.feed(reports[next].bytes, kReportSize);
            next ^= 1;
        }
        made = count.made();
    }
    state.counters["reports/s"] =
        benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
    state.counters["allocs/report"] =
        benchmark::Counter(double(made), benchmark::Counter::kAvgIterations);
}

void BM_WriteFloor(benchmark::State &state)
{
    NullDevices devices;
    const input_event frame[kFrameEvents] = {};
    for (auto _ : state) {
        const ssize_t written = write(devices.fd(), frame, sizeof frame);
        benchmark::DoNotOptimize(written);
    }
    state.counters["writes/s"] =
        benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

BENCHMARK(BM_PenReport);
BENCHMARK(BM_WriteFloor);

} // namespace

int main(int argc, char **argv)
{
    // As in a normal run: the driver's debug lines are off.
    qputenv("QT_LOGGING_RULES", "*.debug=false");
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
