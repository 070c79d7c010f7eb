#include "fakestate.h"

#include <libusb.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <utility>

using namespace fakeusb;
using namespace fakeusb::detail;

// A device as one context sees it: a snapshot of the attachment, kept alive
// by references like the real one so callbacks may hold on to it.
struct libusb_device {
    Device device;
    uint64_t generation = 0;
    int references = 1;
};

struct libusb_device_handle {
    libusb_device *device = nullptr;
};

namespace
{

using Attachment = std::pair<std::string, uint64_t>;

struct Callback {
    libusb_hotplug_callback_handle handle;
    int events;
    int vendorId;
    int productId;
    int deviceClass;
    libusb_hotplug_callback_fn function;
    void *userData;
};

struct Event {
    libusb_hotplug_event kind;
    Device device;
    uint64_t generation;
};

constexpr int kDefaultEventWaitMs = 100;
constexpr int kStringRequestType = LIBUSB_ENDPOINT_IN;
constexpr int kLanguageRequestLength = 4;
constexpr int kAsciiBufferSize = 255;

} // namespace

struct libusb_context {
    std::map<Attachment, libusb_device *> devices; // each holds one reference
    std::vector<Callback> callbacks;
    std::deque<Event> pending;
    bool interrupted = false;
    libusb_hotplug_callback_handle nextHandle = 1;
    int initCount = 1; // libusb_init(NULL) calls on the default context
};

namespace
{

std::set<libusb_context *> &contexts()
{
    static std::set<libusb_context *> all;
    return all;
}

libusb_context *defaultContext = nullptr;

// Handles opened since the last reset; older ones are closed without counting.
std::set<libusb_device_handle *> &openHandles()
{
    static std::set<libusb_device_handle *> handles;
    return handles;
}

libusb_context *newContextLocked()
{
    auto *context = new libusb_context;
    contexts().insert(context);
    return context;
}

// NULL is the default context; made on first use as libusb tolerates that.
libusb_context *resolveLocked(libusb_context *context)
{
    if (context)
        return context;
    if (!defaultContext)
        defaultContext = newContextLocked();
    return defaultContext;
}

void unrefLocked(libusb_device *device)
{
    if (--device->references == 0)
        delete device;
}

libusb_device *knownDeviceLocked(libusb_context *context, const Device &device, uint64_t generation)
{
    libusb_device *&known = context->devices[{device.name, generation}];
    if (!known)
        known = new libusb_device{device, generation};
    return known;
}

void forgetDeviceLocked(libusb_context *context, const Attachment &attachment)
{
    const auto found = context->devices.find(attachment);
    if (found == context->devices.end())
        return;
    unrefLocked(found->second);
    context->devices.erase(found);
}

void clearContextLocked(libusb_context *context)
{
    for (const auto &entry : context->devices)
        unrefLocked(entry.second);
    context->devices.clear();
    context->callbacks.clear();
    context->pending.clear();
    context->interrupted = false;
}

void announceLocked(libusb_hotplug_event kind, const DeviceState &device)
{
    for (libusb_context *context : contexts())
        context->pending.push_back({kind, device.device, device.generation});
}

bool callbackMatches(const Callback &callback, const libusb_device *device,
                     libusb_hotplug_event kind)
{
    const auto accepts = [](int filter, int value) {
        return filter == LIBUSB_HOTPLUG_MATCH_ANY || filter == value;
    };
    return (callback.events & kind) && accepts(callback.vendorId, device->device.vid) &&
           accepts(callback.productId, device->device.pid) && accepts(callback.deviceClass, 0);
}

const Callback *findCallbackLocked(libusb_context *context, libusb_hotplug_callback_handle handle)
{
    for (const Callback &callback : context->callbacks) {
        if (callback.handle == handle)
            return &callback;
    }
    return nullptr;
}

void removeCallbackLocked(libusb_context *context, libusb_hotplug_callback_handle handle)
{
    auto &callbacks = context->callbacks;
    callbacks.erase(std::remove_if(callbacks.begin(), callbacks.end(),
                                   [&](const Callback &c) { return c.handle == handle; }),
                    callbacks.end());
}

std::vector<libusb_hotplug_callback_handle> callbackHandlesLocked(libusb_context *context)
{
    std::vector<libusb_hotplug_callback_handle> handles;
    for (const Callback &callback : context->callbacks)
        handles.push_back(callback.handle);
    return handles;
}

// Runs the callbacks outside the lock, as they call back into libusb. A
// callback removed meanwhile is skipped; one returning 1 is removed when
// `honourReturn` (events from handle_events, not the initial enumeration).
void runCallbacks(libusb_context *context, libusb_device *device, libusb_hotplug_event kind,
                  const std::vector<libusb_hotplug_callback_handle> &handles, bool honourReturn)
{
    std::unique_lock<std::mutex> lock(state().mutex);
    for (libusb_hotplug_callback_handle handle : handles) {
        const Callback *callback = findCallbackLocked(context, handle);
        if (!callback || !callbackMatches(*callback, device, kind))
            continue;
        const Callback copy = *callback;
        lock.unlock();
        const int result = copy.function(context, device, kind, copy.userData);
        lock.lock();
        if (honourReturn && result == 1)
            removeCallbackLocked(context, handle);
    }
}

void deliver(libusb_context *context, const Event &event)
{
    libusb_device *device = nullptr;
    std::vector<libusb_hotplug_callback_handle> handles;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        device = knownDeviceLocked(context, event.device, event.generation);
        ++device->references;
        handles = callbackHandlesLocked(context);
    }
    runCallbacks(context, device, event.kind, handles, true);
    std::lock_guard<std::mutex> lock(state().mutex);
    unrefLocked(device);
    if (event.kind == LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT)
        forgetDeviceLocked(context, {event.device.name, event.generation});
}

