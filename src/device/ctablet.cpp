#include "ctablet.h"

#include "actionmessages.h"
#include "caction.h"
#include "cglobaldata.h"
#include "ctipsink.h"
#include "devicecommands.h"
#include "penstatus.h"
#include "reportprotocol.h"
#include "textfield.h"
#include "xmlhelp.h"

#include <QDebug>
#include <QHash>
#include <QLoggingCategory>
#include <QMutexLocker>
#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace
{

// Debug output of every report; off unless enabled by a logging rule, so the
// report path pays one flag test for it.
Q_LOGGING_CATEGORY(lcReports, "scribora.reports", QtInfoMsg)

constexpr int kInfoPayload = 4;
// Longer range replies carry bits 16 to 23 of both ranges in bytes 14 and 15.
constexpr int kShortRangeReply = 15;

constexpr int kFileDataStart = 3;

constexpr int kWirelessProducts[] = {0xA101, 0xA102};
constexpr int kPenReplayProduct = 0x07C9;
constexpr int kPenMaskBits = 16;

// A copy never reads past the frame, even from the longest field.
static_assert(kInfoPayload + kTabletTypeSize <= kReportBufferSize &&
                  kInfoPayload + kIdentitySize <= kReportBufferSize,
              "reply fields fit in a report frame");

// Hundredths of an inch of the device's own orientation, from a rectangle in the
// orientation in force; the table of the rotations undone.
stOrientArea undoOrientation(int orientation, int x, int y, int w, int h, int width, int height)
{
    switch (orientation) {
    case 0:
        return {int16_t(x), int16_t(y), int16_t(w), int16_t(h)};
    case 1:
        return {int16_t(height - h - y), int16_t(x), int16_t(h), int16_t(w)};
    case 2:
        return {int16_t(width - x - w), int16_t(height - y - h), int16_t(w), int16_t(h)};
    case 3:
        return {int16_t(y), int16_t(width - x - w), int16_t(h), int16_t(w)};
    default:
        return {0, 0, 0, 0};
    }
}

void showAreaTip(const char *key)
{
    if (CGlobalData::Show_Info)
        CGlobalData::Show_Info->EmitInfo(languageText(key));
}

// Text of a reply, cut to what the report carried and to the field.
template <size_t N> void copyReplyText(char (&field)[N], const quint8 *payload, int available)
{
    const size_t count = std::min(static_cast<size_t>(std::max(available, 0)), N - 1);
    copyTextField(field, count + 1, reinterpret_cast<const char *>(payload));
}

template <size_t N> void copyReplyBytes(uint8_t (&field)[N], const quint8 *payload, int available)
{
    const size_t count = std::min(static_cast<size_t>(std::max(available, 0)), N);
    memcpy(field, payload, count);
}

// The message id of a display reply and the byte that holds its value; id 0 for none.
std::pair<int, int> displayMessage(const quint8 *frame)
{
    switch (frame[3]) {
    case kDisplayBrightness:
        return {kMsgBrightness, 6};
    case kDisplayContrast:
        return {kMsgContrast, 6};
    case kDisplayColour:
        break;
    default:
        return {0, 0};
    }
    if (frame[4] == kColourSpace)
        return {kMsgColourSpace, 6};
    if (frame[4] == kColourTemperature)
        return {kMsgColourTemperature, 6};
    if (frame[4] == kColourGain && frame[5] == 1 && frame[6] >= 1 && frame[6] <= 3)
        return {kMsgRedGain - 1 + frame[6], 7};
    return {0, 0};
}

} // namespace

CTablet::CTablet()
{
    m_TabletXMLData = new stTablet_XMLData{};
    m_IncomingNode = new _stAppConfigNode{};
    m_XMLHelp = new XMLHelp(CGlobalData::configFile("/config.xml"));
    memset(&m_DeviceAttributes, 0, sizeof m_DeviceAttributes);
    m_Action = new CAction(this);
    connect(m_Action, qOverload<int, int, int>(&CAction::PostActionMsg), this,
            qOverload<int, int, int>(&CTablet::ReceivActionMsg));
    connect(m_Action, qOverload<int, int, QString>(&CAction::PostActionMsg), this,
            qOverload<int, int, QString>(&CTablet::ReceivActionMsg));
}

