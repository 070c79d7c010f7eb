#include "actionmessages.h"
#include "cusbtablet.h"
#include "devicecommands.h"
#include "devicefixture.h"
#include "xmlhelp.h"

#include <QMutexLocker>
#include <QSignalSpy>
#include <cstring>
#include <functional>
#include <thread>

namespace
{

using fakeusb::Bytes;
using Op = std::pair<int, int>;

// Hands a report over as the reader would, in a buffer of exactly its length,
// so that a read past the report is a read past the buffer.
void feed(CTablet &tablet, const Bytes &report)
{
    std::vector<quint8> buffer(report.begin(), report.end());
    tablet.ReceiveTabletPackets(buffer.data(), static_cast<int>(buffer.size()));
}

Bytes withPayload(Bytes head, size_t count, uint8_t first)
{
    for (size_t i = 0; i < count; ++i)
        head.push_back(static_cast<uint8_t>(first + i));
    return head;
}

Bytes penReport(uint8_t penId)
{
    return {0x02, 0xA0, 0x00, 0x10, 0x00, 0x10, 0x00, static_cast<uint8_t>(penId << 5), 0, 0};
}

std::vector<Op> ops(const QSignalSpy &spy)
{
    std::vector<Op> result;
    for (const QList<QVariant> &args : spy)
        result.emplace_back(args.at(0).toInt(), args.at(1).toInt());
    return result;
}

// Action messages of one id, as (tablet, value).
std::vector<Op> messages(const QSignalSpy &spy, int id)
{
    std::vector<Op> result;
    for (const QList<QVariant> &args : spy) {
        if (args.at(1).toInt() == id)
            result.emplace_back(args.at(0).toInt(), args.at(2).toInt());
    }
    return result;
}

template <typename Case> std::string caseName(const ::testing::TestParamInfo<Case> &info)
{
    return info.param.name;
}

// Cases print by name: their padding would otherwise be printed as bytes.
template <typename Case>
auto operator<<(std::ostream &out, const Case &value) -> decltype(value.name, out)
{
    return out << value.name;
}

// A tablet without a device: everything but the command channel.
class Dispatcher : public ::testing::Test
{
protected:
    void SetUp() override
    {
        qRegisterMetaType<MultiData>("MultiData");
        m_Tablet.m_Index = 3;
    }

    QSignalSpy actionSpy()
    {
        return QSignalSpy(&m_Tablet, qOverload<int, int, int>(&CTablet::PostActionMsg));
    }