std::chrono::milliseconds waitTime(const timeval *tv)
{
    if (!tv)
        return std::chrono::milliseconds(kDefaultEventWaitMs);
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::seconds(tv->tv_sec) + std::chrono::microseconds(tv->tv_usec));
}

int handleEvents(libusb_context *ctx, std::chrono::milliseconds wait, const int *completed)
{
    std::deque<Event> events;
    libusb_context *context = nullptr;
    {
        std::unique_lock<std::mutex> lock(state().mutex);
        context = resolveLocked(ctx);
        if (completed && *completed)
            return LIBUSB_SUCCESS;
        state().changed.wait_for(lock, wait,
                                 [&] { return !context->pending.empty() || context->interrupted; });
        context->interrupted = false;
        events.swap(context->pending);
    }
    for (const Event &event : events)
        deliver(context, event);
    return LIBUSB_SUCCESS;
}

std::vector<libusb_device *> presentDevicesLocked(libusb_context *context)
{
    std::vector<libusb_device *> devices;
    for (const DeviceState &candidate : state().devices) {
        if (!candidate.present)
            continue;
        libusb_device *device = knownDeviceLocked(context, candidate.device, candidate.generation);
        ++device->references;
        devices.push_back(device);
    }
    return devices;
}

void enumerateInto(libusb_context *context, libusb_hotplug_callback_handle handle)
{
    std::vector<libusb_device *> devices;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        devices = presentDevicesLocked(context);
    }
    for (libusb_device *device : devices)
        runCallbacks(context, device, LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED, {handle}, false);
    std::lock_guard<std::mutex> lock(state().mutex);
    for (libusb_device *device : devices)
        unrefLocked(device);
}

int transferResultLocked(libusb_device_handle *handle, uint8_t requestType, uint8_t request,
                         uint16_t value, unsigned char *data, uint16_t length)
{
    const libusb_device *usbDevice = handle->device;
    const DeviceState *device = findAttachedLocked(usbDevice->device.name, usbDevice->generation);
    if (!device)
        return LIBUSB_ERROR_NO_DEVICE;
    const bool stringRequest = requestType == kStringRequestType &&
                               request == LIBUSB_REQUEST_GET_DESCRIPTOR &&
                               (value >> 8) == LIBUSB_DT_STRING;
    if (device->device.controlTransfersFail || !stringRequest)
        return LIBUSB_ERROR_PIPE;
    const std::optional<Bytes> descriptor = stringDescriptor(device->device, value & 0xFF);
    if (!descriptor)
        return LIBUSB_ERROR_PIPE;
    const size_t count = std::min<size_t>(length, descriptor->size());
    if (count)
        memcpy(data, descriptor->data(), count);
    return static_cast<int>(count);
}