CTablet::~CTablet()
{
    m_Active = false;
    ClearAppConfigs();
    delete m_XMLHelp;
    delete m_IncomingNode;
    delete m_TabletXMLData;
}

bool CTablet::InitTablet(const char *, const ZelkDevice &)
{
    return false;
}

void CTablet::SentCmd(int, int, int) {}

void CTablet::SentSaveFileCmd(int, unsigned char *, int) {}

void CTablet::SentReadFileCmd(int, int) {}

void CTablet::SaveConfigToDevice(QString, _stAppConfigNode *) {}

void CTablet::DelTablet() {}

void CTablet::SendCMDToGetTabletInfo() {}

void CTablet::ReceiveTabletPackets(quint8 *packet, int length)
{
    if (!packet || length <= 0)
        return;
    // A frame of the reader's size, zero past the report, keeps every read below in bounds.
    quint8 frame[kReportBufferSize] = {};
    const int size = std::min(length, kReportBufferSize);
    memcpy(frame, packet, static_cast<size_t>(size));
    qCDebug(lcReports, "ReceiveTabletPackets Length %d %02X %02X %02X %02X", length, frame[1],
            frame[2], frame[3], frame[5]);
    if (takeReply(frame, size))
        return;
    actOnInput(frame, size);
}

// True when the report was a reply that goes no further.
bool CTablet::takeReply(const quint8 *frame, int length)
{
    switch (frame[1]) {
    case kKindLights:
        onLightReply(frame);
        return true;
    case kKindBattery:
        onBattery(frame);
        return true;
    case kKindDeviceInfo:
        onDeviceInformation(frame, length);
        return true;
    case kKindConnection:
        onConnectionNotice(frame);
        return false;
    case kKindStart:
        onStartReply(frame);
        return false;
    case kKindFile:
        onFileReply(frame, length);
        return false;
    case kKindDisplay:
        onDisplayReply(frame);
        return false;
    default:
        return false;
    }
}

// Woken without the mutex: the waiter in InitTablet treats its wait as a hint.
void CTablet::onLightReply(const quint8 *frame)
{
    if (frame[2] != kLightsValue || frame[3] != kLightsAsk)
        return;
    const short value = frame[5];
    if (frame[4] == kLightTablet) {
        m_DeviceAttributes.TabletLight = value;
        m_ReplyCondition.wakeAll();
        qDebug() << "TabletLightValue" << value;
        emit SentTabletLightData(this);
    } else if (frame[4] == kLightWheel) {
        m_DeviceAttributes.WheelLight = value;
        m_ReplyCondition.wakeAll();
        qDebug() << "WheelLightValue" << value;
        emit SentTabletLightData(this);
    }
}

void CTablet::onBattery(const quint8 *frame)
{
    m_BatteryValue = frame[3];
    emit PostActionMsg(m_Index, kMsgBattery, static_cast<int>(frame[4]));
}

