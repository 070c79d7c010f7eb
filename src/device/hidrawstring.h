#pragma once

#include <QByteArray>
#include <cstddef>

class HidDevice;
class UsbHandle;

constexpr int kRawStringCopySize = 32;

// hidapi turns string descriptors into wide text, which ruins one that
// carries binary numbers; these read the raw bytes through libusb.

// The descriptor's payload without its 2-byte header; a null array on failure.
QByteArray get_usb_string2(UsbHandle &handle, int index);

// Copies the first 32 payload bytes, zero-padded, to `out` (at most
// `length`). Returns 0, or -1 with `out` untouched.
int hid_get_indexed_string2(HidDevice *dev, int index, void *out, size_t length);