// The checks libusb_get_string_descriptor_ascii makes on what it received.
bool validLanguageList(const unsigned char *buffer, int received)
{
    return received == kLanguageRequestLength && buffer[0] >= kLanguageRequestLength &&
           buffer[1] == LIBUSB_DT_STRING;
}

bool validString(const unsigned char *buffer, int received)
{
    return received >= 2 && buffer[0] <= received && buffer[1] == LIBUSB_DT_STRING;
}

} // namespace

namespace fakeusb
{

int openUsbHandles()
{
    std::lock_guard<std::mutex> lock(state().mutex);
    return static_cast<int>(openHandles().size());
}

void detail::resetLibusbLocked()
{
    for (libusb_context *context : contexts())
        clearContextLocked(context);
    openHandles().clear();
}

void detail::announceArrivalLocked(const DeviceState &device)
{
    announceLocked(LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED, device);
}

void detail::announceRemovalLocked(const DeviceState &device)
{
    announceLocked(LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT, device);
}

} // namespace fakeusb

extern "C" {

int libusb_init(libusb_context **ctx)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    if (ctx) {
        *ctx = newContextLocked();
        return LIBUSB_SUCCESS;
    }
    if (defaultContext)
        ++defaultContext->initCount;
    else
        defaultContext = newContextLocked();
    return LIBUSB_SUCCESS;
}

void libusb_exit(libusb_context *ctx)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    libusb_context *context = ctx ? ctx : defaultContext;
    if (!context || (!ctx && --context->initCount > 0))
        return;
    if (!ctx)
        defaultContext = nullptr;
    clearContextLocked(context);
    contexts().erase(context);
    delete context;
}

int libusb_set_option(libusb_context *, enum libusb_option, ...)
{
    return LIBUSB_SUCCESS;
}

ssize_t libusb_get_device_list(libusb_context *ctx, libusb_device ***list)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    const std::vector<libusb_device *> devices = presentDevicesLocked(resolveLocked(ctx));
    auto **array =
        static_cast<libusb_device **>(calloc(devices.size() + 1, sizeof(libusb_device *)));
    std::copy(devices.begin(), devices.end(), array);
    *list = array;
    return static_cast<ssize_t>(devices.size());
}

void libusb_free_device_list(libusb_device **list, int unref_devices)
{
    if (!list)
        return;
    if (unref_devices) {
        std::lock_guard<std::mutex> lock(state().mutex);
        for (libusb_device **device = list; *device; ++device)
            unrefLocked(*device);
    }
    free(list);
}

libusb_device *libusb_ref_device(libusb_device *dev)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    ++dev->references;
    return dev;
}

void libusb_unref_device(libusb_device *dev)
{
    if (!dev)
        return;
    std::lock_guard<std::mutex> lock(state().mutex);
    unrefLocked(dev);
}

uint8_t libusb_get_bus_number(libusb_device *dev)
{
    return dev->device.bus;
}

int libusb_get_port_numbers(libusb_device *dev, uint8_t *port_numbers, int port_numbers_len)
{
    const std::vector<uint8_t> &ports = dev->device.ports;
    if (port_numbers_len <= 0)
        return LIBUSB_ERROR_INVALID_PARAM;
    if (ports.size() > static_cast<size_t>(port_numbers_len))
        return LIBUSB_ERROR_OVERFLOW;
    std::copy(ports.begin(), ports.end(), port_numbers);
    return static_cast<int>(ports.size());
}

uint8_t libusb_get_device_address(libusb_device *dev)
{
    return dev->device.address;
}

int libusb_get_device_descriptor(libusb_device *dev, struct libusb_device_descriptor *desc)
{
    *desc = {};
    desc->bLength = LIBUSB_DT_DEVICE_SIZE;
    desc->bDescriptorType = LIBUSB_DT_DEVICE;
    desc->bcdUSB = 0x0200;
    desc->bMaxPacketSize0 = 64;
    desc->idVendor = dev->device.vid;
    desc->idProduct = dev->device.pid;
    desc->bcdDevice = kReleaseNumber;
    desc->iManufacturer = 1;
    desc->iProduct = 2;
    desc->iSerialNumber = 3;
    desc->bNumConfigurations = 1;
    return LIBUSB_SUCCESS;
}