void CTablet::onDeviceInformation(const quint8 *frame, int length)
{
    if (frame[3] != 1)
        return;
    _DEVICE_ATTRIBUTES &attributes = m_DeviceAttributes;
    const quint8 *payload = frame + kInfoPayload;
    const int available = length - kInfoPayload;
    switch (frame[2]) {
    case kInfoProductName:
        copyReplyText(attributes.ProductName, payload, available);
        qDebug() << "m_DeviceAttributes.ProductName" << attributes.ProductName;
        return;
    case kInfoSerialNumber:
        copyReplyText(attributes.SerialNumber, payload, available);
        qDebug() << "m_DeviceAttributes.SerialNumber" << attributes.SerialNumber;
        return;
    case kInfoICVersion:
        copyReplyText(attributes.ICVersion, payload, available);
        m_ReplyCondition.wakeAll();
        qDebug() << "m_DeviceAttributes.ICVersion" << attributes.ICVersion;
        return;
    case kInfoICData:
        copyReplyText(attributes.ICData, payload, available);
        qDebug() << "m_DeviceAttributes.ICData" << attributes.ICData;
        return;
    case kInfoTabletType:
        copyReplyBytes(attributes.TabletType, payload, available);
        qDebug() << "m_DeviceAttributes.TabletType" << attributes.TabletType[6];
        return;
    case kInfoSecondSerial:
        copyReplyBytes(attributes.SecondSerial, payload, available);
        qDebug() << "m_DeviceAttributes.SerialNumber";
        return;
    case kInfoRanges:
        onRangeReply(frame, length);
        return;
    default:
        return;
    }
}

// The device's own LPI is not trusted here: ranges are always taken at 5080.
void CTablet::onRangeReply(const quint8 *frame, int length)
{
    _DEVICE_ATTRIBUTES &attributes = m_DeviceAttributes;
    attributes.MaxX = frame[4] + frame[5] * 256;
    attributes.MaxY = frame[6] + frame[7] * 256;
    if (length > kShortRangeReply) {
        attributes.MaxX += frame[14] * 65536;
        attributes.MaxY += frame[15] * 65536;
    }
    attributes.MaxPressure = frame[10] + frame[11] * 256;
    attributes.LPI = kDefaultLpi;
    attributes.Width = static_cast<int>(attributes.MaxX * 100 / attributes.LPI);
    attributes.Height = static_cast<int>(attributes.MaxY * 100 / attributes.LPI);
    qInfo() << "m_DeviceAttributes.MaxX" << attributes.MaxX << attributes.MaxY
            << attributes.MaxPressure;
    QMutexLocker lock(&m_ReplyMutex);
    m_ReplyCondition.wakeAll();
}

// A wireless device that comes back has forgotten its mode and lights.
void CTablet::onConnectionNotice(const quint8 *frame)
{
    if (frame[2] != 2 || frame[3] != 1)
        return;
    if (m_ReportMode != 0)
        SentCmd(kCmdReportMode, m_ReportMode, 0);
    if (std::find(std::begin(kWirelessProducts), std::end(kWirelessProducts), m_ProductId) ==
        std::end(kWirelessProducts))
        return;
    SentCmd(kCmdAskLight, kLightWheel, 0);
    SentCmd(kCmdAskLight, kLightTablet, 0);
    ReceivActionMsg(m_Index, kMsgWirelessConnected, 0);
}

void CTablet::onStartReply(const quint8 *frame)
{
    if (frame[3] != 1 && frame[2] != 1)
        return;
    QMutexLocker lock(&m_ReplyMutex);
    m_StartCondition.wakeAll();
}

void CTablet::onDisplayReply(const quint8 *frame)
{
    const std::pair<int, int> message = displayMessage(frame);
    if (message.first != 0)
        ReceivActionMsg(m_Index, message.first, frame[message.second]);
}

void CTablet::onFileReply(const quint8 *frame, int length)
{
    const quint8 stage = frame[2];
    const quint8 code = frame[3];
    if (stage == kFileStageWrite) {
        onWriteAccepted(code);
    } else if (stage == kFileStageRead) {
        if (code == 0)
            return;
        if (code == kFileReadHeader && !m_Receiving)
            readFileHeader(frame);
        else
            collectFileData(frame, length);
    } else if (stage == kFileStageEnd) {
        endFileTransfer(code);
    }
}

void CTablet::onWriteAccepted(quint8 code)
{
    if (code != kFileAccepted)
        return;
    m_IncomingSize = 0;
    m_Sending = true;
    emit PostDeviceOperatorMsg(kOpWriteAccepted, 0);
}

