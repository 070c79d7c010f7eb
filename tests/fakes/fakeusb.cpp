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
#include <utility>

namespace fakeusb
{
namespace
{

using Lock = std::unique_lock<std::mutex>;
constexpr uint16_t kLanguage = 0x0409;

// One attachment of a device: a replug is a new one, so old handles stay dead.
struct Attached {
    Device device;
    bool present = true;
    std::deque<Bytes> reports; // an empty one is a failed read
};

class FakeHotplug;

struct State {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Attached> devices;
    std::vector<std::pair<std::string, Write>> writes;
    std::set<FakeHotplug *> listeners;
    std::set<const HidDevice *> handles; // open, and opened since the last reset
};

// Never destroyed: the program's objects may call in during exit.
State &state()
{
    static State *instance = new State;
    return *instance;
}

Attached &latest(const std::string &name)
{
    auto &devices = state().devices;
    const auto found = std::find_if(devices.rbegin(), devices.rend(),
                                    [&](const Attached &a) { return a.device.name == name; });
    if (found == devices.rend())
        throw std::invalid_argument("fakeusb: unknown device " + name);
    return *found;
}

std::string pathOf(const Device &device, int interfaceNumber)
{
    std::string path = "1-";
    for (size_t i = 0; i < device.ports.size(); ++i)
        path += (i ? "." : "") + std::to_string(device.ports[i]);
    return path + ":1." + std::to_string(interfaceNumber);
}

class FakeHid : public HidDevice
{
public:
    FakeHid(size_t index, const std::string &path) : HidDevice(path), m_Index(index)
    {
        state().handles.insert(this);
    }
    ~FakeHid() override
    {
        const Lock lock(state().mutex);
        state().handles.erase(this);
    }
    int write(const unsigned char *data, size_t length) override
    {
        const Lock lock(state().mutex);
        if (!alive())
            return -1;
        state().writes.push_back({alive()->device.name, {path(), Bytes(data, data + length)}});
        return int(length);
    }
    int readTimeout(unsigned char *data, size_t length, int milliseconds) override
    {
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        Lock lock(state().mutex);
        for (Attached *device = alive(); device; device = alive()) {
            if (!device->reports.empty()) {
                const Bytes report = device->reports.front();
                device->reports.pop_front();
                if (report.empty())
                    return -1;
                std::copy_n(report.begin(), std::min(length, report.size()), data);
                return int(std::min(length, report.size()));
            }
            if (state().changed.wait_until(lock, deadline) == std::cv_status::timeout)
                return 0;
        }
        return -1;
    }
    std::wstring error() override { return L"fakeusb: the device failed"; }
    int manufacturer(wchar_t *t, size_t length) override { return indexedString(1, t, length); }
    int product(wchar_t *t, size_t length) override { return indexedString(2, t, length); }
    int indexedString(int index, wchar_t *text, size_t length) override
    {
        const Lock lock(state().mutex);
        if (!alive() || !alive()->device.strings.count(index))
            return -1;
        wcsncpy(text, alive()->device.strings.at(index).c_str(), length);
        text[length - 1] = L'\0';
        return 0;
    }

private:
    Attached *alive()
    {
        const bool current = state().handles.count(this) && state().devices[m_Index].present;
        return current ? &state().devices[m_Index] : nullptr;
    }

    size_t m_Index;
};

// Answers GET_DESCRIPTOR for strings as a device with the one language does.
class FakeUsbHandle : public UsbHandle
{
public:
    explicit FakeUsbHandle(const Device &device) : m_Device(device) {}
    int controlTransfer(uint8_t requestType, uint8_t request, uint16_t value, uint16_t language,
                        unsigned char *data, uint16_t length, unsigned) override
    {
        const int index = value & 0xFF;
        if (requestType != 0x80 || request != 0x06 || (value >> 8) != 0x03 ||
            language != (index ? kLanguage : 0) || (index && !m_Device.rawStrings.count(index)))
            return -1;
        Bytes payload =
            index ? m_Device.rawStrings.at(index) : Bytes{kLanguage & 0xFF, kLanguage >> 8};
        payload.insert(payload.begin(), {uint8_t(payload.size() + 2), 0x03});
        std::copy_n(payload.begin(), std::min<size_t>(payload.size(), length), data);
        return int(std::min<size_t>(payload.size(), length));
    }

private:
    Device m_Device;
};

class FakeDeviceList : public UsbDeviceList
{
public:
    FakeDeviceList()
    {
        const Lock lock(state().mutex);
        for (const Attached &candidate : state().devices)
            if (candidate.present)
                m_Devices.push_back(candidate.device);
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
        const Device &device = m_Devices.at(index);
        return device.openable ? std::make_unique<FakeUsbHandle>(device) : nullptr;
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
        const Lock lock(state().mutex);
        m_Vendor = vendorId;
        m_Callback = std::move(callback);
        state().listeners.insert(this);
        return true;
    }
    void deregisterCallback() override
    {
        const Lock lock(state().mutex);
        state().listeners.erase(this);
    }
    void handleEvents(int timeoutUs) override
    {
        Lock lock(state().mutex);
        state().changed.wait_for(lock, std::chrono::microseconds(timeoutUs),
                                 [this] { return m_Interrupted || !m_Pending.empty(); });
        m_Interrupted = false;
        const std::deque<HotplugEvent> events = std::exchange(m_Pending, {});
        lock.unlock();
        for (const HotplugEvent &event : events)
            m_Callback(event);
    }
    void interruptEvents() override
    {
        const Lock lock(state().mutex);
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
        const Lock lock(state().mutex);
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
        const Lock lock(state().mutex);
        for (size_t i = 0; i < state().devices.size(); ++i) {
            const Attached &candidate = state().devices[i];
            for (int number : candidate.device.interfaces)
                if (candidate.present && candidate.device.openable &&
                    pathOf(candidate.device, number) == path)
                    return std::make_unique<FakeHid>(i, path);
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

void announce(const Device &device, short event)
{
    for (FakeHotplug *listener : state().listeners)
        listener->announce(device, event);
    state().changed.notify_all();
}

} // namespace

void reset()
{
    const Lock lock(state().mutex);
    state().devices.clear();
    state().writes.clear();
    state().handles.clear();
    state().changed.notify_all();
}

void addDevice(const Device &device)
{
    const Lock lock(state().mutex);
    state().devices.push_back({device, true, {}});
}

void plug(const Device &device)
{
    addDevice(device);
    const Lock lock(state().mutex);
    announce(device, 1);
}

void unplug(const std::string &name)
{
    const Lock lock(state().mutex);
    latest(name).present = false;
    announce(latest(name).device, 2);
}

std::string hidPath(const std::string &name, int interfaceNumber)
{
    const Lock lock(state().mutex);
    return pathOf(latest(name).device, interfaceNumber);
}

void queueReport(const std::string &name, const Bytes &report)
{
    const Lock lock(state().mutex);
    latest(name).reports.push_back(report);
    state().changed.notify_all();
}

std::vector<Write> writesTo(const std::string &name)
{
    const Lock lock(state().mutex);
    std::vector<Write> result;
    for (const auto &write : state().writes)
        if (name.empty() || write.first == name)
            result.push_back(write.second);
    return result;
}

int openHidHandles()
{
    const Lock lock(state().mutex);
    return int(state().handles.size());
}

} // namespace fakeusb

UsbLink &usbLink()
{
    static auto *link = new fakeusb::FakeUsbLink;
    return *link;
}
