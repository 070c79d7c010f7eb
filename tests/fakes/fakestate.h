#pragma once

// State shared by the scripted hidapi and libusb. One mutex guards all of it;
// functions named ...Locked expect the caller to hold it.

#include "fakeusb.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace fakeusb::detail
{

constexpr uint16_t kReleaseNumber = 0x0100;

struct DeviceState {
    Device device;
    bool present = true;
    // Renewed on every plug, so handles of an earlier attachment stay dead.
    uint64_t generation = 0;
    std::deque<Bytes> reports;
    int readErrors = 0;
    int readCalls = 0;
};

struct RecordedWrite {
    std::string device; // Device::name
    Write write;
};

struct State {
    std::mutex mutex;
    // Signalled on every change anyone may wait for: reports, writes,
    // unplugs, hot-plug events, interruptions.
    std::condition_variable changed;
    std::vector<DeviceState> devices; // in the order they were first added
    std::vector<RecordedWrite> writes;
    std::vector<ControlTransfer> transfers;
    uint64_t lastGeneration = 0;
};

State &state();

// The device, whatever its state; nullptr if the name is unknown.
DeviceState *findDeviceLocked(const std::string &name);
// The device only while the attachment `generation` is still plugged in.
DeviceState *findAttachedLocked(const std::string &name, uint64_t generation);

std::string hidPathOf(const Device &device, int interfaceNumber);

// Payload of string descriptor `index` (raw bytes, or the text as UTF-16LE).
std::optional<Bytes> stringPayload(const Device &device, int index);
// The whole descriptor with its two-byte header; index 0 is the language list.
std::optional<Bytes> stringDescriptor(const Device &device, int index);
std::wstring decodeUtf16Le(const Bytes &payload);

// Implemented by the hidapi and libusb halves, called by reset() and the
// hot-plug helpers with the mutex held.
void resetHidapiLocked();
void resetLibusbLocked();
void announceArrivalLocked(const DeviceState &device);
void announceRemovalLocked(const DeviceState &device);

} // namespace fakeusb::detail