void CTablet::readFileHeader(const quint8 *frame)
{
    const uint32_t size = frame[4] | frame[5] << 8 | frame[6] << 16 | uint32_t(frame[7]) << 24;
    m_IncomingCount = 0;
    m_Receiving = true;
    m_IncomingSize = static_cast<int>(size);
    m_IncomingFile.clear();
    if (size == 0)
        emit PostDeviceOperatorMsg(kOpReadNoFile, 0);
    else if (frame[8] == m_ExpectedMark)
        emit PostDeviceOperatorMsg(kOpReadHeader, m_IncomingSize);
    else
        emit PostDeviceOperatorMsg(kOpReadOtherMark, 0);
}

// Padding (0x00) and erased memory (0xFF) count towards the size but are not text.
void CTablet::collectFileData(const quint8 *frame, int length)
{
    if (!m_Receiving)
        return;
    for (int i = kFileDataStart; i < length; ++i) {
        if (++m_IncomingCount > m_IncomingSize)
            continue;
        if (frame[i] != 0x00 && frame[i] != 0xFF)
            m_IncomingFile.append(static_cast<char>(frame[i]));
    }
    if (m_IncomingSize == 0)
        return;
    const qint64 percent = qint64(m_IncomingCount) * 100 / m_IncomingSize;
    if (percent <= 100)
        emit PostDeviceOperatorMsg(kOpReadProgress, static_cast<int>(percent));
}

void CTablet::endFileTransfer(quint8 code)
{
    if (code == kFileStored) {
        if (m_Sending) {
            m_Sending = false;
            emit PostDeviceOperatorMsg(kOpWriteConfirmed, 2);
        }
        failShortRead();
        return;
    }
    if (code != kFileEnded) {
        failShortRead();
        return;
    }
    // A refused write ends the same way as a read, with a failure of that empty read too.
    if (m_IncomingSize == 0) {
        m_Sending = false;
        emit PostDeviceOperatorMsg(kOpWriteRefused, 0);
    }
    if (failShortRead())
        return;
    finishFileRead();
}

bool CTablet::failShortRead()
{
    if (m_IncomingCount >= m_IncomingSize || !m_Receiving)
        return false;
    m_Receiving = false;
    emit PostDeviceOperatorMsg(kOpReadFailed, m_IncomingSize);
    return true;
}

void CTablet::finishFileRead()
{
    const bool stored = storeIncomingFile();
    m_IncomingFile.clear();
    m_Receiving = false;
    emit PostDeviceOperatorMsg(stored ? kOpReadDone : kOpReadFailed, 1);
}

// The last good node survives a file that does not parse.
bool CTablet::storeIncomingFile()
{
    if (m_IncomingFile.isEmpty())
        return false;
    // Some 260 KB: on the heap rather than on the reader's stack.
    auto parsed = std::make_unique<_stAppConfigNode>();
    if (!XMLHelp::ReadDeviceConfigFileToAppConfig(m_IncomingFile, *parsed))
        return false;
    memcpy(m_IncomingNode, parsed.get(), sizeof *m_IncomingNode);
    m_IncomingCount = 0;
    return m_IncomingNode->SelectID >= 0 && m_IncomingNode->Ring[0].id >= 0;
}

// Allocates nothing, locks nothing and logs nothing but the replay lines.
void CTablet::actOnInput(quint8 *frame, int length)
{
    if (!m_Active)
        return;
    memset(&m_TabletData, 0, sizeof m_TabletData);
    m_TabletData.productId = m_ProductId;
    m_TabletData.tabletIndex = m_Index;
    if (!m_Parser.ParseData(frame, length, &m_TabletData))
        return;
    // While an area is being selected on the tablet, no report reaches the engine.
    if (m_AreaSelecting) {
        SetAreaAction();
        return;
    }
    announcePenChange();
    m_Action->setDeviceIndex(m_Index);
    const _MultiData result =
        m_Action->ActionTabletData(m_TabletData, m_DeviceAttributes, m_TabletXMLData, m_AppConfigs);
    if (m_ProductId == kPenReplayProduct)
        replayPenEntry();
    if (m_SendMultiData)
        emit SentMultiData(this, result);
}

