#pragma once

#include <QByteArray>
#include <cstddef>

struct hid_device_;
typedef struct hid_device_ hid_device;
struct libusb_device_handle;

constexpr int kRawStringCopySize = 32;

// hidapi turns string descriptors into wide text, which ruins one that
// carries binary numbers; these read the raw bytes through libusb.

// The descriptor's payload without its 2-byte header; a null array on failure.
QByteArray get_usb_string2(libusb_device_handle *handle, int index);

// Copies the first 32 payload bytes, zero-padded, to `out` (at most
// `length`). Returns 0, or -1 with `out` untouched.
int hid_get_indexed_string2(hid_device *dev, int index, void *out, size_t length);

// hidapi keeps its handle opaque, so the device is found again by its path.
void hid_remember_path(hid_device *dev, const char *path);
void hid_forget_path(hid_device *dev);
