#include "cusbtablet.h"

#include "caction.h"
#include "cglobaldata.h"
#include "devicecommands.h"
#include "devicethread.h"
#include "hidrawstring.h"
#include "reportprotocol.h"
#include "tabletslots.h"
#include "textfield.h"
#include "usblink.h"
#include "xmlhelp.h"

#include <QDebug>
#include <QMutexLocker>
#include <QSettings>
#include <algorithm>
#include <cstring>
#include <initializer_list>

namespace
{

constexpr int kFrameSize = 64;
constexpr int kStringLimit = 64;
constexpr int kCapabilityDescriptor = 100;
constexpr int kStartReplyWaitMs = 100;
constexpr uint8_t kDongleMarker = 0x40;
constexpr uint8_t kLightCapability = 0x18;
constexpr int kFirstDisplayProduct = 0x0A5A;

// `read` fills a wide text of at most kStringLimit characters, 0 on success.
template <size_t N, typename Read> void copyWideString(char (&field)[N], Read read)
{
    wchar_t text[kStringLimit + 1] = {};
    if (read(text, kStringLimit) == 0)
        copyTextField(field, QString::fromWCharArray(text).toUtf8().constData());
}

template <size_t N> void copyIndexedString(char (&field)[N], HidDevice &device, int index)
{
    copyWideString(field, [&](wchar_t *text, size_t length) {
        return device.indexedString(index, text, length);
    });
}

} // namespace

CUSBTablet::~CUSBTablet()
{
    DelTablet();
}

bool CUSBTablet::InitTablet(const char *path, const ZelkDevice &row)
{
    ClearAppConfigs();
    if (path && !openDevice(path))
        return false;
    if (!m_HidDevice)
        return false;
    readIdentity(row);
    readCapabilities();
    copyIndexedString(m_DeviceAttributes.ICVersion, *m_HidDevice, 4);
    copyIndexedString(m_DeviceAttributes.ICData, *m_HidDevice, 5);
    chooseShowName();
    if (!takeSettings())
        return false;
    sendStartPacket(row);
    startReader();
    askLights();
    return true;
}

bool CUSBTablet::openDevice(const char *path)
{
    m_HidDevice = usbLink().openHid(path);
    if (!m_HidDevice) {
        qDebug() << "hid_open_path Failed!";
        emit OpenFailed();
        return false;
    }
    copyTextField(m_DeviceAttributes.DevicePath, path);
    return true;
}

void CUSBTablet::readIdentity(const ZelkDevice &row)
{
    m_ProductId = static_cast<int>(row.pid);
    copyTextField(m_DeviceAttributes.PidString, TabletSlots::pidString(static_cast<int>(row.pid)));
    copyTextField(m_DeviceAttributes.ModelName, row.name);
    HidDevice &device = *m_HidDevice;
    copyWideString(m_DeviceAttributes.Manufacturer,
                   [&](wchar_t *text, size_t length) { return device.manufacturer(text, length); });
    copyWideString(m_DeviceAttributes.ProductName,
                   [&](wchar_t *text, size_t length) { return device.product(text, length); });
    copyIndexedString(m_DeviceAttributes.SerialNumber, device, 3);
}

// Descriptor 100 carries the ranges as little-endian numbers.
void CUSBTablet::readCapabilities()
{
    unsigned char raw[64] = {};
    if (hid_get_indexed_string2(m_HidDevice.get(), kCapabilityDescriptor, raw, sizeof raw) < 0)
        qDebug("Unable to read indexed string 100\n");
    _DEVICE_ATTRIBUTES &attributes = m_DeviceAttributes;
    attributes.MaxX = raw[0] | raw[1] << 8 | raw[10] << 16;
    attributes.MaxY = raw[2] | raw[3] << 8 | raw[11] << 16;
    attributes.MaxPressure = raw[6] | raw[7] << 8;
    attributes.LPI = raw[8] | raw[9] << 8;
    if (attributes.LPI == 0)
        attributes.LPI = kDefaultLpi;
    attributes.Width = static_cast<int>(attributes.MaxX * 100 / attributes.LPI);
    attributes.Height = static_cast<int>(attributes.MaxY * 100 / attributes.LPI);
    qDebug("manufacturer:%s product:%s Get Max X:0x%x Y:0x%x  Press:0x%x\n",
           attributes.Manufacturer, attributes.ProductName, static_cast<unsigned>(attributes.MaxX),
           static_cast<unsigned>(attributes.MaxY), static_cast<unsigned>(attributes.MaxPressure));
}

