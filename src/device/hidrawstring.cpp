#include "hidrawstring.h"

#include "usblink.h"

#include <clocale>
#include <cstring>

namespace
{

constexpr int kDescriptorBufferSize = 512;
constexpr unsigned kTransferTimeoutMs = 1000;

constexpr uint8_t kRequestTypeIn = 0x80;
constexpr uint8_t kGetDescriptor = 0x06;
constexpr uint16_t kStringDescriptor = 0x0300;

int readDescriptor(UsbHandle &handle, int index, uint16_t language, unsigned char *buffer,
                   uint16_t length)
{
    return handle.controlTransfer(kRequestTypeIn, kGetDescriptor,
                                  static_cast<uint16_t>(kStringDescriptor | (index & 0xFF)),
                                  language, buffer, length, kTransferTimeoutMs);
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
uint16_t chooseLanguage(UsbHandle &handle)
{
    unsigned char buffer[256] = {};
    const int length = readDescriptor(handle, 0, 0, buffer, sizeof buffer);
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
QByteArray usbLocation(const UsbAddress &address)
{
    QByteArray location = QByteArray::number(address.bus) + '-';
    for (size_t i = 0; i < address.ports.size(); ++i)
        location += (i ? "." : "") + QByteArray::number(address.ports[i]);
    return location;
}

QByteArray readRawString(const QByteArray &hidPath, int index)
{
    const QByteArray location = hidPath.left(hidPath.indexOf(':'));
    const std::unique_ptr<UsbDeviceList> devices = usbLink().usbDevices();
    if (!devices)
        return {};
    const std::vector<UsbAddress> addresses = devices->addresses();
    for (size_t i = 0; i < addresses.size(); ++i) {
        if (usbLocation(addresses[i]) != location)
            continue;
        const std::unique_ptr<UsbHandle> handle = devices->open(i);
        return handle ? get_usb_string2(*handle, index) : QByteArray();
    }
    return {};
}

} // namespace

QByteArray get_usb_string2(UsbHandle &handle, int index)
{
    const uint16_t language = chooseLanguage(handle);
    unsigned char buffer[kDescriptorBufferSize] = {};
    const int length = readDescriptor(handle, index, language, buffer, sizeof buffer);
    if (length < 0)
        return {};
    if (length <= 2)
        return QByteArray("");
    return QByteArray(reinterpret_cast<const char *>(buffer) + 2, length - 2);
}

int hid_get_indexed_string2(HidDevice *dev, int index, void *out, size_t length)
{
    if (!dev)
        return -1;
    const QByteArray payload = readRawString(QByteArray::fromStdString(dev->path()), index);
    if (payload.isNull())
        return -1;
    unsigned char copy[kRawStringCopySize] = {};
    memcpy(copy, payload.constData(), qMin<size_t>(payload.size(), sizeof copy));
    memcpy(out, copy, qMin(length, sizeof copy));
    return 0;
}
