#include "fakestate.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace fakeusb
{
namespace detail
{

State &state()
{
    // Never destroyed: production objects may still call in during exit.
    static State *instance = new State;
    return *instance;
}

DeviceState *findDeviceLocked(const std::string &name)
{
    for (DeviceState &candidate : state().devices) {
        if (candidate.device.name == name)
            return &candidate;
    }
    return nullptr;
}

DeviceState *findAttachedLocked(const std::string &name, uint64_t generation)
{
    DeviceState *found = findDeviceLocked(name);
    if (!found || !found->present || found->generation != generation)
        return nullptr;
    return found;
}

std::string hidPathOf(const Device &device, int interfaceNumber)
{
    std::string path = std::to_string(device.bus) + "-";
    for (size_t i = 0; i < device.ports.size(); ++i)
        path += (i ? "." : "") + std::to_string(device.ports[i]);
    return path + ":1." + std::to_string(interfaceNumber);
}

namespace
{

void appendUnit(Bytes &out, uint32_t unit)
{
    out.push_back(static_cast<uint8_t>(unit & 0xFF));
    out.push_back(static_cast<uint8_t>(unit >> 8));
}

Bytes encodeUtf16Le(const std::wstring &text)
{
    Bytes out;
    for (wchar_t c : text) {
        const uint32_t code = static_cast<uint32_t>(c);
        if (code < 0x10000) {
            appendUnit(out, code);
            continue;
        }
        appendUnit(out, 0xD800 + ((code - 0x10000) >> 10));
        appendUnit(out, 0xDC00 + ((code - 0x10000) & 0x3FF));
    }
    return out;
}

Bytes withHeader(const Bytes &payload)
{
    // bLength is one byte: longer payloads are cut as a device would have to.
    const size_t total = std::min<size_t>(payload.size() + 2, 255);
    Bytes descriptor(total);
    descriptor[0] = static_cast<uint8_t>(total);
    descriptor[1] = 0x03;
    std::copy_n(payload.begin(), total - 2, descriptor.begin() + 2);
    return descriptor;
}

DeviceState &requireDeviceLocked(const std::string &name)
{
    DeviceState *found = findDeviceLocked(name);
    if (!found)
        throw std::invalid_argument("fakeusb: unknown device " + name);
    return *found;
}

void attachLocked(const Device &device)
{
    State &s = state();
    DeviceState *existing = findDeviceLocked(device.name);
    if (existing && existing->present)
        throw std::logic_error("fakeusb: device already present: " + device.name);
    if (!existing) {
        s.devices.emplace_back();
        existing = &s.devices.back();
    }
    existing->device = device;
    existing->present = true;
    existing->generation = ++s.lastGeneration;
}

} // namespace

std::optional<Bytes> stringPayload(const Device &device, int index)
{
    const auto raw = device.rawStrings.find(index);
    if (raw != device.rawStrings.end())
        return raw->second;
    const auto text = device.strings.find(index);
    if (text != device.strings.end())
        return encodeUtf16Le(text->second);
    return std::nullopt;
}

std::optional<Bytes> stringDescriptor(const Device &device, int index)
{
    if (index != 0) {
        const std::optional<Bytes> payload = stringPayload(device, index);
        if (!payload)
            return std::nullopt;
        return withHeader(*payload);
    }
    Bytes languages;
    for (uint16_t id : device.langIds)
        appendUnit(languages, id);
    return withHeader(languages);
}

std::wstring decodeUtf16Le(const Bytes &payload)
{
    std::wstring text;
    for (size_t i = 0; i + 1 < payload.size(); i += 2) {
        const uint32_t unit = payload[i] | payload[i + 1] << 8;
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        const uint32_t next = i + 3 < payload.size() ? payload[i + 2] | payload[i + 3] << 8 : 0;
        if (high && next >= 0xDC00 && next < 0xE000) {
            text += static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            i += 2;
            continue;
        }
        text += static_cast<wchar_t>(unit);
    }
    return text;
}

} // namespace detail

using namespace detail;

void reset()
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.devices.clear();
    s.writes.clear();
    s.transfers.clear();
    resetHidapiLocked();
    resetLibusbLocked();
    s.changed.notify_all();
}

void addDevice(const Device &device)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    if (findDeviceLocked(device.name))
        throw std::logic_error("fakeusb: device added twice: " + device.name);
    attachLocked(device);
}

void plug(const Device &device)
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    attachLocked(device);
    announceArrivalLocked(*findDeviceLocked(device.name));
    s.changed.notify_all();
}

void unplug(const std::string &name)
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    DeviceState &device = requireDeviceLocked(name);
    if (!device.present)
        throw std::logic_error("fakeusb: device already unplugged: " + name);
    device.present = false;
    device.reports.clear();
    device.readErrors = 0;
    announceRemovalLocked(device);
    s.changed.notify_all();
}

std::string hidPath(const std::string &name, int interfaceNumber)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    return hidPathOf(requireDeviceLocked(name).device, interfaceNumber);
}

void queueReport(const std::string &name, const Bytes &report)
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    requireDeviceLocked(name).reports.push_back(report);
    s.changed.notify_all();
}

void queueReadErrors(const std::string &name, int count)
{
    State &s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    requireDeviceLocked(name).readErrors += count;
    s.changed.notify_all();
}

std::vector<Write> writes()
{
    std::lock_guard<std::mutex> lock(state().mutex);
    std::vector<Write> result;
    for (const RecordedWrite &recorded : state().writes)
        result.push_back(recorded.write);
    return result;
}

std::vector<Write> writesTo(const std::string &name)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    std::vector<Write> result;
    for (const RecordedWrite &recorded : state().writes) {
        if (recorded.device == name)
            result.push_back(recorded.write);
    }
    return result;
}

std::vector<ControlTransfer> controlTransfers()
{
    std::lock_guard<std::mutex> lock(state().mutex);
    return state().transfers;
}

bool waitForWrites(size_t count, int timeoutMs)
{
    State &s = state();
    std::unique_lock<std::mutex> lock(s.mutex);
    return s.changed.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                              [&] { return s.writes.size() >= count; });
}

int hidReadCalls(const std::string &name)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    return requireDeviceLocked(name).readCalls;
}

} // namespace fakeusb
