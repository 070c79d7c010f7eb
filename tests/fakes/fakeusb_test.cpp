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

long elapsedMs(Clock::time_point start)
{
    return static_cast<long>(
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
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

TEST_F(FakeUsbTest, EnumeratesEveryInterfaceInOrderOfAddition)
{
    fakeusb::Device second = device("b", 0x0B41, 2, {1, 4});
    second.interfaces = {0, 2};
    fakeusb::addDevice(device("a", 0x0B40, 1, {3}));
    fakeusb::addDevice(second);

    EXPECT_EQ(enumeratedPaths(0x5A3C, 0), (std::vector<std::string>{"1-3:1.0", "1-3:1.1", "1-3:1.2",
                                                                    "2-1.4:1.0", "2-1.4:1.2"}));
    EXPECT_EQ(fakeusb::hidPath("b", 2), "2-1.4:1.2");
}

TEST_F(FakeUsbTest, EnumerationFillsTheEntryLikeTheLibusbBackend)
{
    fakeusb::Device tablet = device("a", 0x0B40, 1, {1});
    tablet.interfaces = {2};
    fakeusb::addDevice(tablet);

    hid_device_info *list = hid_enumerate(0x5A3C, 0);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->next, nullptr);
    EXPECT_EQ(list->vendor_id, 0x5A3C);
    EXPECT_EQ(list->product_id, 0x0B40);
    EXPECT_EQ(list->interface_number, 2);
    EXPECT_EQ(list->release_number, 0x0100);
    EXPECT_EQ(list->usage_page, 0);
    EXPECT_EQ(list->usage, 0);
    EXPECT_STREQ(list->manufacturer_string, L"Maker");
    EXPECT_STREQ(list->product_string, L"Pad");
    EXPECT_STREQ(list->serial_number, L"SN-a");
    hid_free_enumeration(list);
}

TEST_F(FakeUsbTest, UnpluggedDevicesAreNotEnumerated)
{
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    fakeusb::addDevice(device("b", 0x0B41, 1, {2}));
    fakeusb::unplug("a");

    EXPECT_EQ(enumeratedPaths(0x5A3C, 0),
              (std::vector<std::string>{"1-2:1.0", "1-2:1.1", "1-2:1.2"}));
}

TEST_F(FakeUsbTest, WritesAreRecordedByteExact)
{
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    fakeusb::addDevice(device("b", 0x0B41, 1, {2}));
    hid_device *a = hid_open_path("1-1:1.2");
    hid_device *b = hid_open_path("1-2:1.0");
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);

    const unsigned char command[] = {0x02, 0xB0, 0x00, 0x00, 0xFF, 0x00};
    EXPECT_EQ(hid_write(a, command, sizeof command), 6);
    EXPECT_EQ(hid_write(b, command, 3), 3);
    EXPECT_EQ(hid_write(a, command + 1, 2), 2);

    const std::vector<fakeusb::Write> all = fakeusb::writes();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].path, "1-1:1.2");
    EXPECT_EQ(all[0].data, (Bytes{0x02, 0xB0, 0x00, 0x00, 0xFF, 0x00}));
    EXPECT_EQ(all[1].path, "1-2:1.0");
    EXPECT_EQ(all[1].data, (Bytes{0x02, 0xB0, 0x00}));
    const std::vector<fakeusb::Write> toA = fakeusb::writesTo("a");
    ASSERT_EQ(toA.size(), 2u);
    EXPECT_EQ(toA[1].data, (Bytes{0xB0, 0x00}));
    EXPECT_TRUE(fakeusb::waitForWrites(3, 0));
    EXPECT_FALSE(fakeusb::waitForWrites(4, 20));
    hid_close(a);
    hid_close(b);
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

TEST_F(FakeUsbTest, ReadTimesOutWithZero)
{
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    hid_device *handle = hid_open_path("1-1:1.2");
    ASSERT_NE(handle, nullptr);
    unsigned char buffer[8];

    const auto start = Clock::now();
    EXPECT_EQ(hid_read_timeout(handle, buffer, sizeof buffer, 60), 0);
    const long waited = elapsedMs(start);
    EXPECT_GE(waited, 59);
    EXPECT_LT(waited, 1000);

    const auto again = Clock::now();
    EXPECT_EQ(hid_read_timeout(handle, buffer, sizeof buffer, 0), 0);
    EXPECT_LT(elapsedMs(again), 50);
    hid_close(handle);
}

