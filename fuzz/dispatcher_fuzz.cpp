// Feeds arbitrary bytes to the report dispatcher of a fresh session, as a
// reader thread hands reports on, with the virtual devices writing into
// pipes. The first byte picks the kind of device and what the window has
// asked for; the rest is reports, each a length byte and up to that many
// bytes, in a buffer of exactly that size. Beyond what the sanitizers see,
// it checks what they cannot: every write to a device is whole input_event
// records of types and codes that device declares, key values are 0 or 1,
// and no text field of the tablet's records lost its NUL.
#include "cglobaldata.h"
#include "cparsetabletdata.h"
#include "ctablet.h"
#include "myinput.h"
#include "recordchecks.h"
#include "replaytablet.h"

#include <QtGlobal>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <iterator>
#include <linux/input.h>
#include <memory>
#include <unistd.h>
#include <vector>

// The action library sleeps between keys; the fuzzer should not.
extern "C" int nanosleep(const timespec *, timespec *)
{
    return 0;
}
extern "C" int clock_nanosleep(clockid_t, int, const timespec *, timespec *)
{
    return 0;
}

namespace
{

struct Kind {
    const char *model;
    int productId;
    int deviceType;
    qint64 maxX;
    qint64 maxY;
    int maxPressure;
};

// A pen tablet, one with two wheels, a wireless one with a wheel and a touch
// strip, the one whose pen comes back twice, a pen display, both remotes.
constexpr Kind kKinds[] = {
    {"QTB0610", 0x0B40, 1, 52324, 29600, 8191},
    {"QTB1209", 0x0B50, 1, 60960, 38100, 8191},
    {"TQR4470", 0xA101, 1, 32767, 20000, 8191},
    {"QTB0720", 0x07C9, 1, 25400, 15240, 2047},
    {"QPD1620", 0x0A38, 2, 69080, 38860, 8191},
    {"QRM07", 0x03E2, 4, 0, 0, 0},
    {"QRK12", 0x03E1, 4, 0, 0, 0},
};
constexpr int kKindCount = static_cast<int>(std::size(kKinds));
constexpr uint8_t kKindBits = 0x0F;
constexpr uint8_t kAreaSelecting = 0x10;
constexpr uint8_t kSendMultiData = 0x20;
constexpr int kPipeSize = 1 << 20;

// A kind's profile is read once; every input starts a session from it.
const CTablet &loadedTablet(int kind)
{
    static std::array<std::unique_ptr<ReplayTablet>, kKindCount> loaded;
    std::unique_ptr<ReplayTablet> &slot = loaded[static_cast<size_t>(kind)];
    if (slot)
        return slot->tablet();
    const Kind &row = kKinds[kind];
    ReplayedTablet description;
    description.configFile = SCRIBORA_DEFAULT_CONFIG;
    description.model = row.model;
    description.productId = row.productId;
    description.deviceType = row.deviceType;
    description.maxX = row.maxX;
    description.maxY = row.maxY;
    description.maxPressure = row.maxPressure;
    description.lpi = kDefaultLpi;
    description.screens = {QRect(0, 0, 1920, 1080), QRect(1920, 0, 1280, 1024)};
    slot = std::make_unique<ReplayTablet>();
    if (!slot->setUp(description))
        abort();
    CGlobalData::TabletArray[0] = nullptr;
    return slot->tablet();
}

// A session as it stands once started: the loaded settings and attributes, nothing else.
class Session
{
public:
    Session(const CTablet &loaded, uint8_t control) : m_tablet(std::make_unique<CTablet>())
    {
        m_tablet->m_DeviceAttributes = loaded.m_DeviceAttributes;
        m_tablet->CopySettingsFrom(loaded);
        m_tablet->m_ProductId = loaded.m_ProductId;
        m_tablet->m_Index = 0;
        m_tablet->m_Active = true;
        m_tablet->m_AreaSelecting = (control & kAreaSelecting) != 0;
        m_tablet->m_SendMultiData = (control & kSendMultiData) != 0;
        CGlobalData::TabletArray[0] = m_tablet.get();
    }
    ~Session() { CGlobalData::TabletArray[0] = nullptr; }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    CTablet &tablet() { return *m_tablet; }

private:
    std::unique_ptr<CTablet> m_tablet;
};

// The three devices write into pipes; the hook keeps what each write
// claimed, and the pipes must hold exactly that.
class Pipes
{
public:
    explicit Pipes(MyInput &driver) : m_driver(driver)
    {
        for (Device &device : m_devices) {
            int ends[2];
            if (pipe2(ends, O_NONBLOCK | O_CLOEXEC) != 0)
                abort();
            fcntl(ends[1], F_SETPIPE_SZ, kPipeSize);
            device.readFd = ends[0];
            device.writeFd = ends[1];
        }
        driver.AttachDevices(m_devices[0].writeFd, m_devices[1].writeFd, m_devices[2].writeFd);
        driver.SetWriteHook(&Pipes::onWrite, this);
    }

