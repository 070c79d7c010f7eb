#include "hidrawstring.h"

#include <QHash>
#include <QMutex>
#include <QMutexLocker>
#include <clocale>
#include <cstring>
#include <libusb.h>

namespace
{

constexpr int kDescriptorBufferSize = 512;
constexpr unsigned kTransferTimeoutMs = 1000;

QMutex pathsMutex;
QHash<hid_device *, QByteArray> &openPaths()
{
    static QHash<hid_device *, QByteArray> paths;
    return paths;
}

struct LocaleLanguage {
    const char *locale;
    uint16_t code;
};

const LocaleLanguage kLanguages[] = {
    {"en_us", 0x0409}, {"en_gb", 0x0809}, {"en", 0x0409},    {"de_de", 0x0407}, {"de", 0x0407},
    {"fr_fr", 0x040C}, {"fr", 0x040C},    {"es_es", 0x0C0A}, {"es", 0x0C0A},    {"it_it", 0x0410},
    {"it", 0x0410},    {"ja_jp", 0x0411}, {"ja", 0x0411},    {"ko_kr", 0x0412}, {"ko", 0x0412},
    {"zh_cn", 0x0804}, {"zh_tw", 0x0404}, {"zh", 0x0804},    {"ru_ru", 0x0419}, {"ru", 0x0419},
    {"pt_br", 0x0416}, {"pt", 0x0816},    {"pl", 0x0415},    {"tr", 0x041F},    {"th", 0x041E},
    {"vi", 0x042A},
};

// The USB language code of the process locale, 0 when unknown.
uint16_t currentLocaleLanguage()
{
    const char *locale = setlocale(LC_ALL, nullptr);
    if (!locale)
        return 0;
    QByteArray name = QByteArray(locale).toLower();
    name = name.left(name.indexOf('.') < 0 ? name.size() : name.indexOf('.'));
    for (const LocaleLanguage &language : kLanguages) {
        if (name == language.locale)
            return language.code;
    }
    const QByteArray base = name.left(2);
    for (const LocaleLanguage &language : kLanguages) {
        if (base == language.locale)
            return language.code;
    }
    return 0;
}

// As hidapi does: the locale's language if the device has it, else its first.
uint16_t chooseLanguage(libusb_device_handle *handle)
{
    unsigned char buffer[256] = {};
    const int length = libusb_get_string_descriptor(handle, 0, 0, buffer, sizeof buffer);
    if (length < 4)
        return 0;
    const uint16_t wanted = currentLocaleLanguage();
    for (int i = 2; i + 1 < length; i += 2) {
        if ((buffer[i] | buffer[i + 1] << 8) == wanted)
            return wanted;
    }
    return static_cast<uint16_t>(buffer[2] | buffer[3] << 8);
}

// "bus-port.port" as in hidapi's libusb paths ("1-1.4:1.2").
QByteArray usbLocation(libusb_device *device)
{
    uint8_t ports[8];
    const int count = libusb_get_port_numbers(device, ports, sizeof ports);
    QByteArray location = QByteArray::number(libusb_get_bus_number(device)) + '-';
    for (int i = 0; i < count; ++i)
        location += (i ? "." : "") + QByteArray::number(ports[i]);
    return location;
}

QByteArray readRawString(const QByteArray &hidPath, int index)
{
    const QByteArray location = hidPath.left(hidPath.indexOf(':'));
    libusb_context *context = nullptr;
    if (libusb_init(&context) < 0)
        return {};
    QByteArray payload;
    libusb_device **devices = nullptr;
    const ssize_t count = libusb_get_device_list(context, &devices);
    for (ssize_t i = 0; i < count && payload.isNull(); ++i) {
        if (usbLocation(devices[i]) != location)
            continue;
        libusb_device_handle *handle = nullptr;
        if (libusb_open(devices[i], &handle) != 0)
            break;
        payload = get_usb_string2(handle, index);
        libusb_close(handle);
    }
    if (devices)
        libusb_free_device_list(devices, 1);
    libusb_exit(context);
    return payload;
}

} // namespace

QByteArray get_usb_string2(libusb_device_handle *handle, int index)
{
    const uint16_t language = chooseLanguage(handle);
    unsigned char buffer[kDescriptorBufferSize] = {};
    const int length =
        libusb_control_transfer(handle, LIBUSB_ENDPOINT_IN, LIBUSB_REQUEST_GET_DESCRIPTOR,
                                static_cast<uint16_t>((LIBUSB_DT_STRING << 8) | (index & 0xFF)),
                                language, buffer, sizeof buffer, kTransferTimeoutMs);
    if (length < 0)
        return {};
    if (length <= 2)
        return QByteArray("");
    return QByteArray(reinterpret_cast<const char *>(buffer) + 2, length - 2);
}

int hid_get_indexed_string2(hid_device *dev, int index, void *out, size_t length)
{
    QByteArray path;
    {
        QMutexLocker lock(&pathsMutex);
        path = openPaths().value(dev);
    }
    if (path.isEmpty())
        return -1;
    const QByteArray payload = readRawString(path, index);
    if (payload.isNull())
        return -1;
    unsigned char copy[kRawStringCopySize] = {};
    memcpy(copy, payload.constData(), qMin<size_t>(payload.size(), sizeof copy));
    memcpy(out, copy, qMin(length, sizeof copy));
    return 0;
}

void hid_remember_path(hid_device *dev, const char *path)
{
    QMutexLocker lock(&pathsMutex);
    openPaths().insert(dev, QByteArray(path));
}

void hid_forget_path(hid_device *dev)
{
    QMutexLocker lock(&pathsMutex);
    openPaths().remove(dev);
}