int libusb_open(libusb_device *dev, libusb_device_handle **dev_handle)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    const DeviceState *device = findAttachedLocked(dev->device.name, dev->generation);
    if (!device)
        return LIBUSB_ERROR_NO_DEVICE;
    if (!device->device.openable)
        return LIBUSB_ERROR_ACCESS;
    ++dev->references;
    *dev_handle = new libusb_device_handle{dev};
    openHandles().insert(*dev_handle);
    return LIBUSB_SUCCESS;
}

void libusb_close(libusb_device_handle *dev_handle)
{
    if (!dev_handle)
        return;
    std::lock_guard<std::mutex> lock(state().mutex);
    openHandles().erase(dev_handle);
    unrefLocked(dev_handle->device);
    delete dev_handle;
}

libusb_device *libusb_get_device(libusb_device_handle *dev_handle)
{
    return dev_handle->device;
}

int libusb_control_transfer(libusb_device_handle *dev_handle, uint8_t request_type,
                            uint8_t bRequest, uint16_t wValue, uint16_t wIndex, unsigned char *data,
                            uint16_t wLength, unsigned int)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    state().transfers.push_back(
        {dev_handle->device->device.name, request_type, bRequest, wValue, wIndex, wLength});
    return transferResultLocked(dev_handle, request_type, bRequest, wValue, data, wLength);
}

int libusb_get_string_descriptor_ascii(libusb_device_handle *dev_handle, uint8_t desc_index,
                                       unsigned char *data, int length)
{
    if (desc_index == 0 || length <= 0)
        return LIBUSB_ERROR_INVALID_PARAM;
    unsigned char buffer[kAsciiBufferSize] = {};
    int received = libusb_get_string_descriptor(dev_handle, 0, 0, buffer, kLanguageRequestLength);
    if (received < 0)
        return received;
    if (!validLanguageList(buffer, received))
        return LIBUSB_ERROR_IO;
    const uint16_t language = static_cast<uint16_t>(buffer[2] | buffer[3] << 8);
    received =
        libusb_get_string_descriptor(dev_handle, desc_index, language, buffer, sizeof buffer);
    if (received < 0)
        return received;
    if (!validString(buffer, received))
        return LIBUSB_ERROR_IO;
    int written = 0;
    for (int i = 2; i + 1 < buffer[0] && written < length - 1; i += 2) {
        const int unit = buffer[i] | buffer[i + 1] << 8;
        data[written++] = unit < 0x80 ? static_cast<unsigned char>(unit) : '?';
    }
    data[written] = 0;
    return written;
}

int libusb_has_capability(uint32_t capability)
{
    switch (capability) {
    case LIBUSB_CAP_HAS_CAPABILITY:
    case LIBUSB_CAP_HAS_HOTPLUG:
    case LIBUSB_CAP_HAS_HID_ACCESS:
    case LIBUSB_CAP_SUPPORTS_DETACH_KERNEL_DRIVER:
        return 1;
    default:
        return 0;
    }
}

int libusb_hotplug_register_callback(libusb_context *ctx, int events, int flags, int vendor_id,
                                     int product_id, int dev_class,
                                     libusb_hotplug_callback_fn cb_fn, void *user_data,
                                     libusb_hotplug_callback_handle *callback_handle)
{
    const int known = LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED | LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT;
    if (!cb_fn || events == 0 || (events & ~known))
        return LIBUSB_ERROR_INVALID_PARAM;
    libusb_context *context = nullptr;
    libusb_hotplug_callback_handle handle = 0;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        context = resolveLocked(ctx);
        handle = context->nextHandle++;
        context->callbacks.push_back(
            {handle, events, vendor_id, product_id, dev_class, cb_fn, user_data});
    }
    if (callback_handle)
        *callback_handle = handle;
    if ((flags & LIBUSB_HOTPLUG_ENUMERATE) && (events & LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED))
        enumerateInto(context, handle);
    return LIBUSB_SUCCESS;
}