    CTablet m_Tablet;
};

struct LightCase {
    const char *name;
    Bytes report;
    short tabletLight;
    short wheelLight;
    int signalCount;
};

class LightReply : public Dispatcher, public ::testing::WithParamInterface<LightCase>
{
};

TEST_P(LightReply, SetsTheSelectedLight)
{
    m_Tablet.m_DeviceAttributes.TabletLight = 99;
    m_Tablet.m_DeviceAttributes.WheelLight = 99;
    QSignalSpy spy(&m_Tablet, &CTablet::SentTabletLightData);
    feed(m_Tablet, GetParam().report);
    EXPECT_EQ(m_Tablet.m_DeviceAttributes.TabletLight, GetParam().tabletLight);
    EXPECT_EQ(m_Tablet.m_DeviceAttributes.WheelLight, GetParam().wheelLight);
    EXPECT_EQ(spy.count(), GetParam().signalCount);
}

INSTANTIATE_TEST_SUITE_P(
    Dispatcher, LightReply,
    ::testing::Values(LightCase{"tablet", {0x02, 0xB4, 0x01, 0x00, 0x02, 0x37}, 0x37, 99, 1},
                      LightCase{"wheel", {0x02, 0xB4, 0x01, 0x00, 0x01, 0x22}, 99, 0x22, 1},
                      LightCase{"byte3NotZero", {0x02, 0xB4, 0x01, 0x01, 0x02, 0x37}, 99, 99, 0},
                      LightCase{"byte2NotOne", {0x02, 0xB4, 0x02, 0x00, 0x02, 0x37}, 99, 99, 0},
                      LightCase{"otherLight", {0x02, 0xB4, 0x01, 0x00, 0x03, 0x37}, 99, 99, 0},
                      // A value byte that did not come reads as 0.
                      LightCase{"valueMissing", {0x02, 0xB4, 0x01, 0x00, 0x02}, 0, 99, 1}),
    caseName<LightCase>);

TEST_F(Dispatcher, BatteryStoresThePercentAndPostsTheChargeState)
{
    QSignalSpy spy = actionSpy();
    feed(m_Tablet, {0x02, 0xF2, 0x00, 0x4B, 0x01});
    EXPECT_EQ(m_Tablet.m_BatteryValue, 75);
    EXPECT_EQ(messages(spy, kMsgBattery), (std::vector<Op>{{3, 1}}));
}

struct InfoCase {
    const char *name;
    Bytes report;
    std::function<void(const _DEVICE_ATTRIBUTES &)> expect;
};

class DeviceInformation : public Dispatcher, public ::testing::WithParamInterface<InfoCase>
{
};

// Every field starts as "old" text or 0xEE bytes, so a write outside a
// field shows up in its neighbour.
TEST_P(DeviceInformation, FillsOnlyItsField)
{
    _DEVICE_ATTRIBUTES &attributes = m_Tablet.m_DeviceAttributes;
    for (char *field : {attributes.ProductName, attributes.ModelName, attributes.ICVersion,
                        attributes.SerialNumber, attributes.ICData, attributes.Manufacturer})
        strcpy(field, "old");
    memset(attributes.TabletType, 0xEE, sizeof attributes.TabletType);
    memset(attributes.SecondSerial, 0xEE, sizeof attributes.SecondSerial);
    attributes.DeviceType = 7;
    attributes.TabletLight = 5;
    feed(m_Tablet, GetParam().report);
    GetParam().expect(attributes);
    EXPECT_STREQ(attributes.ModelName, "old");
    EXPECT_STREQ(attributes.Manufacturer, "old");
    EXPECT_EQ(attributes.DeviceType, 7);
    EXPECT_EQ(attributes.TabletLight, 5);
}

INSTANTIATE_TEST_SUITE_P(
    Dispatcher, DeviceInformation,
    ::testing::Values(
        InfoCase{"productName",
                 {0x02, 0x06, 0x02, 0x01, 'N', 'e', 'w'},
                 [](const _DEVICE_ATTRIBUTES &a) { EXPECT_STREQ(a.ProductName, "New"); }},
        InfoCase{"serialNumber",
                 {0x02, 0x06, 0x03, 0x01, 'S', '9'},
                 [](const _DEVICE_ATTRIBUTES &a) { EXPECT_STREQ(a.SerialNumber, "S9"); }},
        InfoCase{"icVersion",
                 {0x02, 0x06, 0x04, 0x01, 'V', '2'},
                 [](const _DEVICE_ATTRIBUTES &a) { EXPECT_STREQ(a.ICVersion, "V2"); }},
        InfoCase{"icData",
                 {0x02, 0x06, 0x05, 0x01, 'D', 0, 'x'},
                 [](const _DEVICE_ATTRIBUTES &a) { EXPECT_STREQ(a.ICData, "D"); }},
        // 60 bytes offered, 55 fit before the terminator.
        InfoCase{"overLongProductName", withPayload({0x02, 0x06, 0x02, 0x01}, 60, 'A'),
                 [](const _DEVICE_ATTRIBUTES &a) {
                     EXPECT_EQ(
                         std::string(a.ProductName),
                         std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvw"));
                 }},
        InfoCase{"noPayloadEmptiesTheText",
                 {0x02, 0x06, 0x02, 0x01},
                 [](const _DEVICE_ATTRIBUTES &a) { EXPECT_STREQ(a.ProductName, ""); }},
        InfoCase{"byte3NotOne",
                 {0x02, 0x06, 0x02, 0x00, 'N', 'e', 'w'},
                 [](const _DEVICE_ATTRIBUTES &a) { EXPECT_STREQ(a.ProductName, "old"); }},
        // 60 bytes 1, 2, ...: the block takes 1 to 55, the second serial stays.
        InfoCase{"overLongTabletType", withPayload({0x02, 0x06, 0x6E, 0x01}, 60, 1),
                 [](const _DEVICE_ATTRIBUTES &a) {
                     EXPECT_EQ(a.TabletType[0], 1);
                     EXPECT_EQ(a.TabletType[54], 55);
                     EXPECT_EQ(a.SecondSerial[0], 0xEE);
                 }},
        // Length 7 carries three bytes: the rest of the block keeps its value.
        InfoCase{"shortTabletType",
                 {0x02, 0x06, 0x6E, 0x01, 0x40, 0x00, 0x18},
                 [](const _DEVICE_ATTRIBUTES &a) {
                     EXPECT_EQ(a.TabletType[0], 0x40);
                     EXPECT_EQ(a.TabletType[2], 0x18);
                     EXPECT_EQ(a.TabletType[3], 0xEE);
                 }},
        InfoCase{"overLongSecondSerial", withPayload({0x02, 0x06, 0x83, 0x01}, 12, 0xA0),
                 [](const _DEVICE_ATTRIBUTES &a) {
                     EXPECT_EQ(a.SecondSerial[0], 0xA0);
                     EXPECT_EQ(a.SecondSerial[7], 0xA7);
                 }}),
    caseName<InfoCase>);

struct RangeCase {
    const char *name;
    int length;
    int64_t maxX, maxY;
    int width, height;
};

class RangeReply : public Dispatcher, public ::testing::WithParamInterface<RangeCase>
{
};

// X 0x5194 = 20884, Y 0xC350 = 50000, bytes 14 and 15 add 1 * 65536 and 2 * 65536.
TEST_P(RangeReply, UsesTheHighBytesOnlyAbove15)
{
    const Bytes full = {0x02, 0x06, 0x64, 0x01, 0x94, 0x51, 0x50, 0xC3,
                        0x00, 0x00, 0xFF, 0x1F, 0x00, 0x00, 0x01, 0x02};
    m_Tablet.m_DeviceAttributes.LPI = 1000;
    feed(m_Tablet, Bytes(full.begin(), full.begin() + GetParam().length));
    const _DEVICE_ATTRIBUTES &a = m_Tablet.m_DeviceAttributes;
    EXPECT_EQ(a.MaxX, GetParam().maxX);
    EXPECT_EQ(a.MaxY, GetParam().maxY);
    EXPECT_EQ(a.MaxPressure, 8191);
    EXPECT_EQ(a.LPI, 5080);
    EXPECT_EQ(a.Width, GetParam().width);
    EXPECT_EQ(a.Height, GetParam().height);
}

INSTANTIATE_TEST_SUITE_P(Dispatcher, RangeReply,
                         ::testing::Values(
                             // 2088400 / 5080 = 411, 5000000 / 5080 = 984
                             RangeCase{"length15", 15, 20884, 50000, 411, 984},
                             // 86420 * 100 / 5080 = 1701, 181072 * 100 / 5080 = 3564
                             RangeCase{"length16", 16, 86420, 181072, 1701, 3564}),
                         caseName<RangeCase>);

struct WakeCase {
    const char *name;
    Bytes report;
    bool startCondition; // else the reply condition
    bool wakes;
};

class Wakes : public Dispatcher, public ::testing::WithParamInterface<WakeCase>
{
};

// The reply comes from another thread, which can take the mutex only once
// the waiter waits: a wake cannot be lost.
TEST_P(Wakes, TheWaiterOfItsCondition)
{
    QWaitCondition &condition =
        GetParam().startCondition ? m_Tablet.m_StartCondition : m_Tablet.m_ReplyCondition;
    QMutexLocker lock(&m_Tablet.m_ReplyMutex);
    std::thread reader([this] { feed(m_Tablet, GetParam().report); });
    const bool woken = condition.wait(&m_Tablet.m_ReplyMutex, GetParam().wakes ? 5000 : 200);
    lock.unlock();
    reader.join();
    EXPECT_EQ(woken, GetParam().wakes);
}

INSTANTIATE_TEST_SUITE_P(
    Dispatcher, Wakes,
    ::testing::Values(WakeCase{"startByte3", {0x02, 0xB0, 0x00, 0x01}, true, true},
                      WakeCase{"startByte2", {0x02, 0xB0, 0x01, 0x00}, true, true},
                      WakeCase{"startOther", {0x02, 0xB0, 0x04, 0x00}, true, false},
                      WakeCase{"ranges", {0x02, 0x06, 0x64, 0x01, 0x10, 0x27}, false, true}),
    caseName<WakeCase>);

struct DisplayCase {
    const char *name;
    Bytes report;
    int id; // 0: no message
    int value;
};

class DisplayReply : public Dispatcher, public ::testing::WithParamInterface<DisplayCase>
{
};

TEST_P(DisplayReply, PostsItsSetting)
{
    QSignalSpy spy = actionSpy();
    feed(m_Tablet, GetParam().report);
    const std::vector<QList<QVariant>> posted(spy.begin(), spy.end());
    if (GetParam().id == 0) {
        EXPECT_TRUE(posted.empty());
        return;
    }
    ASSERT_EQ(posted.size(), 1u);
    EXPECT_EQ(posted[0].at(0).toInt(), 3);
    EXPECT_EQ(posted[0].at(1).toInt(), GetParam().id);
    EXPECT_EQ(posted[0].at(2).toInt(), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Dispatcher, DisplayReply,
    ::testing::Values(
        DisplayCase{"brightness", {0x02, 0xB5, 0x01, 0x03, 0x00, 0x00, 0x50}, kMsgBrightness, 0x50},
        DisplayCase{"contrast", {0x02, 0xB5, 0x01, 0x04, 0x00, 0x00, 0x2A}, kMsgContrast, 42},
        DisplayCase{"colourSpace", {0x02, 0xB5, 0x01, 0x01, 0x01, 0x00, 0x03}, kMsgColourSpace, 3},
        DisplayCase{
            "temperature", {0x02, 0xB5, 0x01, 0x01, 0x02, 0x00, 0x05}, kMsgColourTemperature, 5},
        DisplayCase{"red", {0x02, 0xB5, 0x01, 0x01, 0x03, 0x01, 0x01, 0xC8}, kMsgRedGain, 200},
        DisplayCase{"green", {0x02, 0xB5, 0x01, 0x01, 0x03, 0x01, 0x02, 0x64}, kMsgGreenGain, 100},
        DisplayCase{"blue", {0x02, 0xB5, 0x01, 0x01, 0x03, 0x01, 0x03, 0x10}, kMsgBlueGain, 16},
        DisplayCase{"colourNotByte5One", {0x02, 0xB5, 0x01, 0x01, 0x03, 0x02, 0x01, 0xC8}, 0, 0},
        DisplayCase{"colourFour", {0x02, 0xB5, 0x01, 0x01, 0x03, 0x01, 0x04, 0xC8}, 0, 0},
        DisplayCase{"reset", {0x02, 0xB5, 0x01, 0x07, 0x00, 0x00, 0x00}, 0, 0}),
    caseName<DisplayCase>);

struct PenCase {
    const char *name;
    int16_t penNum;
    int16_t moveMask;
    short seenMask;
    Bytes report;
    bool announced;
    int16_t curPen;
    int16_t moveMaskAfter;
    short seenMaskAfter;
};

class PenChange : public Dispatcher, public ::testing::WithParamInterface<PenCase>
{
};

// DeviceCurPenID starts at 7, which no case sets on purpose.
TEST_P(PenChange, FollowsTheMasks)
{
    const PenCase &c = GetParam();
    stTablet_XMLData &settings = *m_Tablet.m_TabletXMLData;
    settings.DevicePenNum = c.penNum;
    settings.PenMoveInTablet = c.moveMask;
    settings.DeviceCurPenID = 7;
    m_Tablet.m_PenSeenMask = c.seenMask;
    m_Tablet.m_Active = true;
    QSignalSpy spy = actionSpy();
    feed(m_Tablet, c.report);
    const std::vector<Op> expected =
        c.announced ? std::vector<Op>{{3, c.curPen}} : std::vector<Op>{};
    EXPECT_EQ(messages(spy, kMsgPenChange), expected);
    EXPECT_EQ(settings.DeviceCurPenID, c.curPen);
    EXPECT_EQ(settings.PenMoveInTablet, c.moveMaskAfter);
    EXPECT_EQ(m_Tablet.m_PenSeenMask, c.seenMaskAfter);
}

INSTANTIATE_TEST_SUITE_P(
    Dispatcher, PenChange,
    ::testing::Values(PenCase{"onePenForcesZero", 1, 0, -1, penReport(2), false, 0, 0, -1},
                      PenCase{"noPenCountForcesZero", 0, 0, -1, penReport(1), false, 0, 0, -1},
                      // 1 << 1 = 2 joins the mask; the old mask 0 is remembered.
                      PenCase{"newPen", 3, 0, -1, penReport(1), true, 1, 2, 0},
                      PenCase{"secondPen", 3, 2, 0, penReport(2), true, 2, 6, 2},
                      PenCase{"maskComparedFirst", 3, 0, 0, penReport(1), false, 7, 0, 0},
                      PenCase{"penAlreadySeen", 3, 2, 0, penReport(1), false, 7, 2, 0},
                      PenCase{"penBeyondCount", 3, 0, -1, penReport(3), false, 7, 0, -1},
                      PenCase{"noPenData", 3, 0, -1, Bytes{0x02, 0xF0}, false, 7, 0, -1}),
    caseName<PenCase>);

struct MultiCase {
    const char *name;
    bool active;
    bool sendMultiData;
    bool areaSelecting;
    Bytes report;
    int emitted;
};

class MultiDataFlow : public Dispatcher, public ::testing::WithParamInterface<MultiCase>
{
};

TEST_P(MultiDataFlow, OnlyWhileAskedFor)
{
    m_Tablet.m_Active = GetParam().active;
    m_Tablet.m_SendMultiData = GetParam().sendMultiData;
    m_Tablet.m_AreaSelecting = GetParam().areaSelecting;
    QSignalSpy spy(&m_Tablet, &CTablet::SentMultiData);
    feed(m_Tablet, GetParam().report);
    ASSERT_EQ(spy.count(), GetParam().emitted);
    for (const QList<QVariant> &args : spy)
        EXPECT_EQ(args.at(0).value<CTablet *>(), &m_Tablet);
}

INSTANTIATE_TEST_SUITE_P(
    Dispatcher, MultiDataFlow,
    ::testing::Values(MultiCase{"asked", true, true, false, penReport(0), 1},
                      MultiCase{"notAsked", true, false, false, penReport(0), 0},
                      MultiCase{"inactive", false, true, false, penReport(0), 0},
                      MultiCase{"areaSelecting", true, true, true, penReport(0), 0},
                      MultiCase{"undecodedReply", true, true, false, Bytes{0x02, 0xB6, 0x05}, 0},
                      MultiCase{"battery", true, true, false, Bytes{0x02, 0xF2, 0, 50, 0}, 0}),
    caseName<MultiCase>);

Bytes header(uint32_t size, uint8_t mark)
{
    return {0x02,
            0xB6,
            0x00,
            0x01,
            uint8_t(size),
            uint8_t(size >> 8),
            uint8_t(size >> 16),
            uint8_t(size >> 24),
            mark};
}

Bytes dataFrame(const Bytes &payload)
{
    Bytes frame = {0x02, 0xB6, 0x00};
    frame.insert(frame.end(), payload.begin(), payload.end());
    return frame;
}

Bytes ending(uint8_t code)
{
    return {0x02, 0xB6, 0x02, code};
}

const Bytes kWriteAccepted = {0x02, 0xB6, 0x01, 0x01};

struct TransferCase {
    const char *name;
    std::vector<Bytes> replies;
    std::vector<Op> ops;
    bool receiving;
    QByteArray file;
};

class FileTransfer : public Dispatcher, public ::testing::WithParamInterface<TransferCase>
{
};

TEST_P(FileTransfer, FollowsTheReplies)
{
    QSignalSpy spy(&m_Tablet, &CTablet::PostDeviceOperatorMsg);
    for (const Bytes &reply : GetParam().replies)
        feed(m_Tablet, reply);
    EXPECT_EQ(ops(spy), GetParam().ops);
    EXPECT_EQ(m_Tablet.m_Receiving, GetParam().receiving);
    EXPECT_EQ(m_Tablet.m_IncomingFile, GetParam().file);
    EXPECT_FALSE(m_Tablet.m_Sending);
}

INSTANTIATE_TEST_SUITE_P(
    Dispatcher, FileTransfer,
    ::testing::Values(
        TransferCase{"writeConfirmed",
                     {kWriteAccepted, ending(2)},
                     {{kOpWriteAccepted, 0}, {kOpWriteConfirmed, 2}},
                     false,
                     ""},
        TransferCase{"writeAcceptNeedsCodeOne", {{0x02, 0xB6, 0x01, 0x00}}, {}, false, ""},
        // The empty read that a refusal ends fails as well.
        TransferCase{"writeRefused",
                     {kWriteAccepted, ending(0)},
                     {{kOpWriteAccepted, 0}, {kOpWriteRefused, 0}, {kOpReadFailed, 1}},
                     false,
                     ""},
        TransferCase{"confirmWithoutWrite", {ending(2)}, {}, false, ""},
        TransferCase{"headerWithMark", {header(300, 0)}, {{kOpReadHeader, 300}}, true, ""},
        TransferCase{"headerWithOtherMark", {header(300, 7)}, {{kOpReadOtherMark, 0}}, true, ""},
        TransferCase{"noFile",
                     {header(0, 0), ending(0)},
                     {{kOpReadNoFile, 0}, {kOpWriteRefused, 0}, {kOpReadFailed, 1}},
                     false,
                     ""},
        // 4 of 6 bytes: 66 %; then 7 of 6, above 100 %, and 'e' is past the size.
        TransferCase{"zeroAndFFCountButAreDropped",
                     {header(6, 0), dataFrame({'a', 0x00, 0xFF, 'b'}), dataFrame({'c', 'd', 'e'})},
                     {{kOpReadHeader, 6}, {kOpReadProgress, 66}},
                     true,
                     "abcd"},
        // Six bytes 01 02 00 00 00 00 of 10: 60 %.
        TransferCase{"secondHeaderIsData",
                     {header(10, 0), header(10, 0)},
                     {{kOpReadHeader, 10}, {kOpReadProgress, 60}},
                     true,
                     QByteArray("\x01\x0A", 2)},
        TransferCase{"dataWhileIdle", {dataFrame({'a', 'b'})}, {}, false, ""},
        TransferCase{"dataStartingWithZero",
                     {header(10, 0), dataFrame({0x00, 'a'})},
                     {{kOpReadHeader, 10}},
                     true,
                     ""},
        TransferCase{"shortReadConfirmed",
                     {header(10, 0), dataFrame({'a', 'b', 'c'}), ending(2)},
                     {{kOpReadHeader, 10}, {kOpReadProgress, 30}, {kOpReadFailed, 10}},
                     false,
                     "abc"},
        TransferCase{"shortReadEnded",
                     {header(10, 0), dataFrame({'a', 'b', 'c'}), ending(0)},
                     {{kOpReadHeader, 10}, {kOpReadProgress, 30}, {kOpReadFailed, 10}},
                     false,
                     "abc"},
        TransferCase{"notXml",
                     {header(4, 0), dataFrame({'a', 'b', 'c', 'd'}), ending(0)},
                     {{kOpReadHeader, 4}, {kOpReadProgress, 100}, {kOpReadFailed, 1}},
                     false,
                     ""},
        TransferCase{"otherStage", {{0x02, 0xB6, 0x03, 0x01}}, {}, false, ""}),
    caseName<TransferCase>);

// Sends a whole file as a device does: a header, then 64-byte frames padded with zeros.
std::vector<Bytes> deviceRead(const QByteArray &file)
{
    std::vector<Bytes> replies = {header(static_cast<uint32_t>(file.size()), 0)};
    for (int at = 0; at < file.size(); at += 61) {
        Bytes frame(64, 0);
        frame[1] = 0xB6;
        frame[0] = 0x02;
        const QByteArray chunk = file.mid(at, 61);
        std::copy(chunk.begin(), chunk.end(), frame.begin() + 3);
        replies.push_back(frame);
    }
    replies.push_back(ending(0));
    return replies;
}

class DeviceRead : public Dispatcher
{
protected:
    std::vector<Op> read(const QByteArray &file)
    {
        QSignalSpy spy(&m_Tablet, &CTablet::PostDeviceOperatorMsg);
        for (const Bytes &reply : deviceRead(file))
            feed(m_Tablet, reply);
        return ops(spy);
    }
};

TEST_F(DeviceRead, ACompleteFileFillsTheIncomingNode)
{
    auto node = std::make_unique<_stAppConfigNode>();
    node->SelectID = 2;
    node->KeyGroup[2].bEnable = 1;
    node->KeyGroup[2].Key[10].id = 1;
    strcpy(node->KeyGroup[2].Key[10].func, "1|Undo|Ctrl+Z|29:0+44:0");
    node->Ring[0].Item[3].id = 2;
    strcpy(node->Ring[0].Item[3].func, "3|Zoom|2");
    const QByteArray file = XMLHelp("").SaveConfigToDevice("", node.get());
    ASSERT_GT(file.size(), 61 * 3);

    const std::vector<Op> seen = read(file);
    ASSERT_GE(seen.size(), 3u);
    EXPECT_EQ(seen.front(), Op(kOpReadHeader, file.size()));
    EXPECT_EQ(seen.back(), Op(kOpReadDone, 1));
    for (size_t i = 1; i + 1 < seen.size(); ++i) {
        EXPECT_EQ(seen[i].first, kOpReadProgress);
        EXPECT_LE(seen[i].second, 100);
    }
    const _stAppConfigNode &incoming = *m_Tablet.m_IncomingNode;
    EXPECT_EQ(incoming.SelectID, 2);
    EXPECT_EQ(incoming.KeyGroup[2].bEnable, 1);
    EXPECT_STREQ(incoming.KeyGroup[2].Key[10].func, "1|Undo|Ctrl+Z|29:0+44:0");
    EXPECT_STREQ(incoming.Ring[0].Item[3].func, "3|Zoom|2");
    EXPECT_EQ(m_Tablet.m_IncomingCount, 0);
    EXPECT_FALSE(m_Tablet.m_Receiving);
    EXPECT_TRUE(m_Tablet.m_IncomingFile.isEmpty());
}

TEST_F(DeviceRead, ABrokenFileKeepsThePreviousNode)
{
    m_Tablet.m_IncomingNode->SelectID = 3;
    strcpy(m_Tablet.m_IncomingNode->KeyGroup[0].Key[0].func, "kept");
    // One padded frame counts 61 bytes of 13: 469 %, so no progress is told.
    EXPECT_EQ(read("<QRM07App><K>"), (std::vector<Op>{{kOpReadHeader, 13}, {kOpReadFailed, 1}}));
    EXPECT_EQ(m_Tablet.m_IncomingNode->SelectID, 3);
    EXPECT_STREQ(m_Tablet.m_IncomingNode->KeyGroup[0].Key[0].func, "kept");
}

TEST_F(DeviceRead, ANegativeSelectionIsStoredButFails)
{
    const QByteArray file = "<QRM07App><SelectID>-1</SelectID></QRM07App>";
    const std::vector<Op> seen = read(file);
    ASSERT_FALSE(seen.empty());
    EXPECT_EQ(seen.back(), Op(8, 1));
    EXPECT_EQ(m_Tablet.m_IncomingNode->SelectID, -1);
}

// Every length of every kind of report, with hostile bytes, on the decoding
// products: fields stay terminated and the record around them intact.
TEST_F(Dispatcher, NoReportReachesOutsideItsFields)
{
    const uint8_t kinds[][2] = {{0xB4, 0x01}, {0xF2, 0x00}, {0x06, 0x02}, {0x06, 0x03},
                                {0x06, 0x04}, {0x06, 0x05}, {0x06, 0x6E}, {0x06, 0x83},
                                {0x06, 0x64}, {0xF8, 0x02}, {0xB0, 0x01}, {0xB6, 0x00},
                                {0xB6, 0x01}, {0xB6, 0x02}, {0xB5, 0x01}, {0xA0, 0xFF},
                                {0xF0, 0xFF}, {0xC0, 0x00}, {0xF6, 0x50}, {0x01, 0xFF}};
    _DEVICE_ATTRIBUTES &attributes = m_Tablet.m_DeviceAttributes;
    strcpy(attributes.DevicePath, "/dev/guard");
    m_Tablet.m_Active = true;
    m_Tablet.m_TabletXMLData->DevicePenNum = 8;
    for (const int product : {0x0B40, 0x03E1, 0x03E2, 0x07C9}) {
        m_Tablet.m_ProductId = product;
        for (const auto &kind : kinds) {
            for (int length = 1; length <= 64; ++length) {
                for (const uint8_t fill : {uint8_t(0x01), uint8_t(0xFF)}) {
                    Bytes report(static_cast<size_t>(length), fill);
                    report[0] = 0x02;
                    if (length > 1)
                        report[1] = kind[0];
                    if (length > 2)
                        report[2] = kind[1];
                    feed(m_Tablet, report);
                }
            }
        }
    }
    for (const char *field :
         {attributes.ProductName, attributes.SerialNumber, attributes.ICVersion, attributes.ICData})
        EXPECT_LT(strnlen(field, kIdentitySize), size_t(kIdentitySize));
    EXPECT_STREQ(attributes.DevicePath, "/dev/guard");
}

// A real session on a scripted device, for what goes back to it.
class DeviceReplies : public DeviceFixture
{
protected:
    CUSBTablet &open(const std::string &name, uint16_t pid)
    {
        fakeusb::addDevice(tablet(name, pid, static_cast<uint8_t>(m_Tablets.size() + 1)));
        const ZelkDevice &catalogued = row(pid);
        auto *session = new CUSBTablet;
        m_Tablets.emplace_back(session);
        EXPECT_TRUE(session->InitTablet(fakeusb::hidPath(name, catalogued.interfaceNumber).c_str(),
                                        catalogued));
        session->m_Index = 1;
        return *session;
    }

    // Writes to the device since the given count, as bytes.
    static std::vector<Bytes> writesSince(const std::string &name, size_t before)
    {
        std::vector<Bytes> result;
        const auto writes = fakeusb::writesTo(name);
        for (size_t i = before; i < writes.size(); ++i)
            result.push_back(writes[i].data);
        return result;
    }

    void TearDown() override
    {
        m_Tablets.clear();
        DeviceFixture::TearDown();
    }

    std::vector<std::unique_ptr<CUSBTablet>> m_Tablets;
};

Bytes frame(std::initializer_list<uint8_t> head, size_t length)
{
    Bytes bytes(head);
    bytes.resize(length, 0);
    return bytes;
}

TEST_F(DeviceReplies, AConnectionNoticeRestoresTheMode)
{
    CUSBTablet &session = open("tab", 0x0B40);
    const size_t before = fakeusb::writesTo("tab").size();
    feed(session, {0x02, 0xF8, 0x02, 0x00});
    EXPECT_TRUE(writesSince("tab", before).empty()) << "byte 3 must be 1";
    feed(session, {0x02, 0xF8, 0x02, 0x01});
    // The catalogue's report mode of 0x0B40 is 4.
    EXPECT_EQ(writesSince("tab", before), (std::vector<Bytes>{frame({0x02, 0xB0, 0x04}, 10)}));
}

TEST_F(DeviceReplies, AWirelessDeviceAlsoAsksItsLightsAndTellsTheWindow)
{
    writeConfig(section("TQR4470"));
    CUSBTablet &session = open("remote", 0xA101);
    session.m_DeviceAttributes.TabletType[2] = 0x18;
    QSignalSpy spy(&session, qOverload<int, int, int>(&CTablet::PostActionMsg));
    const size_t before = fakeusb::writesTo("remote").size();
    feed(session, {0x02, 0xF8, 0x02, 0x01});
    EXPECT_EQ(writesSince("remote", before),
              (std::vector<Bytes>{frame({0x02, 0xB0, 0x04}, 10),
                                  frame({0x02, 0xB4, 0x01, 0x00, 0x01}, 12),
                                  frame({0x02, 0xB4, 0x01, 0x00, 0x02}, 12)}));
    EXPECT_EQ(messages(spy, kMsgWirelessConnected), (std::vector<Op>{{1, 0}}));
}

TEST_F(DeviceReplies, SavingToTheDeviceKeepsTheImageAndAnnouncesItsSize)
{
    CUSBTablet &session = open("remote", 0x0B40);
    auto node = std::make_unique<_stAppConfigNode>();
    node->SelectID = 1;
    const size_t before = fakeusb::writesTo("remote").size();
    session.SaveConfigToDevice(QString(), node.get());
    const QByteArray &image = session.m_OutgoingFile;
    ASSERT_TRUE(image.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<QRM07App>"));
    const auto size = static_cast<uint32_t>(image.size());
    EXPECT_EQ(writesSince("remote", before),
              (std::vector<Bytes>{frame({0x02, 0xB6, 0x01, uint8_t(size), uint8_t(size >> 8),
                                         uint8_t(size >> 16), uint8_t(size >> 24)},
                                        32)}));
}

} // namespace
