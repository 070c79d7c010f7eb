#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// What the device code needs of hidapi (libusb backend) and libusb 1.0. The
// program links the adapter that forwards to them; every decision stays with
// the callers.

struct HidInterface {
    std::string path;
    unsigned short vendorId = 0;
    unsigned short productId = 0;
    int interfaceNumber = -1;
};

// An open HID interface. Results are hidapi's: negative on failure.
class HidDevice
{
public:
    explicit HidDevice(std::string path) : m_Path(std::move(path)) {}
    virtual ~HidDevice() = default;

    const std::string &path() const { return m_Path; }

    virtual int write(const unsigned char *data, size_t length) = 0;
    virtual int readTimeout(unsigned char *data, size_t length, int milliseconds) = 0;
    virtual std::wstring error() = 0;
    virtual int manufacturer(wchar_t *text, size_t length) = 0;
    virtual int product(wchar_t *text, size_t length) = 0;
    virtual int indexedString(int index, wchar_t *text, size_t length) = 0;

private:
    std::string m_Path;
};

// An open USB device, for control transfers; the result is libusb's.
class UsbHandle
{
public:
    virtual ~UsbHandle() = default;
    virtual int controlTransfer(uint8_t requestType, uint8_t request, uint16_t value,
                                uint16_t index, unsigned char *data, uint16_t length,
                                unsigned timeoutMs) = 0;
};

struct UsbAddress {
    uint8_t bus = 0;
    std::vector<uint8_t> ports;
};

// The USB devices present when it was made, held until it goes.
class UsbDeviceList
{
public:
    virtual ~UsbDeviceList() = default;
    virtual std::vector<UsbAddress> addresses() = 0;
    // nullptr when the device cannot be opened.
    virtual std::unique_ptr<UsbHandle> open(size_t index) = 0;
};

struct HotplugEvent {
    bool described = false; // the device descriptor could be read
    unsigned short vendorId = 0;
    unsigned short productId = 0;
    short event = 0; // libusb's: 1 arrived, 2 left
};

// One libusb context with at most one hot-plug callback; going away exits it.
class HotplugContext
{
public:
    using Callback = std::function<void(const HotplugEvent &)>;
    virtual ~HotplugContext() = default;
    virtual bool hasHotplug() = 0;
    // Arrivals and removals of the vendor's devices; false when not registered.
    virtual bool registerCallback(unsigned short vendorId, Callback callback) = 0;
    virtual void deregisterCallback() = 0;
    // Runs callbacks for the events of up to `timeoutUs`.
    virtual void handleEvents(int timeoutUs) = 0;
    virtual void interruptEvents() = 0;
};

class UsbLink
{
public:
    virtual ~UsbLink() = default;
    // pid 0 is any product.
    virtual std::vector<HidInterface> enumerateHid(unsigned short vid, unsigned short pid) = 0;
    virtual std::unique_ptr<HidDevice> openHid(const std::string &path) = 0;
    // nullptr when libusb cannot start.
    virtual std::unique_ptr<UsbDeviceList> usbDevices() = 0;
    virtual std::unique_ptr<HotplugContext> hotplugContext() = 0;
};

// Defined by the library linked in: the adapter, or the tests' fake.
UsbLink &usbLink();