void CUSBTablet::chooseShowName()
{
    const bool dongle = m_DeviceAttributes.TabletType[0] == kDongleMarker;
    const QString key = QString(dongle ? "Dongle/%1" : "Common/%1")
                            .arg(QString::fromLatin1(m_DeviceAttributes.PidString));
    const QString configured =
        CGlobalData::Name_Config ? CGlobalData::Name_Config->value(key).toString() : QString();
    if (configured.isEmpty())
        copyTextField(m_DeviceAttributes.ShowName, m_DeviceAttributes.ProductName);
    else
        copyTextField(m_DeviceAttributes.ShowName, configured.toUtf8().constData());
}

// A second device of a product already running takes its settings.
bool CUSBTablet::takeSettings()
{
    const int slot =
        TabletSlots::IsDeviceShowNameExit(QString::fromLatin1(m_DeviceAttributes.PidString));
    CTablet *twin = slot >= 0 ? CGlobalData::TabletArray[slot] : nullptr;
    if (twin && twin != this && twin->m_Active) {
        CopySettingsFrom(*twin);
        return true;
    }
    if (LoadXML(m_DeviceAttributes.ModelName))
        return true;
    qDebug() << "------------------load xml failed:" << m_DeviceAttributes.ModelName;
    return false;
}

void CUSBTablet::sendStartPacket(const ZelkDevice &row)
{
    unsigned char packet[kFrameSize] = {};
    const bool keyboardRemote = row.deviceType == DeviceTypeRemote && row.pid == 0x3E1;
    packet[0] = keyboardRemote ? kReportIdKeys : kReportIdTablet;
    packet[1] = keyboardRemote ? kKindKeyboardStart : kKindStart;
    packet[2] = static_cast<unsigned char>(row.reportMode);
    m_ReportMode = static_cast<short>(row.reportMode);
    writeReport(packet, kStartFrameLength);
}

void CUSBTablet::startReader()
{
    if (!m_DeviceThread) {
        m_DeviceThread = new DeviceThread(m_HidDevice.get(), &m_WriteMutex);
        connect(m_DeviceThread, &DeviceThread::MySentTabletPackets, this,
                &CTablet::ReceiveTabletPackets, Qt::DirectConnection);
        m_Active = true;
        // There is no recovery slot: a reader that gives up stays silent.
        connect(m_DeviceThread, SIGNAL(HidOperatorError(int)), this, SLOT(OnDeviceConnError(int)),
                Qt::DirectConnection);
        // On the reader's own thread, however it ends: a pen left down must not stay down.
        connect(m_DeviceThread, &QThread::finished, this, &CUSBTablet::liftPen,
                Qt::DirectConnection);
    }
    m_DeviceThread->start(QThread::InheritPriority);
}

void CUSBTablet::liftPen()
{
    if (m_Action)
        m_Action->LeaveProximity();
}

void CUSBTablet::askLights()
{
    m_ReplyMutex.lock();
    SentCmd(kCmdAskLight, kLightWheel, 0);
    const bool answered = m_ReplyCondition.wait(&m_ReplyMutex, kStartReplyWaitMs);
    if (!answered)
        qDebug() << "SentCmd(0,1,0) Failed";
    m_ReplyMutex.unlock();
    SentCmd(kCmdAskLight, kLightTablet, 0);
    if (answered)
        qDebug() << "SentCmd(0,2,0) OK";
}

int CUSBTablet::writeReport(const unsigned char *data, int length)
{
    QMutexLocker lock(&m_WriteMutex);
    return m_HidDevice->write(data, static_cast<size_t>(length));
}

bool CUSBTablet::displayCommandsAllowed() const
{
    const QString pid = QString::fromLatin1(m_DeviceAttributes.PidString).right(4);
    return pid.toInt(nullptr, 16) >= kFirstDisplayProduct &&
           m_DeviceAttributes.DeviceType == DeviceTypePenDisplay;
}

