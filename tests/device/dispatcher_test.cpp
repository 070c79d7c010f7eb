#include "actionmessages.h"
#include "devicecommands.h"
#include "devicefixture.h"
#include "xmlhelp.h"

#include <QMutexLocker>
#include <QSignalSpy>
#include <cstring>
#include <thread>

namespace
{

using Op = std::pair<int, int>;

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

// The first two arguments of every signal, or of those whose second is `id`, as (first, third).
std::vector<Op> ops(const QSignalSpy &spy, int id = -1)
{
    std::vector<Op> result;
    for (const QList<QVariant> &args : spy) {
        if (id < 0)
            result.emplace_back(args.at(0).toInt(), args.at(1).toInt());
        else if (args.at(1).toInt() == id)
            result.emplace_back(args.at(0).toInt(), args.at(2).toInt());
    }
    return result;
}

// A tablet without a device: everything but the command channel.
class Dispatcher : public ::testing::Test
{
protected:
    void SetUp() override
    {
        qRegisterMetaType<MultiData>("MultiData");
        m_Tablet = std::make_unique<CTablet>();
        m_Tablet->m_Index = 3;
    }
    QSignalSpy actionSpy()
    {
        return QSignalSpy(m_Tablet.get(), qOverload<int, int, int>(&CTablet::PostActionMsg));
    }
    void fresh()
    {
        m_Tablet.reset();
        SetUp();
    }
    CTablet &tablet() { return *m_Tablet; }