TEST_F(FakeUsbTest, QueuedReadErrorsComeBeforeReports)
{
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    hid_device *handle = hid_open_path("1-1:1.2");
    ASSERT_NE(handle, nullptr);
    fakeusb::queueReport("a", {0x02, 0x09});
    fakeusb::queueReadErrors("a", 2);
    unsigned char buffer[8];

    EXPECT_EQ(hid_read_timeout(handle, buffer, sizeof buffer, 0), -1);
    EXPECT_EQ(hid_read_timeout(handle, buffer, sizeof buffer, 10), -1);
    EXPECT_EQ(hid_read_timeout(handle, buffer, sizeof buffer, 0), 2);
    EXPECT_NE(hid_error(handle), nullptr);
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

TEST_F(FakeUsbTest, ReplugGivesWorkingNewHandlesButOldOnesStayDead)
{
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    hid_device *old = hid_open_path("1-1:1.2");
    ASSERT_NE(old, nullptr);
    fakeusb::unplug("a");
    fakeusb::plug(device("a", 0x0B40, 1, {1}));

    hid_device *fresh = hid_open_path("1-1:1.2");
    ASSERT_NE(fresh, nullptr);
    fakeusb::queueReport("a", {0x02, 0x05});
    unsigned char buffer[8];
    const unsigned char data[] = {0x02};
    EXPECT_EQ(hid_read_timeout(old, buffer, sizeof buffer, 0), -1);
    EXPECT_EQ(hid_write(old, data, 1), -1);
    EXPECT_EQ(hid_read_timeout(fresh, buffer, sizeof buffer, 0), 2);
    EXPECT_EQ(hid_write(fresh, data, 1), 1);
    hid_close(old);
    hid_close(fresh);
}

TEST_F(FakeUsbTest, DeviceStringsFailWhenControlTransfersFail)
{
    fakeusb::Device broken = device("a", 0x0B40, 1, {1});
    broken.controlTransfersFail = true;
    fakeusb::addDevice(broken);
    hid_device *handle = hid_open_path("1-1:1.2");
    ASSERT_NE(handle, nullptr);
    wchar_t text[16];

    EXPECT_EQ(hid_get_manufacturer_string(handle, text, 16), -1);
    EXPECT_EQ(hid_get_indexed_string(handle, 3, text, 16), -1);
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

    // Opens the device whose last port is `port` on `bus`, or returns nullptr.
    libusb_device_handle *open(uint8_t bus, uint8_t port)
    {
        libusb_device **list = nullptr;
        const ssize_t count = libusb_get_device_list(m_Context, &list);
        libusb_device_handle *handle = nullptr;
        for (ssize_t i = 0; i < count; ++i) {
            if (!isAt(list[i], bus, port))
                continue;
            if (libusb_open(list[i], &handle) != LIBUSB_SUCCESS)
                handle = nullptr;
            break;
        }
        libusb_free_device_list(list, 1);
        return handle;
    }

    static bool isAt(libusb_device *device, uint8_t bus, uint8_t port)
    {
        uint8_t ports[7];
        const int depth = libusb_get_port_numbers(device, ports, sizeof ports);
        return libusb_get_bus_number(device) == bus && depth > 0 && ports[depth - 1] == port;
    }

    Bytes stringDescriptor(libusb_device_handle *handle, uint8_t index, uint16_t length,
                           int *result)
    {
        unsigned char buffer[300] = {};
        *result = libusb_control_transfer(handle, LIBUSB_ENDPOINT_IN, LIBUSB_REQUEST_GET_DESCRIPTOR,
                                          static_cast<uint16_t>(LIBUSB_DT_STRING << 8 | index),
                                          0x0409, buffer, length, 1000);
        return Bytes(buffer, buffer + std::max(*result, 0));
    }

    libusb_context *m_Context = nullptr;
};

TEST_F(FakeLibusbTest, DeviceListDescribesThePresentDevices)
{
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    fakeusb::addDevice(device("b", 0x0B41, 3, {2, 5}));
    fakeusb::addDevice(device("c", 0x0B42, 1, {4}));
    fakeusb::unplug("c");

    libusb_device **list = nullptr;
    ASSERT_EQ(libusb_get_device_list(m_Context, &list), 2);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list[2], nullptr);
    uint8_t ports[7];
    EXPECT_EQ(libusb_get_bus_number(list[1]), 3);
    ASSERT_EQ(libusb_get_port_numbers(list[1], ports, sizeof ports), 2);
    EXPECT_EQ(ports[0], 2);
    EXPECT_EQ(ports[1], 5);
    EXPECT_EQ(libusb_get_port_numbers(list[1], ports, 1), LIBUSB_ERROR_OVERFLOW);
    EXPECT_EQ(libusb_get_device_address(list[1]), 15);

    libusb_device_descriptor descriptor;
    ASSERT_EQ(libusb_get_device_descriptor(list[0], &descriptor), LIBUSB_SUCCESS);
    EXPECT_EQ(descriptor.idVendor, 0x5A3C);
    EXPECT_EQ(descriptor.idProduct, 0x0B40);
    EXPECT_EQ(descriptor.iManufacturer, 1);
    EXPECT_EQ(descriptor.iProduct, 2);
    EXPECT_EQ(descriptor.iSerialNumber, 3);
    EXPECT_EQ(descriptor.bNumConfigurations, 1);
    libusb_free_device_list(list, 1);
}