void CUSBTablet::SentCmd(int command, int p1, int p2)
{
    if (!m_HidDevice)
        return;
    unsigned char frame[kFrameSize] = {kReportIdTablet};
    const auto b1 = static_cast<unsigned char>(p1);
    const auto b2 = static_cast<unsigned char>(p2);
    auto display = [&](std::initializer_list<unsigned char> bytes) {
        if (!displayCommandsAllowed())
            return;
        frame[1] = kKindDisplay;
        std::copy(bytes.begin(), bytes.end(), frame + 2);
        writeReport(frame, kDisplayFrameLength);
    };
    auto lights = [&](std::initializer_list<unsigned char> bytes) {
        frame[1] = kKindLights;
        std::copy(bytes.begin(), bytes.end(), frame + 2);
        writeReport(frame, kLightsFrameLength);
    };
    switch (command) {
    case kCmdAskLight:
        if (m_DeviceAttributes.TabletType[2] & kLightCapability)
            lights({kLightsValue, kLightsAsk, b1});
        return;
    case kCmdSetLight:
        return lights({kLightsValue, kLightsSet, b1, b2});
    case kCmdTouchStrip:
        return lights({kLightsTouchStrip, kLightsSet, 0x00, b1,
                       static_cast<unsigned char>(p1 == kStripTouch ? p2 : 0)});
    case kCmdReportMode:
        qInfo() << "SentCmd--" << p1;
        frame[1] = kKindStart;
        frame[2] = b1;
        writeReport(frame, kStartFrameLength);
        return;
    case kCmdDisplayState:
        return display({0x00, kDisplayState});
    case kCmdColourSpace:
        return display({b1, kDisplayColour, kColourSpace, 0x00, b2});
    case kCmdColourTemperature:
        return display({b1, kDisplayColour, kColourTemperature, 0x00, b2});
    case kCmdRedGain:
        return display({b1, kDisplayColour, kColourGain, 0x01, 0x01, b2});
    case kCmdGreenGain:
        return display({b1, kDisplayColour, kColourGain, 0x01, 0x02, b2});
    case kCmdBlueGain:
        return display({b1, kDisplayColour, kColourGain, 0x01, 0x03, b2});
    case kCmdBrightness:
        return display({b1, kDisplayBrightness, 0x00, 0x00, b2});
    case kCmdContrast:
        return display({b1, kDisplayContrast, 0x00, 0x00, b2});
    case kCmdDisplayReset:
        return display({b1, kDisplayReset, 0x00, 0x00, 0x00});
    default:
        return;
    }
}

void CUSBTablet::SentSaveFileCmd(int mode, unsigned char *data, int length)
{
    if (!m_HidDevice)
        return;
    unsigned char frame[kFrameSize] = {kReportIdTablet, kKindFile,
                                       static_cast<unsigned char>(mode)};
    if (mode == kSaveFileBegin) {
        for (int i = 0; i < 4; ++i)
            frame[3 + i] = static_cast<unsigned char>(static_cast<uint32_t>(length) >> (8 * i));
        writeReport(frame, kFileWriteFrameLength);
    } else if (mode == kSaveFileEnd) {
        writeReport(frame, kFileWriteFrameLength);
    } else if (mode == kSaveFileChunk) {
        if (length < 0 || length > kFrameSize - 3 || (length > 0 && !data))
            return;
        if (length > 0)
            memcpy(frame + 3, data, static_cast<size_t>(length));
        writeReport(frame, length ? length + 3 : 0);
    } else if (length >= 0 && length <= kFrameSize) {
        writeReport(frame, length);
    }
}

void CUSBTablet::SentReadFileCmd(int mode, int value)
{
    if (!m_HidDevice)
        return;
    unsigned char frame[kFrameSize] = {kReportIdTablet, kKindFile, kFileStageRead};
    if (mode == kReadFileHeader) {
        m_Receiving = false;
        frame[3] = kFileReadHeader;
    } else if (mode == kReadFileData) {
        frame[3] = static_cast<unsigned char>(value ? value : kFileReadData);
    } else {
        frame[2] = kFileStageEnd;
    }
    writeReport(frame, kFileReadFrameLength);
}

// The device answers with 02 B6 01 01, and the window then sends the image.
void CUSBTablet::SaveConfigToDevice(QString name, _stAppConfigNode *node)
{
    if (m_XMLHelp)
        m_OutgoingFile = m_XMLHelp->SaveConfigToDevice(name.toLatin1().constData(), node);
    SentSaveFileCmd(kSaveFileBegin, nullptr, m_OutgoingFile.size());
}

void CUSBTablet::DelTablet()
{
    if (m_DeviceThread) {
        m_DeviceThread->requestInterruption();
        m_DeviceThread->LinuxRelease();
        m_DeviceThread->quit();
        m_DeviceThread->wait();
        delete m_DeviceThread;
        m_DeviceThread = nullptr;
    }
    m_HidDevice.reset();
    delete m_XMLHelp;
    m_XMLHelp = nullptr;
    m_Active = false;
}
