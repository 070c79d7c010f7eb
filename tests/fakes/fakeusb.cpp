#include "fakeusb.h"

#include "usblink.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <set>
#include <stdexcept>

namespace fakeusb
{
namespace
{

using Clock = std::chrono::steady_clock;
constexpr uint16_t kLanguage = 0x0409;

struct Attached {
    Device device;
    bool present = true;
    uint64_t generation = 0; // renewed on every plug
    std::deque<Bytes> reports;
    int readErrors = 0;
};

class FakeHotplug;

struct State {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Attached> devices;
    std::vector<std::pair<std::string, Write>> writes;
    std::set<FakeHotplug *> listeners;
    uint64_t generations = 0;
    int openHandles = 0;
    int openCalls = 0;
    uint64_t resets = 0; // handles of an earlier test close without counting
};

// Never destroyed: the program's objects may call in during exit.
State &state()
{
    static State *instance = new State;
    return *instance;
}

Attached *find(const std::string &name)
{
    for (Attached &candidate : state().devices) {
        if (candidate.device.name == name)
            return &candidate;
    }
    return nullptr;
}

Attached &require(const std::string &name)
{
    if (Attached *found = find(name))
        return *found;
    throw std::invalid_argument("fakeusb: unknown device " + name);
}

Attached *attached(const std::string &name, uint64_t generation)
{
    Attached *found = find(name);
    return found && found->present && found->generation == generation ? found : nullptr;
}

std::string pathOf(const Device &device, int interfaceNumber)
{
    std::string path = "1-";
    for (size_t i = 0; i < device.ports.size(); ++i)
        path += (i ? "." : "") + std::to_string(device.ports[i]);
    return path + ":1." + std::to_string(interfaceNumber);
}

// The whole string descriptor, as a device with the one language answers it.
int descriptor(const Device &device, int index, uint16_t language, unsigned char *out,
               uint16_t length)
{
    Bytes payload;
    if (index == 0 && language == 0) {
        payload = {kLanguage & 0xFF, kLanguage >> 8};
    } else if (language != kLanguage) {
        return -1;
    } else if (device.rawStrings.count(index)) {
        payload = device.rawStrings.at(index);
    } else if (device.strings.count(index)) {
        for (wchar_t c : device.strings.at(index))
            payload.insert(payload.end(), {uint8_t(c), uint8_t(uint32_t(c) >> 8)});
    } else {
        return -1;
    }
    Bytes whole = {uint8_t(payload.size() + 2), 0x03};
    whole.insert(whole.end(), payload.begin(), payload.end());
    const size_t count = std::min<size_t>(whole.size(), length);
    std::copy_n(whole.begin(), count, out);
    return int(count);
}

class FakeHid : public HidDevice
{
public:
    FakeHid(const Attached &device, const std::string &path)
        : HidDevice(path), m_Name(device.device.name), m_Generation(device.generation),
          m_Resets(state().resets)
    {
    }
    ~FakeHid() override
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        state().openHandles -= m_Resets == state().resets;
    }

    int write(const unsigned char *data, size_t length) override
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        if (!attached(m_Name, m_Generation))
            return -1;
        state().writes.push_back({m_Name, {path(), Bytes(data, data + length)}});
        return int(length);
    }
    int readTimeout(unsigned char *data, size_t length, int milliseconds) override
    {
        const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
        std::unique_lock<std::mutex> lock(state().mutex);
        for (;;) {
            Attached *device = attached(m_Name, m_Generation);
            if (!device)
                return -1;
            if (device->readErrors > 0) {
                --device->readErrors;
                return -1;
            }
            if (!device->reports.empty()) {
                const Bytes report = device->reports.front();
                device->reports.pop_front();
                const size_t count = std::min(length, report.size());
                std::copy_n(report.begin(), count, data);
                return int(count);
            }
            if (state().changed.wait_until(lock, deadline) == std::cv_status::timeout)
                return 0;
        }
    }
    std::wstring error() override { return L"fakeusb: the device failed"; }
    int manufacturer(wchar_t *text, size_t length) override
    {
        return indexedString(1, text, length);
    }
    int product(wchar_t *text, size_t length) override { return indexedString(2, text, length); }
    int indexedString(int index, wchar_t *text, size_t length) override
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        const Attached *device = attached(m_Name, m_Generation);
        if (!device || !device->device.strings.count(index))
            return -1;
        wcsncpy(text, device->device.strings.at(index).c_str(), length);
        text[length - 1] = L'\0';
        return 0;
    }

private:
    std::string m_Name;
    uint64_t m_Generation;
    uint64_t m_Resets;
};

class FakeUsbHandle : public UsbHandle
{
public:
    explicit FakeUsbHandle(const Device &device) : m_Device(device) {}
    int controlTransfer(uint8_t requestType, uint8_t request, uint16_t value, uint16_t index,
                        unsigned char *data, uint16_t length, unsigned) override
    {
        if (requestType != 0x80 || request != 0x06 || (value >> 8) != 0x03)
            return -1;
        return descriptor(m_Device, value & 0xFF, index, data, length);
    }

private:
    Device m_Device;
};