void libusb_hotplug_deregister_callback(libusb_context *ctx,
                                        libusb_hotplug_callback_handle callback_handle)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    libusb_context *context = resolveLocked(ctx);
    removeCallbackLocked(context, callback_handle);
    // The real library wakes its event handler here too.
    context->interrupted = true;
    state().changed.notify_all();
}

int libusb_handle_events_timeout_completed(libusb_context *ctx, struct timeval *tv, int *completed)
{
    return handleEvents(ctx, waitTime(tv), completed);
}

int libusb_handle_events_timeout(libusb_context *ctx, struct timeval *tv)
{
    return handleEvents(ctx, waitTime(tv), nullptr);
}

int libusb_handle_events(libusb_context *ctx)
{
    return handleEvents(ctx, std::chrono::milliseconds(kDefaultEventWaitMs), nullptr);
}

void libusb_interrupt_event_handler(libusb_context *ctx)
{
    std::lock_guard<std::mutex> lock(state().mutex);
    resolveLocked(ctx)->interrupted = true;
    state().changed.notify_all();
}

const char *libusb_error_name(int errcode)
{
    switch (errcode) {
    case LIBUSB_SUCCESS:
        return "LIBUSB_SUCCESS / LIBUSB_TRANSFER_COMPLETED";
    case LIBUSB_ERROR_IO:
        return "LIBUSB_ERROR_IO";
    case LIBUSB_ERROR_INVALID_PARAM:
        return "LIBUSB_ERROR_INVALID_PARAM";
    case LIBUSB_ERROR_ACCESS:
        return "LIBUSB_ERROR_ACCESS";
    case LIBUSB_ERROR_NO_DEVICE:
        return "LIBUSB_ERROR_NO_DEVICE";
    case LIBUSB_ERROR_NOT_FOUND:
        return "LIBUSB_ERROR_NOT_FOUND";
    case LIBUSB_ERROR_BUSY:
        return "LIBUSB_ERROR_BUSY";
    case LIBUSB_ERROR_TIMEOUT:
        return "LIBUSB_ERROR_TIMEOUT";
    case LIBUSB_ERROR_OVERFLOW:
        return "LIBUSB_ERROR_OVERFLOW";
    case LIBUSB_ERROR_PIPE:
        return "LIBUSB_ERROR_PIPE";
    case LIBUSB_ERROR_INTERRUPTED:
        return "LIBUSB_ERROR_INTERRUPTED";
    case LIBUSB_ERROR_NO_MEM:
        return "LIBUSB_ERROR_NO_MEM";
    case LIBUSB_ERROR_NOT_SUPPORTED:
        return "LIBUSB_ERROR_NOT_SUPPORTED";
    case LIBUSB_ERROR_OTHER:
        return "LIBUSB_ERROR_OTHER";
    default:
        return "**UNKNOWN**";
    }
}

const char *libusb_strerror(int errcode)
{
    switch (errcode) {
    case LIBUSB_SUCCESS:
        return "Success";
    case LIBUSB_ERROR_IO:
        return "Input/Output Error";
    case LIBUSB_ERROR_INVALID_PARAM:
        return "Invalid parameter";
    case LIBUSB_ERROR_ACCESS:
        return "Access denied (insufficient permissions)";
    case LIBUSB_ERROR_NO_DEVICE:
        return "No such device (it may have been disconnected)";
    case LIBUSB_ERROR_NOT_FOUND:
        return "Entity not found";
    case LIBUSB_ERROR_BUSY:
        return "Resource busy";
    case LIBUSB_ERROR_TIMEOUT:
        return "Operation timed out";
    case LIBUSB_ERROR_OVERFLOW:
        return "Overflow";
    case LIBUSB_ERROR_PIPE:
        return "Pipe error";
    case LIBUSB_ERROR_INTERRUPTED:
        return "System call interrupted (perhaps due to signal)";
    case LIBUSB_ERROR_NO_MEM:
        return "Insufficient memory";
    case LIBUSB_ERROR_NOT_SUPPORTED:
        return "Operation not supported or unimplemented on this platform";
    default:
        return "Other error";
    }
}

} // extern "C"
