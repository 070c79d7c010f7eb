#include "fakestate.h"

#include <hidapi.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <set>

using namespace fakeusb;
using namespace fakeusb::detail;

struct hid_device_ {
    std::string name;
    uint64_t generation = 0;
    std::string path;
    std::atomic<bool> nonblocking{false};
};

namespace
{

constexpr int kManufacturerIndex = 1;
constexpr int kProductIndex = 2;
constexpr int kSerialIndex = 3;

// Handles opened since the last reset; older ones are closed without counting.
std::set<hid_device *> &openHandles()
{
    static std::set<hid_device *> handles;
    return handles;
}

int openCalls = 0;

wchar_t *mallocWide(const std::wstring &text)
{
    auto *copy = static_cast<wchar_t *>(malloc((text.size() + 1) * sizeof(wchar_t)));
    wmemcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

char *mallocText(const std::string &text)
{
    auto *copy = static_cast<char *>(malloc(text.size() + 1));
    memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

// As the real library: strings are read through libusb, so none when the
// device cannot be opened or does not answer control transfers.
std::optional<std::wstring> readableString(const Device &device, int index)
{
    if (!device.openable || device.controlTransfersFail)
        return std::nullopt;
    const std::optional<Bytes> payload = stringPayload(device, index);
    if (!payload)
        return std::nullopt;
    return decodeUtf16Le(*payload);
}

wchar_t *enumerationString(const Device &device, int index)
{
    const std::optional<std::wstring> text = readableString(device, index);
    return text ? mallocWide(*text) : nullptr;
}

bool matches(const Device &device, unsigned short vendorId, unsigned short productId)
{
    return (vendorId == 0 || device.vid == vendorId) && (productId == 0 || device.pid == productId);
}

hid_device_info *newInfo(const Device &device, int interfaceNumber)
{
    auto *info = static_cast<hid_device_info *>(calloc(1, sizeof(hid_device_info)));
    info->path = mallocText(hidPathOf(device, interfaceNumber));
    info->vendor_id = device.vid;
    info->product_id = device.pid;
    info->serial_number = enumerationString(device, kSerialIndex);
    info->release_number = kReleaseNumber;
    info->manufacturer_string = enumerationString(device, kManufacturerIndex);
    info->product_string = enumerationString(device, kProductIndex);
    info->interface_number = interfaceNumber;
    info->bus_type = HID_API_BUS_USB;
    return info;
}

const DeviceState *deviceWithPathLocked(const std::string &path, int *interfaceNumber)
{
    for (const DeviceState &candidate : state().devices) {
        if (!candidate.present)
            continue;
        for (int number : candidate.device.interfaces) {
            if (hidPathOf(candidate.device, number) != path)
                continue;
            *interfaceNumber = number;
            return &candidate;
        }
    }
    return nullptr;
}

bool serialMatches(const Device &device, const wchar_t *serial)
{
    if (!serial)
        return true;
    const auto text = device.strings.find(kSerialIndex);
    return text != device.strings.end() && text->second == serial;
}

std::string firstPathLocked(unsigned short vendorId, unsigned short productId,
                            const wchar_t *serial)
{
    for (const DeviceState &candidate : state().devices) {
        const Device &device = candidate.device;
        if (!candidate.present || device.interfaces.empty())
            continue;
        if (device.vid == vendorId && device.pid == productId && serialMatches(device, serial))
            return hidPathOf(device, device.interfaces.front());
    }
    return {};
}

// Waits for the next change; false once the time allowed has run out.
bool waitForChange(std::unique_lock<std::mutex> &lock, int milliseconds,
                   std::chrono::steady_clock::time_point deadline)
{
    if (milliseconds == 0 || (milliseconds > 0 && std::chrono::steady_clock::now() >= deadline))
        return false;
    if (milliseconds < 0)
        state().changed.wait(lock);
    else
        state().changed.wait_until(lock, deadline);
    return true;
}

int copyReport(DeviceState &device, unsigned char *data, size_t length)
{
    const Bytes report = device.reports.front();
    device.reports.pop_front();
    const size_t count = std::min(length, report.size());
    memcpy(data, report.data(), count);
    return static_cast<int>(count);
}

int indexedString(hid_device *dev, int index, wchar_t *string, size_t maxlen)
{
    if (!dev || !string || maxlen == 0)
        return -1;
    std::lock_guard<std::mutex> lock(state().mutex);
    const DeviceState *device = findAttachedLocked(dev->name, dev->generation);
    if (!device)
        return -1;
    const std::optional<std::wstring> text = readableString(device->device, index);
    if (!text)
        return -1;
    wcsncpy(string, text->c_str(), maxlen);
    string[maxlen - 1] = L'\0';
    return 0;
}

} // namespace

namespace fakeusb
{

int openHidHandles()
{
    std::lock_guard<std::mutex> lock(state().mutex);
    return static_cast<int>(openHandles().size());
}

int hidOpenCalls()
{
    std::lock_guard<std::mutex> lock(state().mutex);
    return openCalls;
}

void detail::resetHidapiLocked()
{
    openHandles().clear();
    openCalls = 0;
}

} // namespace fakeusb

extern "C" {

int hid_init(void)
{
    return 0;
}

int hid_exit(void)
{
    return 0;
}

hid_device_info *hid_enumerate(unsigned short vendor_id, unsigned short product_id)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    hid_device_info *first = nullptr;
    hid_device_info **tail = &first;
    for (const DeviceState &candidate : state().devices) {
        if (!candidate.present || !matches(candidate.device, vendor_id, product_id))
            continue;
        for (int number : candidate.device.interfaces) {
            *tail = newInfo(candidate.device, number);
            tail = &(*tail)->next;
        }
    }
    return first;
}

void hid_free_enumeration(hid_device_info *devs)
{
    while (devs) {
        hid_device_info *next = devs->next;
        free(devs->path);
        free(devs->serial_number);
        free(devs->manufacturer_string);
        free(devs->product_string);
        free(devs);
        devs = next;
    }
}

hid_device *hid_open_path(const char *path)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    ++openCalls;
    if (!path)
        return nullptr;
    int interfaceNumber = 0;
    const DeviceState *device = deviceWithPathLocked(path, &interfaceNumber);
    if (!device || !device->device.openable)
        return nullptr;
    auto *handle = new hid_device{device->device.name, device->generation, path};
    openHandles().insert(handle);
    return handle;
}

hid_device *hid_open(unsigned short vendor_id, unsigned short product_id,
                     const wchar_t *serial_number)
{
    std::string path;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        path = firstPathLocked(vendor_id, product_id, serial_number);
    }
    if (path.empty())
        return nullptr;
    return hid_open_path(path.c_str());
}