class FakeDeviceList : public UsbDeviceList
{
public:
    FakeDeviceList()
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        for (const Attached &candidate : state().devices) {
            if (candidate.present)
                m_Devices.push_back(candidate.device);
        }
    }
    std::vector<UsbAddress> addresses() override
    {
        std::vector<UsbAddress> result;
        for (const Device &device : m_Devices)
            result.push_back({1, device.ports});
        return result;
    }
    std::unique_ptr<UsbHandle> open(size_t index) override
    {
        if (!m_Devices.at(index).openable)
            return nullptr;
        return std::make_unique<FakeUsbHandle>(m_Devices[index]);
    }

private:
    std::vector<Device> m_Devices;
};

class FakeHotplug : public HotplugContext
{
public:
    ~FakeHotplug() override { deregisterCallback(); }
    bool hasHotplug() override { return true; }
    bool registerCallback(unsigned short vendorId, Callback callback) override
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        m_Vendor = vendorId;
        m_Callback = std::move(callback);
        state().listeners.insert(this);
        return true;
    }
    void deregisterCallback() override
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        state().listeners.erase(this);
    }
    void handleEvents(int timeoutUs) override
    {
        std::unique_lock<std::mutex> lock(state().mutex);
        state().changed.wait_for(lock, std::chrono::microseconds(timeoutUs),
                                 [this] { return m_Interrupted || !m_Pending.empty(); });
        m_Interrupted = false;
        std::deque<HotplugEvent> events;
        events.swap(m_Pending);
        lock.unlock();
        for (const HotplugEvent &event : events)
            m_Callback(event);
    }
    void interruptEvents() override
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        m_Interrupted = true;
        state().changed.notify_all();
    }
    void announce(const Device &device, short event)
    {
        if (device.vid == m_Vendor)
            m_Pending.push_back({true, device.vid, device.pid, event});
    }

private:
    unsigned short m_Vendor = 0;
    Callback m_Callback;
    std::deque<HotplugEvent> m_Pending;
    bool m_Interrupted = false;
};

class FakeUsbLink : public UsbLink
{
public:
    std::vector<HidInterface> enumerateHid(unsigned short vid, unsigned short pid) override
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        std::vector<HidInterface> result;
        for (const Attached &candidate : state().devices) {
            const Device &device = candidate.device;
            if (!candidate.present || device.vid != vid || (pid && device.pid != pid))
                continue;
            for (int number : device.interfaces)
                result.push_back({pathOf(device, number), device.vid, device.pid, number});
        }
        return result;
    }
    std::unique_ptr<HidDevice> openHid(const std::string &path) override
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        ++state().openCalls;
        for (const Attached &candidate : state().devices) {
            const Device &device = candidate.device;
            const auto &numbers = device.interfaces;
            const bool here = std::any_of(numbers.begin(), numbers.end(), [&](int number) {
                return pathOf(device, number) == path;
            });
            if (!candidate.present || !here || !device.openable)
                continue;
            ++state().openHandles;
            return std::make_unique<FakeHid>(candidate, path);
        }
        return nullptr;
    }
    std::unique_ptr<UsbDeviceList> usbDevices() override
    {
        return std::make_unique<FakeDeviceList>();
    }
    std::unique_ptr<HotplugContext> hotplugContext() override
    {
        return std::make_unique<FakeHotplug>();
    }
};

void attach(const Device &device, short event)
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    Attached *existing = find(device.name);
    if (existing && existing->present)
        throw std::logic_error("fakeusb: device already present: " + device.name);
    if (!existing)
        existing = &s.devices.emplace_back();
    *existing = Attached{device, true, ++s.generations, {}, 0};
    for (FakeHotplug *listener : s.listeners)
        listener->announce(device, event);
    s.changed.notify_all();
}

} // namespace

void reset()
{
    std::lock_guard<std::mutex> lock(state().mutex);
    state().devices.clear();
    state().writes.clear();
    state().openHandles = 0;
    state().openCalls = 0;
    ++state().resets;
    state().changed.notify_all();
}

void addDevice(const Device &device)
{
    attach(device, 0);
}

void plug(const Device &device)
{
    attach(device, 1);
}

void unplug(const std::string &name)
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    Attached &device = require(name);
    device.present = false;
    for (FakeHotplug *listener : s.listeners)
        listener->announce(device.device, 2);
    s.changed.notify_all();
}

std::string hidPath(const std::string &name, int interfaceNumber)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    return pathOf(require(name).device, interfaceNumber);
}

void queueReport(const std::string &name, const Bytes &report)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    require(name).reports.push_back(report);
    state().changed.notify_all();
}

void queueReadErrors(const std::string &name, int count)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    require(name).readErrors += count;
    state().changed.notify_all();
}

std::vector<Write> writes()
{
    std::lock_guard<std::mutex> lock(state().mutex);
    std::vector<Write> result;
    for (const auto &write : state().writes)
        result.push_back(write.second);
    return result;
}

std::vector<Write> writesTo(const std::string &name)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    std::vector<Write> result;
    for (const auto &write : state().writes) {
        if (write.first == name)
            result.push_back(write.second);
    }
    return result;
}

int openHidHandles()
{
    std::lock_guard<std::mutex> lock(state().mutex);
    return state().openHandles;
}

int hidOpenCalls()
{
    std::lock_guard<std::mutex> lock(state().mutex);
    return state().openCalls;
}

} // namespace fakeusb

UsbLink &usbLink()
{
    static fakeusb::FakeUsbLink *link = new fakeusb::FakeUsbLink;
    return *link;
}