// The mask is compared before the bit, so a mask that equals the last one
// handled announces nothing.
void CTablet::announcePenChange()
{
    stTablet_XMLData &settings = *m_TabletXMLData;
    if (settings.DevicePenNum <= 1) {
        settings.DeviceCurPenID = 0;
        return;
    }
    const int pen = m_TabletData.penId;
    if (!(m_TabletData.eventFlags & kEventPen) || pen >= settings.DevicePenNum ||
        pen >= kPenMaskBits || settings.PenMoveInTablet == m_PenSeenMask)
        return;
    const auto bit = static_cast<int16_t>(1 << pen);
    if (settings.PenMoveInTablet & bit)
        return;
    m_PenSeenMask = settings.PenMoveInTablet;
    settings.DeviceCurPenID = static_cast<int16_t>(pen);
    settings.PenMoveInTablet = static_cast<int16_t>(settings.PenMoveInTablet | bit);
    emit PostActionMsg(m_Index, kMsgPenChange, pen);
}

// This product's first report after the pen came back is delivered twice.
// The state is shared by every tablet of the product, unlocked.
void CTablet::replayPenEntry()
{
    static uint8_t oldPenState = 0;
    const uint8_t status = m_TabletData.penStatus;
    if ((m_TabletData.eventFlags & kEventPen) && oldPenState == kPenStatusLeave &&
        (status == kPenStatusEraserHover || status == kPenStatusPenHover)) {
        qDebug() << (status == kPenStatusEraserHover ? "oldPenState==0xc0---补A8"
                                                     : "oldPenState==0xc0---补A0");
        m_Action->ActionTabletData(m_TabletData, m_DeviceAttributes, m_TabletXMLData, m_AppConfigs);
    }
    oldPenState = status;
}

// Only the moment the tip touches down counts. bSecond is shared by all tablets.
void CTablet::SetAreaAction()
{
    static bool bSecond = false;
    static QRect AreaRect;
    const TabletDataEX &data = m_TabletData;
    if (!(data.eventFlags & kEventPen) || !(data.penButtonMask & 1) || data.penButtonState != 1)
        return;
    m_AreaCorners[2] = static_cast<int>(data.x);
    m_AreaCorners[3] = static_cast<int>(data.y);
    if (!bSecond) {
        m_AreaCorners[0] = m_AreaCorners[2];
        m_AreaCorners[1] = m_AreaCorners[3];
        bSecond = true;
        showAreaTip("Device.TabeltHelpInfo2");
        return;
    }
    showAreaTip("Device.TabeltHelpInfo3");
    AreaRect.setCoords(
        std::min(m_AreaCorners[0], m_AreaCorners[2]), std::min(m_AreaCorners[1], m_AreaCorners[3]),
        std::max(m_AreaCorners[0], m_AreaCorners[2]), std::max(m_AreaCorners[1], m_AreaCorners[3]));
    const qint64 lpi = m_DeviceAttributes.LPI > 0 ? m_DeviceAttributes.LPI : kDefaultLpi;
    const auto inch = [lpi](qint64 value) { return static_cast<int>(value * 100 / lpi); };
    const int w = std::max(inch(qint64(AreaRect.right()) - AreaRect.left() + 1), 1);
    const int h = inch(qint64(AreaRect.bottom()) - AreaRect.top() + 1);
    const stOrientArea area =
        undoOrientation(m_TabletXMLData->Orientation, inch(AreaRect.left()), inch(AreaRect.top()),
                        w, h, m_DeviceAttributes.Width, m_DeviceAttributes.Height);
    emit SetAreaOk(area.X, area.Y, area.W, area.H);
    bSecond = false;
    m_AreaSelecting = false;
}