void hid_close(hid_device *dev)
{
    if (!dev)
        return;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        openHandles().erase(dev);
    }
    delete dev;
}

int hid_write(hid_device *dev, const unsigned char *data, size_t length)
{
    if (!dev || (!data && length))
        return -1;
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    if (!findAttachedLocked(dev->name, dev->generation))
        return -1;
    s.writes.push_back({dev->name, {dev->path, Bytes(data, data + length)}});
    s.changed.notify_all();
    return static_cast<int>(length);
}

int hid_read_timeout(hid_device *dev, unsigned char *data, size_t length, int milliseconds)
{
    if (!dev)
        return -1;
    const std::string name = dev->name;
    const uint64_t generation = dev->generation;
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(std::max(milliseconds, 0));
    std::unique_lock<std::mutex> lock(state().mutex);
    if (DeviceState *device = findDeviceLocked(name))
        ++device->readCalls;
    for (;;) {
        DeviceState *device = findAttachedLocked(name, generation);
        if (!device)
            return -1;
        if (device->readErrors > 0) {
            --device->readErrors;
            return -1;
        }
        if (!device->reports.empty())
            return copyReport(*device, data, length);
        if (!waitForChange(lock, milliseconds, deadline))
            return 0;
    }
}

int hid_read(hid_device *dev, unsigned char *data, size_t length)
{
    return hid_read_timeout(dev, data, length, dev && dev->nonblocking ? 0 : -1);
}

int hid_set_nonblocking(hid_device *dev, int nonblock)
{
    if (!dev)
        return -1;
    dev->nonblocking = nonblock != 0;
    return 0;
}

const wchar_t *hid_error(hid_device *)
{
    return L"fakeusb: the scripted device failed";
}

int hid_get_manufacturer_string(hid_device *dev, wchar_t *string, size_t maxlen)
{
    return indexedString(dev, kManufacturerIndex, string, maxlen);
}

int hid_get_product_string(hid_device *dev, wchar_t *string, size_t maxlen)
{
    return indexedString(dev, kProductIndex, string, maxlen);
}

int hid_get_serial_number_string(hid_device *dev, wchar_t *string, size_t maxlen)
{
    return indexedString(dev, kSerialIndex, string, maxlen);
}

int hid_get_indexed_string(hid_device *dev, int string_index, wchar_t *string, size_t maxlen)
{
    return indexedString(dev, string_index, string, maxlen);
}

const hid_api_version *hid_version(void)
{
    static const hid_api_version version{HID_API_VERSION_MAJOR, HID_API_VERSION_MINOR,
                                         HID_API_VERSION_PATCH};
    return &version;
}

const char *hid_version_str(void)
{
    return HID_API_VERSION_STR;
}

} // extern "C"
