#include "fakeusb.h"

#include <hidapi.h>
#include <libusb.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>

namespace
{

using Clock = std::chrono::steady_clock;
using fakeusb::Bytes;

constexpr auto kPatience = std::chrono::seconds(2);

fakeusb::Device device(const std::string &name, uint16_t pid, uint8_t bus,
                       std::vector<uint8_t> ports)
{
    fakeusb::Device result;
    result.name = name;
    result.pid = pid;
    result.bus = bus;
    result.ports = std::move(ports);
    result.address = static_cast<uint8_t>(result.ports.back() + 10);
    result.strings = {
        {1, L"Maker"}, {2, L"Pad"}, {3, L"SN-" + std::wstring(name.begin(), name.end())}};
    return result;
}

template <typename Predicate> bool eventually(Predicate predicate)
{
    const auto deadline = Clock::now() + kPatience;
    while (!predicate()) {
        if (Clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// Fails rather than hangs: reset() wakes a reader the fake failed to wake.
template <typename T> bool finishes(std::future<T> &future)
{
    if (future.wait_for(kPatience) == std::future_status::ready)
        return true;
    fakeusb::reset();
    return false;
}

std::vector<std::string> enumeratedPaths(unsigned short vid, unsigned short pid)
{
    std::vector<std::string> paths;
    hid_device_info *list = hid_enumerate(vid, pid);
    for (const hid_device_info *entry = list; entry; entry = entry->next)
        paths.emplace_back(entry->path);
    hid_free_enumeration(list);
    return paths;
}

class FakeUsbTest : public ::testing::Test
{
protected:
    void SetUp() override { fakeusb::reset(); }
    void TearDown() override { fakeusb::reset(); }
};

// ---- hidapi -------------------------------------------------------------

TEST_F(FakeUsbTest, EnumeratesEveryPluggedInterfaceInOrderOfAddition)
{
    fakeusb::Device second = device("b", 0x0B41, 2, {1, 4});
    second.interfaces = {0, 2};
    fakeusb::addDevice(device("a", 0x0B40, 1, {3}));
    fakeusb::addDevice(second);
    fakeusb::addDevice(device("c", 0x0B42, 1, {2}));
    fakeusb::unplug("c");

    EXPECT_EQ(enumeratedPaths(0x5A3C, 0), (std::vector<std::string>{"1-3:1.0", "1-3:1.1", "1-3:1.2",
                                                                    "2-1.4:1.0", "2-1.4:1.2"}));
    EXPECT_EQ(fakeusb::hidPath("b", 2), "2-1.4:1.2");
}

TEST_F(FakeUsbTest, ReadsReturnQueuedReportsInOrderAndTruncated)
{
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    hid_device *handle = hid_open_path("1-1:1.2");
    ASSERT_NE(handle, nullptr);
    fakeusb::queueReport("a", {0x02, 0xA1, 0x10, 0x20});
    fakeusb::queueReport("a", {0x03, 0x04});

    unsigned char buffer[8] = {};
    ASSERT_EQ(hid_read_timeout(handle, buffer, 3, 0), 3);
    EXPECT_EQ(Bytes(buffer, buffer + 4), (Bytes{0x02, 0xA1, 0x10, 0x00}));
    ASSERT_EQ(hid_read(handle, buffer, sizeof buffer), 2);
    EXPECT_EQ(Bytes(buffer, buffer + 2), (Bytes{0x03, 0x04}));
    EXPECT_EQ(hid_read_timeout(handle, buffer, sizeof buffer, 0), 0);
    EXPECT_EQ(fakeusb::hidReadCalls("a"), 3);
    hid_close(handle);
}

TEST_F(FakeUsbTest, BlockedReaderGetsAReportQueuedByAnotherThread)
{
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    hid_device *handle = hid_open_path("1-1:1.2");
    ASSERT_NE(handle, nullptr);

    auto reader = std::async(std::launch::async, [handle] {
        unsigned char buffer[16] = {};
        const int length = hid_read_timeout(handle, buffer, sizeof buffer, -1);
        return Bytes(buffer, buffer + std::max(length, 0));
    });
    // The count rises under the lock the reader keeps until it waits.
    ASSERT_TRUE(eventually([] { return fakeusb::hidReadCalls("a") == 1; }));
    fakeusb::queueReport("a", {0x02, 0x01, 0x02});

    ASSERT_TRUE(finishes(reader));
    EXPECT_EQ(reader.get(), (Bytes{0x02, 0x01, 0x02}));
    hid_close(handle);
}

TEST_F(FakeUsbTest, UnplugWakesABlockedReaderAndFailsWrites)
{
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    hid_device *handle = hid_open_path("1-1:1.2");
    ASSERT_NE(handle, nullptr);

    auto reader = std::async(std::launch::async, [handle] {
        unsigned char buffer[8];
        return hid_read_timeout(handle, buffer, sizeof buffer, -1);
    });
    ASSERT_TRUE(eventually([] { return fakeusb::hidReadCalls("a") == 1; }));
    fakeusb::unplug("a");

    ASSERT_TRUE(finishes(reader));
    EXPECT_EQ(reader.get(), -1);
    const unsigned char data[] = {0x02};
    EXPECT_EQ(hid_write(handle, data, 1), -1);
    EXPECT_TRUE(fakeusb::writes().empty());
    EXPECT_EQ(hid_open_path("1-1:1.2"), nullptr);
    hid_close(handle);
}

// ---- libusb -------------------------------------------------------------

class FakeLibusbTest : public FakeUsbTest
{
protected:
    void SetUp() override
    {
        FakeUsbTest::SetUp();
        ASSERT_EQ(libusb_init(&m_Context), LIBUSB_SUCCESS);
    }
    void TearDown() override
    {
        libusb_exit(m_Context);
        FakeUsbTest::TearDown();
    }

    libusb_context *m_Context = nullptr;
};

// Records hot-plug callbacks and lets the test wait for them.
struct HotplugLog {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::pair<libusb_hotplug_event, uint16_t>> events;
    std::vector<libusb_device *> devices;
    std::vector<std::thread::id> threads;
    int result = 0;

    static int LIBUSB_CALL record(libusb_context *, libusb_device *device,
                                  libusb_hotplug_event event, void *data)
    {
        auto *log = static_cast<HotplugLog *>(data);
        libusb_device_descriptor descriptor;
        libusb_get_device_descriptor(device, &descriptor);
        std::lock_guard<std::mutex> lock(log->mutex);
        log->events.emplace_back(event, descriptor.idProduct);
        log->devices.push_back(device);
        log->threads.push_back(std::this_thread::get_id());
        log->changed.notify_all();
        return log->result;
    }

    bool waitFor(size_t count)
    {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, kPatience, [&] { return events.size() >= count; });
    }
};

constexpr int kBothEvents = LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED | LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT;

TEST_F(FakeLibusbTest, PlugAndUnplugReachAnEventThread)
{
    HotplugLog log;
    ASSERT_EQ(libusb_hotplug_register_callback(m_Context, kBothEvents, 0, 0x5A3C,
                                               LIBUSB_HOTPLUG_MATCH_ANY, LIBUSB_HOTPLUG_MATCH_ANY,
                                               HotplugLog::record, &log, nullptr),
              LIBUSB_SUCCESS);
    std::atomic<bool> stop{false};
    std::thread events([&] {
        while (!stop)
            libusb_handle_events(m_Context);
    });
    const std::thread::id eventThread = events.get_id();
    fakeusb::Device foreign = device("foreign", 0x0B40, 1, {3});
    foreign.vid = 0x1234;

    fakeusb::plug(foreign);
    fakeusb::plug(device("a", 0x0B42, 1, {1}));
    ASSERT_TRUE(log.waitFor(1));
    fakeusb::unplug("a");
    ASSERT_TRUE(log.waitFor(2));
    stop = true;
    libusb_interrupt_event_handler(m_Context);
    events.join();

    using Seen = std::vector<std::pair<libusb_hotplug_event, uint16_t>>;
    EXPECT_EQ(log.events, (Seen{{LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED, 0x0B42},
                                {LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT, 0x0B42}}));
    EXPECT_EQ(log.devices[0], log.devices[1]);
    EXPECT_EQ(log.threads[0], eventThread);
    EXPECT_EQ(log.threads[1], eventThread);
}

} // namespace