void CTablet::ChangeTabletPenOrErase(bool value)
{
    m_Action->ChangeBEKey(value, true);
}

void CTablet::ReceivActionMsg(int tabletId, int msgId, int msgData)
{
    emit PostActionMsg(tabletId, msgId, msgData);
}

void CTablet::ReceivActionMsg(int tabletId, int msgId, QString appPath)
{
    emit PostActionMsg(tabletId, msgId, appPath);
}

// The records of an earlier load are freed here; the profile's cursor must
// not keep pointing at them.
void CTablet::ClearAppConfigs()
{
    qDeleteAll(m_AppConfigs);
    m_AppConfigs.clear();
    if (m_TabletXMLData)
        m_TabletXMLData->stAppConfigPtr = nullptr;
}

int CTablet::LoadXML(const char *name)
{
    ClearAppConfigs();
    int loaded = 0;
    {
        QMutexLocker lock(&CGlobalData::ConfigFileWaitMutex);
        loaded = m_XMLHelp ? m_XMLHelp->LoadConfig(m_TabletXMLData, name, m_AppConfigs) : 0;
    }
    if (!loaded) {
        qDebug() << "ReadXml Failed!";
        return 0;
    }
    qDebug() << "Function  LoadConfig success";
    m_PenSeenMask = -1;
    refreshCachedMapping();
    stTablet_XMLData &data = *m_TabletXMLData;
    if (data.TW == 0)
        data.TW = static_cast<int16_t>(m_DeviceAttributes.Width);
    if (data.TH == 0)
        data.TH = static_cast<int16_t>(m_DeviceAttributes.Height);
    if (data.SW == 0 && data.SH == 0)
        applyDefaultMapping();
    return 1;
}

// No lock: saves run on the GUI thread, the only writer of the mapping, and a
// load on another thread sees either the old file or the new one, never half.
void CTablet::SaveXML()
{
    if (!m_XMLHelp || !m_TabletXMLData)
        return;
    m_XMLHelp->SaveConfig(m_TabletXMLData, m_AppConfigs);
    refreshCachedMapping();
}

void CTablet::applyDefaultMapping()
{
    stTablet_XMLData &data = *m_TabletXMLData;
    const int id = data.ScreenId;
    const QRect screen = id >= 0 && id < kScreenSlots ? CGlobalData::ScreenArray[id] : QRect();
    data.SX = static_cast<int16_t>(screen.left());
    data.SY = static_cast<int16_t>(screen.top());
    data.SW = static_cast<int16_t>(screen.right() - screen.left() + 1);
    data.SH = static_cast<int16_t>(screen.bottom() - screen.top() + 1);
    m_DefaultMappingPending = true;
}

void CTablet::refreshCachedMapping()
{
    const stTablet_XMLData &data = *m_TabletXMLData;
    m_MappedScreenId = data.ScreenId;
    m_MappedScreenRect = QRect(data.SX, data.SY, data.SW, data.SH);
}

void CTablet::CopySettingsFrom(const CTablet &other)
{
    ClearAppConfigs();
    *m_TabletXMLData = *other.m_TabletXMLData;
    QHash<const _stAppConfigNode *, _stAppConfigNode *> copies;
    for (auto it = other.m_AppConfigs.cbegin(); it != other.m_AppConfigs.cend(); ++it) {
        auto *copy = new _stAppConfigNode(*it.value());
        copies.insert(it.value(), copy);
        m_AppConfigs.insert(it.key(), copy);
    }
    for (_stAppConfigNode *copy : qAsConst(m_AppConfigs))
        copy->next = copies.value(copy->next, nullptr);
    m_TabletXMLData->CommonAPP.next = nullptr;
    m_TabletXMLData->stAppConfigPtr = copies.value(other.m_TabletXMLData->stAppConfigPtr, nullptr);
    refreshCachedMapping();
}