    // Takes everything out of the pipes and compares it with what was claimed.
    void expectWritten()
    {
        for (Device &device : m_devices) {
            const size_t claimed = device.events.size() * sizeof(input_event);
            std::vector<char> read(claimed + 1);
            const ssize_t got = ::read(device.readFd, read.data(), read.size());
            if (got != static_cast<ssize_t>(claimed) && !(claimed == 0 && got < 0))
                abort();
            if (claimed != 0 && std::memcmp(read.data(), device.events.data(), claimed) != 0)
                abort();
            device.events.clear();
        }
    }

private:
    struct Device {
        int readFd = -1;
        int writeFd = -1;
        std::vector<input_event> events;
    };

    static void onWrite(void *context, int fd, const input_event *events, int count)
    {
        auto &pipes = *static_cast<Pipes *>(context);
        for (Device &device : pipes.m_devices) {
            if (device.writeFd != fd)
                continue;
            for (int i = 0; i < count; ++i)
                pipes.expectDeclared(fd, events[i]);
            device.events.insert(device.events.end(), events, events + count);
            return;
        }
        abort();
    }

    void expectDeclared(int fd, const input_event &event) const
    {
        if (!m_driver.Declares(fd, event.type, event.code))
            abort();
        if (event.type == EV_KEY && event.value != 0 && event.value != 1)
            abort();
    }

    MyInput &m_driver;
    std::array<Device, 3> m_devices;
};

void expectAttributesTerminated(const _DEVICE_ATTRIBUTES &attributes)
{
    expectTerminated(attributes.DevicePath);
    expectTerminated(attributes.PidString);
    expectTerminated(attributes.Manufacturer);
    expectTerminated(attributes.ProductName);
    expectTerminated(attributes.ModelName);
    expectTerminated(attributes.ShowName);
    expectTerminated(attributes.ICVersion);
    expectTerminated(attributes.SerialNumber);
    expectTerminated(attributes.ICData);
}

void expectTextsTerminated(CTablet &tablet)
{
    expectAttributesTerminated(tablet.m_DeviceAttributes);
    expectTerminated(tablet.m_TabletXMLData->szPidName);
    expectTerminated(tablet.m_TabletXMLData->CommonAPP);
    expectTerminated(*tablet.m_IncomingNode);
}

// Feeds the reports one by one and takes each one's writes out of the pipes.
void feedReports(CTablet &tablet, Pipes &pipes, const uint8_t *data, size_t size)
{
    while (size > 0) {
        const size_t length = std::min<size_t>(data[0], size - 1);
        ++data;
        --size;
        const auto report = std::make_unique<quint8[]>(length);
        std::memcpy(report.get(), data, length);
        tablet.ReceiveTabletPackets(report.get(), static_cast<int>(length));
        pipes.expectWritten();
        data += length;
        size -= length;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static Pipes *pipes = [] {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        return new Pipes(CGlobalData::MyInputDriver);
    }();
    if (size == 0)
        return 0;
    const int kind = (data[0] & kKindBits) % kKindCount;
    CParseTabletData::resetWheelState();
    Session session(loadedTablet(kind), data[0]);
    feedReports(session.tablet(), *pipes, data + 1, size - 1);
    expectTextsTerminated(session.tablet());
    return 0;
}