TEST_F(FakeLibusbTest, StringDescriptorsCarryTheirHeader)
{
    fakeusb::Device tablet = device("a", 0x0B40, 1, {1});
    tablet.langIds = {0x0409, 0x0804};
    tablet.rawStrings[100] = {0x00, 0x80, 0xFF, 0x01, 0x10};
    fakeusb::addDevice(tablet);
    libusb_device_handle *handle = open(1, 1);
    ASSERT_NE(handle, nullptr);
    int result = 0;

    EXPECT_EQ(stringDescriptor(handle, 0, 255, &result), (Bytes{6, 3, 0x09, 0x04, 0x04, 0x08}));
    EXPECT_EQ(result, 6);
    EXPECT_EQ(stringDescriptor(handle, 2, 255, &result), (Bytes{8, 3, 'P', 0, 'a', 0, 'd', 0}));
    EXPECT_EQ(stringDescriptor(handle, 100, 255, &result),
              (Bytes{7, 3, 0x00, 0x80, 0xFF, 0x01, 0x10}));
    EXPECT_EQ(stringDescriptor(handle, 100, 4, &result), (Bytes{7, 3, 0x00, 0x80}));
    EXPECT_EQ(result, 4);
    stringDescriptor(handle, 9, 255, &result);
    EXPECT_EQ(result, LIBUSB_ERROR_PIPE);
    libusb_close(handle);
}

TEST_F(FakeLibusbTest, ControlTransfersAreLoggedAndFailAsScripted)
{
    fakeusb::Device broken = device("broken", 0x0B41, 1, {2});
    broken.controlTransfersFail = true;
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    fakeusb::addDevice(broken);
    libusb_device_handle *good = open(1, 1);
    libusb_device_handle *bad = open(1, 2);
    ASSERT_NE(good, nullptr);
    ASSERT_NE(bad, nullptr);
    unsigned char buffer[8];
    int result = 0;

    EXPECT_EQ(libusb_control_transfer(good, 0x21, 0x09, 0x0302, 2, buffer, 8, 100),
              LIBUSB_ERROR_PIPE);
    stringDescriptor(bad, 1, 255, &result);
    EXPECT_EQ(result, LIBUSB_ERROR_PIPE);
    fakeusb::unplug("a");
    stringDescriptor(good, 1, 255, &result);
    EXPECT_EQ(result, LIBUSB_ERROR_NO_DEVICE);

    const std::vector<fakeusb::ControlTransfer> log = fakeusb::controlTransfers();
    ASSERT_EQ(log.size(), 3u);
    EXPECT_EQ(log[0].device, "a");
    EXPECT_EQ(log[0].requestType, 0x21);
    EXPECT_EQ(log[0].request, 0x09);
    EXPECT_EQ(log[0].value, 0x0302);
    EXPECT_EQ(log[0].index, 2);
    EXPECT_EQ(log[0].length, 8);
    EXPECT_EQ(log[1].device, "broken");
    EXPECT_EQ(log[1].requestType, 0x80);
    EXPECT_EQ(log[1].request, 6);
    EXPECT_EQ(log[1].value, 0x0301);
    EXPECT_EQ(log[1].index, 0x0409);
    EXPECT_EQ(log[1].length, 255);
    EXPECT_EQ(log[2].device, "a");
    libusb_close(good);
    libusb_close(bad);
}

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

    size_t size()
    {
        std::lock_guard<std::mutex> lock(mutex);
        return events.size();
    }
};

constexpr int kBothEvents = LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED | LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT;

