#include "usblink.h"

#include <hidapi.h>
#include <libusb.h>

// Forwards to hidapi and libusb, nothing more: what to do with the results is
// decided above the link, where the tests reach it.

namespace
{

class HidapiDevice : public HidDevice
{
public:
    HidapiDevice(hid_device *device, const std::string &path) : HidDevice(path), m_Device(device) {}
    ~HidapiDevice() override { hid_close(m_Device); }

    int write(const unsigned char *data, size_t length) override
    {
        return hid_write(m_Device, data, length);
    }
    int readTimeout(unsigned char *data, size_t length, int milliseconds) override
    {
        return hid_read_timeout(m_Device, data, length, milliseconds);
    }
    std::wstring error() override
    {
        const wchar_t *text = hid_error(m_Device);
        return text ? text : L"";
    }
    int manufacturer(wchar_t *text, size_t length) override
    {
        return hid_get_manufacturer_string(m_Device, text, length);
    }
    int product(wchar_t *text, size_t length) override
    {
        return hid_get_product_string(m_Device, text, length);
    }
    int indexedString(int index, wchar_t *text, size_t length) override
    {
        return hid_get_indexed_string(m_Device, index, text, length);
    }

private:
    hid_device *m_Device;
};

class LibusbHandle : public UsbHandle
{
public:
    explicit LibusbHandle(libusb_device_handle *handle) : m_Handle(handle) {}
    ~LibusbHandle() override { libusb_close(m_Handle); }

    int controlTransfer(uint8_t requestType, uint8_t request, uint16_t value, uint16_t index,
                        unsigned char *data, uint16_t length, unsigned timeoutMs) override
    {
        return libusb_control_transfer(m_Handle, requestType, request, value, index, data, length,
                                       timeoutMs);
    }

private:
    libusb_device_handle *m_Handle;
};

class LibusbDeviceList : public UsbDeviceList
{
public:
    explicit LibusbDeviceList(libusb_context *context) : m_Context(context)
    {
        m_Count = libusb_get_device_list(m_Context, &m_Devices);
    }
    ~LibusbDeviceList() override
    {
        if (m_Devices)
            libusb_free_device_list(m_Devices, 1);
        libusb_exit(m_Context);
    }

    std::vector<UsbAddress> addresses() override
    {
        std::vector<UsbAddress> result;
        for (ssize_t i = 0; i < m_Count; ++i) {
            uint8_t ports[8];
            const int count = libusb_get_port_numbers(m_Devices[i], ports, sizeof ports);
            result.push_back(
                {libusb_get_bus_number(m_Devices[i]), {ports, ports + (count > 0 ? count : 0)}});
        }
        return result;
    }
    std::unique_ptr<UsbHandle> open(size_t index) override
    {
        libusb_device_handle *handle = nullptr;
        if (libusb_open(m_Devices[index], &handle) != 0)
            return nullptr;
        return std::make_unique<LibusbHandle>(handle);
    }

private:
    libusb_context *m_Context;
    libusb_device **m_Devices = nullptr;
    ssize_t m_Count = 0;
};

class LibusbHotplug : public HotplugContext
{
public:
    explicit LibusbHotplug(libusb_context *context) : m_Context(context) {}
    ~LibusbHotplug() override { libusb_exit(m_Context); }

    bool hasHotplug() override { return libusb_has_capability(LIBUSB_CAP_HAS_HOTPLUG); }
    bool registerCallback(unsigned short vendorId, Callback callback) override
    {
        m_Callback = std::move(callback);
        const int events = LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED | LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT;
        return libusb_hotplug_register_callback(m_Context, events, 0, vendorId,
                                                LIBUSB_HOTPLUG_MATCH_ANY, LIBUSB_HOTPLUG_MATCH_ANY,
                                                forward, this, &m_Handle) == LIBUSB_SUCCESS;
    }
    void deregisterCallback() override { libusb_hotplug_deregister_callback(m_Context, m_Handle); }
    void handleEvents(int timeoutUs) override
    {
        timeval timeout = {0, timeoutUs};
        libusb_handle_events_timeout(m_Context, &timeout);
    }
    void interruptEvents() override { libusb_interrupt_event_handler(m_Context); }

private:
    // Returning 0 keeps the callback registered.
    static int LIBUSB_CALL forward(libusb_context *, libusb_device *device,
                                   libusb_hotplug_event event, void *self)
    {
        libusb_device_descriptor descriptor{};
        const bool described = libusb_get_device_descriptor(device, &descriptor) == LIBUSB_SUCCESS;
        static_cast<LibusbHotplug *>(self)->m_Callback(
            {described, descriptor.idVendor, descriptor.idProduct, static_cast<short>(event)});
        return 0;
    }

    libusb_context *m_Context;
    libusb_hotplug_callback_handle m_Handle = 0;
    Callback m_Callback;
};

class RealUsbLink : public UsbLink
{
public:
    std::vector<HidInterface> enumerateHid(unsigned short vid, unsigned short pid) override
    {
        std::vector<HidInterface> result;
        hid_device_info *devices = hid_enumerate(vid, pid);
        for (const hid_device_info *entry = devices; entry; entry = entry->next)
            result.push_back(
                {entry->path, entry->vendor_id, entry->product_id, entry->interface_number});
        hid_free_enumeration(devices);
        return result;
    }
    std::unique_ptr<HidDevice> openHid(const std::string &path) override
    {
        hid_device *device = hid_open_path(path.c_str());
        if (!device)
            return nullptr;
        return std::make_unique<HidapiDevice>(device, path);
    }
    std::unique_ptr<UsbDeviceList> usbDevices() override
    {
        libusb_context *context = nullptr;
        if (libusb_init(&context) < 0)
            return nullptr;
        return std::make_unique<LibusbDeviceList>(context);
    }
    std::unique_ptr<HotplugContext> hotplugContext() override
    {
        libusb_context *context = nullptr;
        if (libusb_init(&context) < 0)
            return nullptr;
        return std::make_unique<LibusbHotplug>(context);
    }
};

} // namespace

UsbLink &usbLink()
{
    static RealUsbLink link;
    return link;
}
