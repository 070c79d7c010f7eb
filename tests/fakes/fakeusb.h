#pragma once

// Scripted stand-in for hidapi (libusb backend) and libusb 1.0. Tests link
// this library instead of the real ones; every call of the production code
// then sees the devices scripted here, and every write is recorded.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace fakeusb
{

using Bytes = std::vector<uint8_t>;

struct Device {
    std::string name; // the test's handle for the device
    uint16_t vid = 0x5A3C;
    uint16_t pid = 0;
    uint8_t bus = 1;
    std::vector<uint8_t> ports{1}; // hidapi path "bus-p1.p2:1.iface"
    uint8_t address = 1;
    std::vector<int> interfaces{0, 1, 2};
    // text string descriptors (1 maker, 2 product, 3 serial, 4, 5, ...)
    std::map<int, std::wstring> strings;
    std::map<int, Bytes> rawStrings; // binary string descriptors, payload only (e.g. 100)
    std::vector<uint16_t> langIds{0x0409};
    // false: hid_open_path and libusb_open fail, enumeration has no strings (as without root)
    bool openable = true;
    bool controlTransfersFail = false; // every libusb control transfer fails
};

struct Write {
    std::string path; // hidapi path of the handle written to
    Bytes data;       // exactly the bytes given, of the length given
};

struct ControlTransfer {
    std::string device; // Device::name
    uint8_t requestType;
    uint8_t request;
    uint16_t value;
    uint16_t index;
    uint16_t length;
};

// Forget every device, handle, callback and record.
void reset();

// A device present from the start (no hot-plug event).
void addDevice(const Device &device);
// Hot-plug: arrival or removal, delivered to registered libusb callbacks from
// the next libusb_handle_events* call.
void plug(const Device &device);
void unplug(const std::string &name);

std::string hidPath(const std::string &name, int interfaceNumber);

// Reports returned, in order, by hid_read_timeout on any open handle of the device.
void queueReport(const std::string &name, const Bytes &report);
// The next `count` reads on the device fail with -1.
void queueReadErrors(const std::string &name, int count);

std::vector<Write> writes();
std::vector<Write> writesTo(const std::string &name);
std::vector<ControlTransfer> controlTransfers();
// Blocks until at least `count` writes were recorded or the time is up.
bool waitForWrites(size_t count, int timeoutMs);

int openHidHandles();
int openUsbHandles();
int hidOpenCalls();
int hidReadCalls(const std::string &name);

} // namespace fakeusb