TEST_F(FakeLibusbTest, EnumerateFlagReportsMatchingDevicesDuringRegistration)
{
    fakeusb::Device foreign = device("foreign", 0x0B40, 1, {3});
    foreign.vid = 0x1234;
    fakeusb::addDevice(device("a", 0x0B40, 1, {1}));
    fakeusb::addDevice(device("b", 0x0B41, 1, {2}));
    fakeusb::addDevice(foreign);
    HotplugLog vendorLog;
    HotplugLog productLog;
    HotplugLog quietLog;
    libusb_hotplug_callback_handle handles[3];

    ASSERT_EQ(libusb_hotplug_register_callback(m_Context, kBothEvents, LIBUSB_HOTPLUG_ENUMERATE,
                                               0x5A3C, LIBUSB_HOTPLUG_MATCH_ANY,
                                               LIBUSB_HOTPLUG_MATCH_ANY, HotplugLog::record,
                                               &vendorLog, &handles[0]),
              LIBUSB_SUCCESS);
    ASSERT_EQ(libusb_hotplug_register_callback(
                  m_Context, LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED, LIBUSB_HOTPLUG_ENUMERATE, 0x5A3C,
                  0x0B41, LIBUSB_HOTPLUG_MATCH_ANY, HotplugLog::record, &productLog, &handles[1]),
              LIBUSB_SUCCESS);
    ASSERT_EQ(libusb_hotplug_register_callback(m_Context, kBothEvents, 0, LIBUSB_HOTPLUG_MATCH_ANY,
                                               LIBUSB_HOTPLUG_MATCH_ANY, LIBUSB_HOTPLUG_MATCH_ANY,
                                               HotplugLog::record, &quietLog, &handles[2]),
              LIBUSB_SUCCESS);

    using Seen = std::vector<std::pair<libusb_hotplug_event, uint16_t>>;
    EXPECT_EQ(vendorLog.events, (Seen{{LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED, 0x0B40},
                                      {LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED, 0x0B41}}));
    EXPECT_EQ(productLog.events, (Seen{{LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED, 0x0B41}}));
    EXPECT_TRUE(quietLog.events.empty());
    ASSERT_FALSE(vendorLog.threads.empty());
    EXPECT_EQ(vendorLog.threads[0], std::this_thread::get_id());
    EXPECT_NE(handles[0], handles[1]);
}

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

TEST_F(FakeLibusbTest, EventsWaitForHandleEventsAndComeInOrder)
{
    HotplugLog log;
    ASSERT_EQ(libusb_hotplug_register_callback(m_Context, kBothEvents, 0, LIBUSB_HOTPLUG_MATCH_ANY,
                                               LIBUSB_HOTPLUG_MATCH_ANY, LIBUSB_HOTPLUG_MATCH_ANY,
                                               HotplugLog::record, &log, nullptr),
              LIBUSB_SUCCESS);
    fakeusb::plug(device("a", 0x0B40, 1, {1}));
    fakeusb::plug(device("b", 0x0B41, 1, {2}));
    fakeusb::unplug("a");
    EXPECT_EQ(log.size(), 0u);

    timeval none{0, 0};
    ASSERT_EQ(libusb_handle_events_timeout_completed(m_Context, &none, nullptr), LIBUSB_SUCCESS);
    using Seen = std::vector<std::pair<libusb_hotplug_event, uint16_t>>;
    EXPECT_EQ(log.events, (Seen{{LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED, 0x0B40},
                                {LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED, 0x0B41},
                                {LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT, 0x0B40}}));
}

TEST_F(FakeLibusbTest, HandleEventsWaitsForTheTimeoutOrAnInterruption)
{
    timeval shortWait{0, 60000};
    const auto start = Clock::now();
    ASSERT_EQ(libusb_handle_events_timeout(m_Context, &shortWait), LIBUSB_SUCCESS);
    const long waited = elapsedMs(start);
    EXPECT_GE(waited, 59);
    EXPECT_LT(waited, 1000);

    auto waiter = std::async(std::launch::async, [this] {
        timeval longWait{3, 0};
        const auto begin = Clock::now();
        libusb_handle_events_timeout_completed(m_Context, &longWait, nullptr);
        return elapsedMs(begin);
    });
    // Most likely waiting by now; an earlier interruption must count as well.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    libusb_interrupt_event_handler(m_Context);
    ASSERT_TRUE(finishes(waiter));
    EXPECT_LT(waiter.get(), 1000);
}

} // namespace
