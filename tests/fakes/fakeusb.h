#pragma once

// Scripted devices behind the device code's USB link (usblink.h): tests link
// this library instead of usb_backend, and every write is recorded.

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
    std::vector<uint8_t> ports{1}; // on bus 1: HID path "1-p1.p2:1.iface"
    std::vector<int> interfaces{0, 1, 2};
    // HID text strings: 1 maker, 2 product, 3 serial, 4, 5, ...
    std::map<int, std::wstring> strings;
    std::map<int, Bytes> rawStrings; // USB string descriptors in 0x0409, payload only (e.g. 100)
    bool openable = true;            // false: neither the HID nor the USB device opens
};

struct Write {
    std::string path; // HID path of the handle written to
    Bytes data;
};

// Forget every device, handle and record.
void reset();
// A device present from the start (no hot-plug event).
void addDevice(const Device &device);
// Hot-plug: the event reaches every registered listener's next event wait. A
// replugged device is a new attachment: handles of the old one stay dead.
void plug(const Device &device);
void unplug(const std::string &name);

std::string hidPath(const std::string &name, int interfaceNumber);

// Reports returned, in order, by reads on any open handle of the device; an
// empty one makes its read fail.
void queueReport(const std::string &name, const Bytes &report);

// Writes to the named device, or to any with "".
std::vector<Write> writesTo(const std::string &name);
int openHidHandles();

} // namespace fakeusb