    std::unique_ptr<CTablet> m_Tablet;
};

TEST_F(Dispatcher, LightReplySetsTheSelectedLight)
{
    const struct {
        Bytes report;
        short tabletLight, wheelLight;
        int emitted;
    } cases[] = {{{0x02, 0xB4, 0x01, 0x00, 0x02, 0x37}, 0x37, 99, 1},
                 {{0x02, 0xB4, 0x01, 0x00, 0x01, 0x22}, 99, 0x22, 1},
                 {{0x02, 0xB4, 0x01, 0x01, 0x02, 0x37}, 99, 99, 0},
                 {{0x02, 0xB4, 0x02, 0x00, 0x02, 0x37}, 99, 99, 0},
                 {{0x02, 0xB4, 0x01, 0x00, 0x03, 0x37}, 99, 99, 0},
                 {{0x02, 0xB4, 0x01, 0x00, 0x02}, 0, 99, 1}}; // a missing value reads 0
    for (const auto &c : cases) {
        SCOPED_TRACE(c.report.size() * 1000 + c.report[4]);
        fresh();
        tablet().m_DeviceAttributes.TabletLight = 99;
        tablet().m_DeviceAttributes.WheelLight = 99;
        QSignalSpy spy(m_Tablet.get(), &CTablet::SentTabletLightData);
        feed(tablet(), c.report);
        EXPECT_EQ(tablet().m_DeviceAttributes.TabletLight, c.tabletLight);
        EXPECT_EQ(tablet().m_DeviceAttributes.WheelLight, c.wheelLight);
        EXPECT_EQ(spy.count(), c.emitted);
    }
}

TEST_F(Dispatcher, BatteryStoresThePercentAndPostsTheChargeState)
{
    QSignalSpy spy = actionSpy();
    feed(tablet(), {0x02, 0xF2, 0x00, 0x4B, 0x01});
    EXPECT_EQ(tablet().m_BatteryValue, 75);
    EXPECT_EQ(ops(spy, kMsgBattery), (std::vector<Op>{{3, 1}}));
}

// Every field starts as "old" text or 0xEE bytes, so a write outside a field
// shows up in its neighbour.
TEST_F(Dispatcher, DeviceInformationFillsOnlyItsField)
{
    const struct {
        Bytes report;
        const char *product, *serial, *version, *date;
        std::vector<std::pair<int, uint8_t>> type, second; // (index, byte)
    } cases[] = {
        {{0x02, 0x06, 0x02, 0x01, 'N', 'e', 'w'}, "New", "old", "old", "old", {}, {}},
        {{0x02, 0x06, 0x03, 0x01, 'S', '9'}, "old", "S9", "old", "old", {}, {}},
        {{0x02, 0x06, 0x04, 0x01, 'V', '2'}, "old", "old", "V2", "old", {}, {}},
        {{0x02, 0x06, 0x05, 0x01, 'D', 0, 'x'}, "old", "old", "old", "D", {}, {}},
        {withPayload({0x02, 0x06, 0x02, 0x01}, 60, 'A'),
         "ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvw",
         "old",
         "old",
         "old",
         {},
         {}},
        {{0x02, 0x06, 0x02, 0x01}, "", "old", "old", "old", {}, {}},
        {{0x02, 0x06, 0x02, 0x00, 'N', 'e', 'w'}, "old", "old", "old", "old", {}, {}},
        {withPayload({0x02, 0x06, 0x6E, 0x01}, 60, 1),
         "old",
         "old",
         "old",
         "old",
         {{0, 1}, {54, 55}},
         {{0, 0xEE}}},
        {{0x02, 0x06, 0x6E, 0x01, 0x40, 0x00, 0x18},
         "old",
         "old",
         "old",
         "old",
         {{0, 0x40}, {2, 0x18}, {3, 0xEE}},
         {}},
        {withPayload({0x02, 0x06, 0x83, 0x01}, 12, 0xA0),
         "old",
         "old",
         "old",
         "old",
         {},
         {{0, 0xA0}, {7, 0xA7}}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(int(c.report[2]));
        fresh();
        _DEVICE_ATTRIBUTES &a = tablet().m_DeviceAttributes;
        for (char *field :
             {a.ProductName, a.ModelName, a.ICVersion, a.SerialNumber, a.ICData, a.Manufacturer})
            strcpy(field, "old");
        memset(a.TabletType, 0xEE, sizeof a.TabletType);
        memset(a.SecondSerial, 0xEE, sizeof a.SecondSerial);
        a.DeviceType = 7;
        a.TabletLight = 5;
        feed(tablet(), c.report);
        EXPECT_EQ(QStringList({a.ProductName, a.SerialNumber, a.ICVersion, a.ICData, a.ModelName,
                               a.Manufacturer}),
                  QStringList({c.product, c.serial, c.version, c.date, "old", "old"}));
        for (const auto &[index, byte] : c.type)
            EXPECT_EQ(a.TabletType[index], byte) << index;
        for (const auto &[index, byte] : c.second)
            EXPECT_EQ(a.SecondSerial[index], byte) << index;
        EXPECT_EQ(a.DeviceType, 7);
        EXPECT_EQ(a.TabletLight, 5);
    }
}

// X 0x5194 = 20884, Y 0xC350 = 50000; bytes 14 and 15 add 1 and 2 times 65536,
// only in a report of 16 bytes.
TEST_F(Dispatcher, RangeReplyUsesTheHighBytesOnlyAbove15)
{
    const Bytes full = {0x02, 0x06, 0x64, 0x01, 0x94, 0x51, 0x50, 0xC3,
                        0x00, 0x00, 0xFF, 0x1F, 0x00, 0x00, 0x01, 0x02};
    const std::vector<int64_t> cases[] = {{15, 20884, 50000, 411, 984},
                                          {16, 86420, 181072, 1701, 3564}};
    for (const auto &c : cases) {
        fresh();
        tablet().m_DeviceAttributes.LPI = 1000;
        feed(tablet(), Bytes(full.begin(), full.begin() + c[0]));
        const _DEVICE_ATTRIBUTES &a = tablet().m_DeviceAttributes;
        EXPECT_EQ(std::vector<int64_t>({c[0], a.MaxX, a.MaxY, a.Width, a.Height}), c);
        EXPECT_EQ(a.MaxPressure, 8191);
        EXPECT_EQ(a.LPI, 5080);
    }
}

// The reply comes from another thread, which can take the mutex only once
// the waiter waits: a wake cannot be lost.
TEST_F(Dispatcher, RepliesWakeTheWaiterOfTheirCondition)
{
    const struct {
        Bytes report;
        bool startCondition; // else the reply condition
        bool wakes;
    } cases[] = {{{0x02, 0xB0, 0x00, 0x01}, true, true},
                 {{0x02, 0xB0, 0x01, 0x00}, true, true},
                 {{0x02, 0xB0, 0x04, 0x00}, true, false},
                 {{0x02, 0x06, 0x64, 0x01, 0x10, 0x27}, false, true}};
    for (const auto &c : cases) {
        QWaitCondition &condition =
            c.startCondition ? tablet().m_StartCondition : tablet().m_ReplyCondition;
        QMutexLocker lock(&tablet().m_ReplyMutex);
        std::thread reader([&] { feed(tablet(), c.report); });
        const bool woken = condition.wait(&tablet().m_ReplyMutex, c.wakes ? 5000 : 200);
        lock.unlock();
        reader.join();
        EXPECT_EQ(woken, c.wakes) << int(c.report[2]);
    }
}

TEST_F(Dispatcher, DisplayReplyPostsItsSetting)
{
    const struct {
        Bytes report;
        int id; // 0: no message
        int value;
    } cases[] = {{{0x02, 0xB5, 0x01, 0x03, 0x00, 0x00, 0x50}, kMsgBrightness, 0x50},
                 {{0x02, 0xB5, 0x01, 0x04, 0x00, 0x00, 0x2A}, kMsgContrast, 42},
                 {{0x02, 0xB5, 0x01, 0x01, 0x01, 0x00, 0x03}, kMsgColourSpace, 3},
                 {{0x02, 0xB5, 0x01, 0x01, 0x02, 0x00, 0x05}, kMsgColourTemperature, 5},
                 {{0x02, 0xB5, 0x01, 0x01, 0x03, 0x01, 0x01, 0xC8}, kMsgRedGain, 200},
                 {{0x02, 0xB5, 0x01, 0x01, 0x03, 0x01, 0x02, 0x64}, kMsgGreenGain, 100},
                 {{0x02, 0xB5, 0x01, 0x01, 0x03, 0x01, 0x03, 0x10}, kMsgBlueGain, 16},
                 {{0x02, 0xB5, 0x01, 0x01, 0x03, 0x02, 0x01, 0xC8}, 0, 0},
                 {{0x02, 0xB5, 0x01, 0x01, 0x03, 0x01, 0x04, 0xC8}, 0, 0},
                 {{0x02, 0xB5, 0x01, 0x07, 0x00, 0x00, 0x00}, 0, 0}};
    for (const auto &c : cases) {
        fresh();
        QSignalSpy spy = actionSpy();
        feed(tablet(), c.report);
        const QList<QList<QVariant>> expected = {{3, c.id, c.value}};
        EXPECT_EQ(QList<QList<QVariant>>(spy), c.id ? expected : QList<QList<QVariant>>()) << c.id;
    }
}

// DeviceCurPenID starts at 7, which no case sets on purpose.
TEST_F(Dispatcher, PenChangeFollowsTheMasks)
{
    const struct {
        int16_t penNum, moveMask;
        short seenMask;
        Bytes report;
        bool announced;
        int16_t curPen, moveMaskAfter;
        short seenMaskAfter;
    } cases[] = {{1, 0, -1, penReport(2), false, 0, 0, -1},
                 {0, 0, -1, penReport(1), false, 0, 0, -1},
                 // 1 << 1 = 2 joins the mask; the old mask 0 is remembered.
                 {3, 0, -1, penReport(1), true, 1, 2, 0},
                 {3, 2, 0, penReport(2), true, 2, 6, 2},
                 {3, 0, 0, penReport(1), false, 7, 0, 0},
                 {3, 2, 0, penReport(1), false, 7, 2, 0},
                 {3, 0, -1, penReport(3), false, 7, 0, -1},
                 {3, 0, -1, Bytes{0x02, 0xF0}, false, 7, 0, -1}};
    int row = 0;
    for (const auto &c : cases) {
        SCOPED_TRACE(row++);
        fresh();
        stTablet_XMLData &settings = *tablet().m_TabletXMLData;
        settings.DevicePenNum = c.penNum;
        settings.PenMoveInTablet = c.moveMask;
        settings.DeviceCurPenID = 7;
        tablet().m_PenSeenMask = c.seenMask;
        tablet().m_Active = true;
        QSignalSpy spy = actionSpy();
        feed(tablet(), c.report);
        EXPECT_EQ(ops(spy, kMsgPenChange),
                  (c.announced ? std::vector<Op>{{3, c.curPen}} : std::vector<Op>{}));
        EXPECT_EQ(settings.DeviceCurPenID, c.curPen);
        EXPECT_EQ(settings.PenMoveInTablet, c.moveMaskAfter);
        EXPECT_EQ(tablet().m_PenSeenMask, c.seenMaskAfter);
    }
}

TEST_F(Dispatcher, MultiDataOnlyWhileAskedFor)
{
    const struct {
        bool active, sendMultiData, areaSelecting;
        Bytes report;
        int emitted;
    } cases[] = {{true, true, false, penReport(0), 1},
                 {true, false, false, penReport(0), 0},
                 {false, true, false, penReport(0), 0},
                 {true, true, true, penReport(0), 0},
                 {true, true, false, Bytes{0x02, 0xB6, 0x05}, 0},
                 {true, true, false, Bytes{0x02, 0xF2, 0, 50, 0}, 0}};
    int row = 0;
    for (const auto &c : cases) {
        SCOPED_TRACE(row++);
        fresh();
        tablet().m_Active = c.active;
        tablet().m_SendMultiData = c.sendMultiData;
        tablet().m_AreaSelecting = c.areaSelecting;
        QSignalSpy spy(m_Tablet.get(), &CTablet::SentMultiData);
        feed(tablet(), c.report);
        ASSERT_EQ(spy.count(), c.emitted);
        for (const QList<QVariant> &args : spy)
            EXPECT_EQ(args.at(0).value<CTablet *>(), m_Tablet.get());
    }
}

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

TEST_F(Dispatcher, FileTransferFollowsTheReplies)
{
    const Bytes accepted = {0x02, 0xB6, 0x01, 0x01};
    const struct {
        std::vector<Bytes> replies;
        std::vector<Op> ops;
        bool receiving;
        QByteArray file;
    } cases[] = {
        {{accepted, ending(2)}, {{kOpWriteAccepted, 0}, {kOpWriteConfirmed, 2}}, false, ""},
        {{{0x02, 0xB6, 0x01, 0x00}}, {}, false, ""},
        // The empty read that a refusal ends fails as well.
        {{accepted, ending(0)},
         {{kOpWriteAccepted, 0}, {kOpWriteRefused, 0}, {kOpReadFailed, 1}},
         false,
         ""},
        {{ending(2)}, {}, false, ""},
        {{header(300, 0)}, {{kOpReadHeader, 300}}, true, ""},
        {{header(300, 7)}, {{kOpReadOtherMark, 0}}, true, ""},
        {{header(0, 0), ending(0)},
         {{kOpReadNoFile, 0}, {kOpWriteRefused, 0}, {kOpReadFailed, 1}},
         false,
         ""},
        // 4 of 6 bytes: 66 %; then 7 of 6, above 100 %, and 'e' is past the size.
        {{header(6, 0), dataFrame({'a', 0x00, 0xFF, 'b'}), dataFrame({'c', 'd', 'e'})},
         {{kOpReadHeader, 6}, {kOpReadProgress, 66}},
         true,
         "abcd"},
        // Six bytes 01 02 00 00 00 00 of 10: 60 %.
        {{header(10, 0), header(10, 0)},
         {{kOpReadHeader, 10}, {kOpReadProgress, 60}},
         true,
         QByteArray("\x01\x0A", 2)},
        {{dataFrame({'a', 'b'})}, {}, false, ""},
        {{header(10, 0), dataFrame({0x00, 'a'})}, {{kOpReadHeader, 10}}, true, ""},
        {{header(10, 0), dataFrame({'a', 'b', 'c'}), ending(2)},
         {{kOpReadHeader, 10}, {kOpReadProgress, 30}, {kOpReadFailed, 10}},
         false,
         "abc"},
        {{header(10, 0), dataFrame({'a', 'b', 'c'}), ending(0)},
         {{kOpReadHeader, 10}, {kOpReadProgress, 30}, {kOpReadFailed, 10}},
         false,
         "abc"},
        {{header(4, 0), dataFrame({'a', 'b', 'c', 'd'}), ending(0)},
         {{kOpReadHeader, 4}, {kOpReadProgress, 100}, {kOpReadFailed, 1}},
         false,
         ""},
        {{{0x02, 0xB6, 0x03, 0x01}}, {}, false, ""}};
    int row = 0;
    for (const auto &c : cases) {
        SCOPED_TRACE(row++);
        fresh();
        QSignalSpy spy(m_Tablet.get(), &CTablet::PostDeviceOperatorMsg);
        for (const Bytes &reply : c.replies)
            feed(tablet(), reply);
        EXPECT_EQ(ops(spy), c.ops);
        EXPECT_EQ(tablet().m_Receiving, c.receiving);
        EXPECT_EQ(tablet().m_IncomingFile, c.file);
        EXPECT_FALSE(tablet().m_Sending);
    }
}

// A whole file as a device sends it: a header, then 64-byte frames padded with zeros.
std::vector<Op> readFromDevice(CTablet &tablet, const QByteArray &file)
{
    QSignalSpy spy(&tablet, &CTablet::PostDeviceOperatorMsg);
    feed(tablet, header(static_cast<uint32_t>(file.size()), 0));
    for (int at = 0; at < file.size(); at += 61) {
        Bytes frame =
            dataFrame(Bytes(file.begin() + at, file.begin() + qMin(at + 61, file.size())));
        frame.resize(64, 0);
        feed(tablet, frame);
    }
    feed(tablet, ending(0));
    return ops(spy);
}

TEST_F(Dispatcher, ACompleteFileFillsTheIncomingNodeAndABrokenOneKeepsIt)
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
    const std::vector<Op> seen = readFromDevice(tablet(), file);
    ASSERT_GE(seen.size(), 3u);
    EXPECT_EQ(seen.front(), Op(kOpReadHeader, file.size()));
    EXPECT_EQ(seen.back(), Op(kOpReadDone, 1));
    for (size_t i = 1; i + 1 < seen.size(); ++i)
        EXPECT_TRUE(seen[i].first == kOpReadProgress && seen[i].second <= 100) << i;
    const auto incoming = [this]() -> _stAppConfigNode & { return *tablet().m_IncomingNode; };
    EXPECT_EQ(incoming().SelectID, 2);
    EXPECT_EQ(incoming().KeyGroup[2].bEnable, 1);
    EXPECT_STREQ(incoming().KeyGroup[2].Key[10].func, "1|Undo|Ctrl+Z|29:0+44:0");
    EXPECT_STREQ(incoming().Ring[0].Item[3].func, "3|Zoom|2");
    EXPECT_EQ(tablet().m_IncomingCount, 0);
    EXPECT_FALSE(tablet().m_Receiving);
    EXPECT_TRUE(tablet().m_IncomingFile.isEmpty());

    // One padded frame counts 61 bytes of 13: 469 %, so no progress is told.
    EXPECT_EQ(readFromDevice(tablet(), "<QRM07App><K>"),
              (std::vector<Op>{{kOpReadHeader, 13}, {kOpReadFailed, 1}}));
    EXPECT_EQ(incoming().SelectID, 2);
    EXPECT_STREQ(incoming().KeyGroup[2].Key[10].func, "1|Undo|Ctrl+Z|29:0+44:0");

    const std::vector<Op> negative =
        readFromDevice(tablet(), "<QRM07App><SelectID>-1</SelectID></QRM07App>");
    EXPECT_EQ(negative.back(), Op(8, 1)) << "a negative selection is stored but fails";
    EXPECT_EQ(incoming().SelectID, -1);
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
    _DEVICE_ATTRIBUTES &attributes = tablet().m_DeviceAttributes;
    strcpy(attributes.DevicePath, "/dev/guard");
    tablet().m_Active = true;
    tablet().m_TabletXMLData->DevicePenNum = 8;
    for (const int product : {0x0B40, 0x03E1, 0x03E2, 0x07C9}) {
        tablet().m_ProductId = product;
        for (const auto &kind : kinds) {
            for (size_t length = 1; length <= 64; ++length) {
                for (const uint8_t fill : {uint8_t(0x01), uint8_t(0xFF)}) {
                    Bytes report(length, fill);
                    report[0] = 0x02;
                    std::copy_n(kind, std::min<size_t>(2, length - 1), report.begin() + 1);
                    feed(tablet(), report);
                }
            }
        }
    }
    for (const char *field :
         {attributes.ProductName, attributes.SerialNumber, attributes.ICVersion, attributes.ICData})
        EXPECT_LT(strnlen(field, kIdentitySize), size_t(kIdentitySize));
    EXPECT_STREQ(attributes.DevicePath, "/dev/guard");
}

} // namespace
