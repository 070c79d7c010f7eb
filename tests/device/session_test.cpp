#include "cusbtablet.h"
#include "devicecommands.h"
#include "devicefixture.h"
#include "hidrawstring.h"

#include <cstring>
#include <hidapi.h>

namespace
{

using fakeusb::Bytes;

// One session on one scripted device, without the window.
class Session : public DeviceFixture
{
protected:
    CUSBTablet &open(const fakeusb::Device &device, uint32_t pid)
    {
        fakeusb::addDevice(device);
        auto *tablet = new CUSBTablet;
        const ZelkDevice &catalogued = row(pid);
        tablet->m_DeviceAttributes.DeviceType = catalogued.deviceType;
        m_Opened = tablet->InitTablet(
            fakeusb::hidPath(device.name, catalogued.interfaceNumber).c_str(), catalogued);
        m_Tablets.emplace_back(tablet);
        return *tablet;
    }

    void TearDown() override
    {
        m_Tablets.clear();
        DeviceFixture::TearDown();
    }

    Bytes lastWrite(const std::string &name)
    {
        const auto writes = fakeusb::writesTo(name);
        return writes.empty() ? Bytes() : writes.back().data;
    }

    bool m_Opened = false;
    std::vector<std::unique_ptr<CUSBTablet>> m_Tablets;
};

struct RangeCase {
    const char *name;
    Bytes descriptor;
    int64_t maxX, maxY;
    int pressure, lpi, width, height;
};

void PrintTo(const RangeCase &value, std::ostream *out)
{
    *out << value.name;
}

class Ranges : public Session, public ::testing::WithParamInterface<RangeCase>
{
};

TEST_P(Ranges, DecodedFromDescriptor100)
{
    fakeusb::Device device = tablet("tab", 0x0B40, 1);
    device.rawStrings[100] = GetParam().descriptor;
    const _DEVICE_ATTRIBUTES &attributes = open(device, 0x0B40).m_DeviceAttributes;
    ASSERT_TRUE(m_Opened);
    EXPECT_EQ(attributes.MaxX, GetParam().maxX);
    EXPECT_EQ(attributes.MaxY, GetParam().maxY);
    EXPECT_EQ(attributes.MaxPressure, GetParam().pressure);
    EXPECT_EQ(attributes.LPI, GetParam().lpi);
    EXPECT_EQ(attributes.Width, GetParam().width);
    EXPECT_EQ(attributes.Height, GetParam().height);
}

INSTANTIATE_TEST_SUITE_P(
    Session, Ranges,
    ::testing::Values(RangeCase{"sixteenBit",
                                {0x64, 0xCC, 0xA0, 0x73, 0, 0, 0xFF, 0x1F, 0xD8, 0x13, 0, 0},
                                52324,
                                29600,
                                8191,
                                5080,
                                1030,
                                582},
                      // 86420 = 0x15194, 50000 = 0xC350, at 5000 lpi
                      RangeCase{"twentyFourBit",
                                {0x94, 0x51, 0x50, 0xC3, 0, 0, 0xFF, 0x3F, 0x88, 0x13, 0x01, 0x00},
                                86420,
                                50000,
                                16383,
                                5000,
                                1728,
                                1000},
                      RangeCase{"bothHighBytes",
                                {0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0x64, 0, 0xFF, 0xFF},
                                0xFFFFFF,
                                0xFFFFFF,
                                0,
                                100,
                                16777215,
                                16777215},
                      RangeCase{"lpiZeroMeans5080",
                                {0x10, 0x27, 0x88, 0x13, 0, 0, 0, 4, 0, 0, 0, 0},
                                10000,
                                5000,
                                1024,
                                5080,
                                196,
                                98},
                      RangeCase{"shortPayload", {0x10, 0x27}, 10000, 0, 0, 5080, 196, 0},
                      RangeCase{"emptyPayload", {}, 0, 0, 0, 5080, 0, 0}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(Session, ADeviceWithoutStringsStillRuns)
{
    fakeusb::Device bare = tablet("bare", 0x0B40, 1);
    bare.strings.clear();
    bare.rawStrings.clear();
    bare.controlTransfersFail = true;
    const CUSBTablet &session = open(bare, 0x0B40);
    ASSERT_TRUE(m_Opened);
    EXPECT_EQ(session.m_DeviceAttributes.MaxX, 0);
    EXPECT_EQ(session.m_DeviceAttributes.MaxPressure, 0);
    EXPECT_EQ(session.m_DeviceAttributes.LPI, 5080);
    EXPECT_STREQ(session.m_DeviceAttributes.ProductName, "");
    EXPECT_STREQ(session.m_DeviceAttributes.ShowName, "Scribora Sketch S");
    EXPECT_TRUE(session.m_Active);
    EXPECT_EQ(fakeusb::writesTo("bare").at(0).data.at(1), 0xB0);
}

TEST_F(Session, ShowNameFromTheNameFileElseTheProduct)
{
    const CUSBTablet &named = open(tablet("named", 0x0B40, 1), 0x0B40);
    EXPECT_STREQ(named.m_DeviceAttributes.ShowName, "Scribora Sketch S");
    const CUSBTablet &unnamed = open(tablet("unnamed", 0xA20C, 2), 0xA20C);
    EXPECT_STREQ(unnamed.m_DeviceAttributes.ShowName, "Sketch Tablet");
}

TEST_F(Session, LongIdentityStringsAreCutToTheirFields)
{
    fakeusb::Device device = tablet("long", 0x0B40, 1);
    device.strings[2] = std::wstring(64, L'\u00e9');
    device.strings[4] = std::wstring(200, L'v');
    writeNames(QString("[Common]\nPID_0B40=%1\n").arg(QString(300, 'n')));
    const _DEVICE_ATTRIBUTES &attributes = open(device, 0x0B40).m_DeviceAttributes;
    ASSERT_TRUE(m_Opened);
    EXPECT_EQ(strlen(attributes.ProductName), 54u) << "27 two-byte characters fit in 55 bytes";
    EXPECT_EQ(strlen(attributes.ICVersion), 55u);
    EXPECT_EQ(strlen(attributes.ShowName), 55u);
}

TEST_F(Session, ASecondDeviceOfAnActiveProductTakesItsSettings)
{
    CUSBTablet &first = open(tablet("first", 0x0B40, 1), 0x0B40);
    ASSERT_TRUE(m_Opened);
    CGlobalData::TabletArray[0] = &first;
    first.m_TabletXMLData->SX = 77;
    auto *app = new _stAppConfigNode{};
    strcpy(app->path, "/usr/bin/krita");
    first.m_AppConfigs.insert("/usr/bin/krita", app);
    first.m_TabletXMLData->stAppConfigPtr = app;
    writeConfig(QString());

    CUSBTablet &second = open(tablet("second", 0x0B40, 2), 0x0B40);
    CGlobalData::TabletArray[0] = nullptr;
    ASSERT_TRUE(m_Opened) << "the settings came from the first, not the (empty) file";
    EXPECT_EQ(second.m_TabletXMLData->SX, 77);
    ASSERT_EQ(second.m_AppConfigs.size(), 1);
    _stAppConfigNode *copy = second.m_AppConfigs.first();
    EXPECT_NE(copy, app) << "application records are copied, not shared";
    EXPECT_STREQ(copy->path, "/usr/bin/krita");
    EXPECT_EQ(second.m_TabletXMLData->stAppConfigPtr, copy);
    first.m_TabletXMLData->SX = 5;
    EXPECT_EQ(second.m_TabletXMLData->SX, 77);
}

TEST_F(Session, AnInactiveTwinDoesNotLendItsSettings)
{
    CTablet idle;
    strcpy(idle.m_DeviceAttributes.PidString, "PID_0B40");
    idle.m_TabletXMLData->SX = 77;
    CGlobalData::TabletArray[2] = &idle;
    const CUSBTablet &session = open(tablet("tab", 0x0B40, 1), 0x0B40);
    CGlobalData::TabletArray[2] = nullptr;
    ASSERT_TRUE(m_Opened);
    EXPECT_EQ(session.m_TabletXMLData->SX, 0);
}

TEST_F(Session, NullPathRerunsOnlyAnOpenHandle)
{
    CUSBTablet fresh;
    EXPECT_FALSE(fresh.InitTablet(nullptr, row(0x0B40)));
    CUSBTablet &session = open(tablet("tab", 0x0B40, 1), 0x0B40);
    ASSERT_TRUE(m_Opened);
    const size_t before = fakeusb::writesTo("tab").size();
    EXPECT_TRUE(session.InitTablet(nullptr, row(0x0B40)));
    EXPECT_EQ(fakeusb::writesTo("tab").size(), before + 1) << "one more start packet";
    EXPECT_EQ(fakeusb::hidOpenCalls(), 1);
}

TEST_F(Session, StopSendsTheReleasePacketAndClosesTheDevice)
{
    CUSBTablet &session = open(tablet("tab", 0x0B40, 1), 0x0B40);
    ASSERT_TRUE(m_Opened);
    session.DelTablet();
    EXPECT_EQ(lastWrite("tab"), (Bytes{0x02, 0xB0, 0x02, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(fakeusb::openHidHandles(), 0);
    EXPECT_FALSE(session.m_Active);
    EXPECT_EQ(session.m_DeviceThread, nullptr);
    EXPECT_EQ(session.m_XMLHelp, nullptr);
}

TEST_F(Session, RawDescriptorCopyIsPaddedAndBounded)
{
    fakeusb::Device device = tablet("tab", 0x0B40, 1);
    device.rawStrings[100] = {1, 2, 3};
    device.rawStrings[101] = Bytes(60, 0x5A);
    fakeusb::addDevice(device);
    const std::string path = fakeusb::hidPath("tab", 2);
    hid_device *handle = hid_open_path(path.c_str());
    ASSERT_NE(handle, nullptr);
    hid_remember_path(handle, path.c_str());

    unsigned char out[64];
    memset(out, 0xEE, sizeof out);
    ASSERT_EQ(hid_get_indexed_string2(handle, 100, out, sizeof out), 0);
    EXPECT_EQ(Bytes(out, out + 4), (Bytes{1, 2, 3, 0}));
    EXPECT_EQ(Bytes(out + 3, out + 32), Bytes(29, 0)) << "zeros behind a short payload";
    EXPECT_EQ(out[32], 0xEE) << "exactly 32 bytes are copied";
    ASSERT_EQ(hid_get_indexed_string2(handle, 101, out, sizeof out), 0);
    EXPECT_EQ(Bytes(out, out + 32), Bytes(32, 0x5A));
    EXPECT_EQ(out[32], 0xEE);

    memset(out, 0xEE, sizeof out);
    EXPECT_EQ(hid_get_indexed_string2(handle, 77, out, sizeof out), -1);
    EXPECT_EQ(out[0], 0xEE) << "untouched on failure";
    hid_forget_path(handle);
    EXPECT_EQ(hid_get_indexed_string2(handle, 100, out, sizeof out), -1);
    hid_close(handle);
}

struct CommandCase {
    const char *name;
    int command, p1, p2;
    Bytes frame; // empty: nothing is sent
};

void PrintTo(const CommandCase &value, std::ostream *out)
{
    *out << value.name;
}

// Frames are compared over their whole length as the device sees them.
class Commands : public Session, public ::testing::WithParamInterface<CommandCase>
{
};

TEST_P(Commands, FrameByteForByte)
{
    writeConfig(section(QString::fromLatin1(row(0x0A5B).name)));
    fakeusb::Device display = tablet("display", 0x0A5B, 1);
    CUSBTablet &session = open(display, 0x0A5B);
    ASSERT_TRUE(m_Opened);
    const size_t before = fakeusb::writesTo("display").size();
    session.SentCmd(GetParam().command, GetParam().p1, GetParam().p2);
    const auto writes = fakeusb::writesTo("display");
    if (GetParam().frame.empty()) {
        EXPECT_EQ(writes.size(), before);
        return;
    }
    ASSERT_EQ(writes.size(), before + 1);
    EXPECT_EQ(writes.back().data, GetParam().frame);
}

Bytes frame(size_t length, std::initializer_list<uint8_t> head)
{
    Bytes bytes(length, 0);
    std::copy(head.begin(), head.end(), bytes.begin());
    return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Session, Commands,
    ::testing::Values(
        CommandCase{"askLightNeedsTheCapability", kCmdAskLight, kLightWheel, 0, {}},
        CommandCase{"setLight", kCmdSetLight, kLightTablet, 9,
                    frame(12, {0x02, 0xB4, 0x01, 0x01, 2, 9})},
        CommandCase{"stripOrientation", kCmdTouchStrip, kStripTouch, 3,
                    frame(12, {0x02, 0xB4, 0x02, 0x01, 0, 1, 3})},
        CommandCase{"stripModeThree", kCmdTouchStrip, kStripWheel, 3,
                    frame(12, {0x02, 0xB4, 0x02, 0x01, 0, 3, 0})},
        CommandCase{"modeRelease", kCmdReportMode, kReportModeSystem, 0,
                    frame(10, {0x02, 0xB0, 0x02})},
        CommandCase{"displayState", kCmdDisplayState, 1, 0, frame(10, {0x02, 0xB5, 0x00, 0xF0})},
        CommandCase{"colourSpace", kCmdColourSpace, 1, 4,
                    frame(10, {0x02, 0xB5, 1, 0x01, 0x01, 0, 4})},
        CommandCase{"colourTemperature", kCmdColourTemperature, 1, 5,
                    frame(10, {0x02, 0xB5, 1, 0x01, 0x02, 0, 5})},
        CommandCase{"red", kCmdRedGain, 1, 6,
                    frame(10, {0x02, 0xB5, 1, 0x01, 0x03, 0x01, 0x01, 6})},
        CommandCase{"green", kCmdGreenGain, 1, 7,
                    frame(10, {0x02, 0xB5, 1, 0x01, 0x03, 0x01, 0x02, 7})},
        CommandCase{"blue", kCmdBlueGain, 1, 8,
                    frame(10, {0x02, 0xB5, 1, 0x01, 0x03, 0x01, 0x03, 8})},
        CommandCase{"reserved116", 116, 1, 8, {}},
        CommandCase{"brightness", kCmdBrightness, 1, 80,
                    frame(10, {0x02, 0xB5, 1, 0x03, 0, 0, 80})},
        CommandCase{"contrast", kCmdContrast, 1, 50, frame(10, {0x02, 0xB5, 1, 0x04, 0, 0, 50})},
        CommandCase{"resetDisplay", kCmdDisplayReset, 1, 9,
                    frame(10, {0x02, 0xB5, 1, 0x07, 0, 0, 0})},
        CommandCase{"unknown", 42, 1, 1, {}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(Session, DisplayCommandsOnlyForNewerPenDisplays)
{
    uint16_t olderDisplay = 0;
    for (const ZelkDevice &candidate : zelkDevList) {
        if (candidate.deviceType == 2 && candidate.pid < 0x0A5A && candidate.interfaceNumber == 2)
            olderDisplay = uint16_t(candidate.pid);
    }
    ASSERT_NE(olderDisplay, 0);
    writeConfig(section(QString::fromLatin1(row(olderDisplay).name)) + section("QTB0610"));
    CUSBTablet &display = open(tablet("old", olderDisplay, 1), olderDisplay);
    CUSBTablet &pad = open(tablet("pad", 0x0B40, 2), 0x0B40);
    const size_t before = fakeusb::writes().size();
    display.SentCmd(kCmdBrightness, 1, 50);
    pad.SentCmd(kCmdBrightness, 1, 50);
    pad.SentCmd(kCmdDisplayState, 1, 0);
    EXPECT_EQ(fakeusb::writes().size(), before);
}

TEST_F(Session, LightQueryOnceTheDeviceHasLights)
{
    CUSBTablet &session = open(tablet("tab", 0x0B40, 1), 0x0B40);
    session.m_DeviceAttributes.TabletType[2] = 0x08;
    session.SentCmd(kCmdAskLight, kLightTablet, 0);
    EXPECT_EQ(lastWrite("tab"), frame(12, {0x02, 0xB4, 0x01, 0x00, 2}));
}

TEST_F(Session, FileTransferFrames)
{
    CUSBTablet &session = open(tablet("tab", 0x0B40, 1), 0x0B40);
    session.SentSaveFileCmd(kSaveFileBegin, nullptr, 0x01020304);
    EXPECT_EQ(lastWrite("tab"), frame(32, {0x02, 0xB6, 0x01, 0x04, 0x03, 0x02, 0x01}));
    session.SentSaveFileCmd(kSaveFileEnd, nullptr, 4);
    EXPECT_EQ(lastWrite("tab"), frame(32, {0x02, 0xB6, 0x02}));
    unsigned char chunk[29];
    for (int i = 0; i < 29; ++i)
        chunk[i] = uint8_t('a' + i % 26);
    session.SentSaveFileCmd(kSaveFileChunk, chunk, 29);
    Bytes expected = frame(32, {0x02, 0xB6, 0x03});
    std::copy(chunk, chunk + 29, expected.begin() + 3);
    EXPECT_EQ(lastWrite("tab"), expected);
    session.SentSaveFileCmd(7, nullptr, 5);
    EXPECT_EQ(lastWrite("tab"), frame(5, {0x02, 0xB6, 0x07}));

    const size_t before = fakeusb::writes().size();
    session.SentSaveFileCmd(kSaveFileChunk, chunk, 200);
    session.SentSaveFileCmd(kSaveFileChunk, nullptr, 5);
    session.SentSaveFileCmd(9, nullptr, 1000);
    EXPECT_EQ(fakeusb::writes().size(), before) << "lengths beyond a frame are refused";

    session.m_Receiving = true;
    session.SentReadFileCmd(kReadFileHeader, 0);
    EXPECT_FALSE(session.m_Receiving);
    EXPECT_EQ(lastWrite("tab"), frame(10, {0x02, 0xB6, 0x00, 0x01}));
    session.SentReadFileCmd(kReadFileData, 0);
    EXPECT_EQ(lastWrite("tab"), frame(10, {0x02, 0xB6, 0x00, 0x02}));
    session.SentReadFileCmd(kReadFileData, 5);
    EXPECT_EQ(lastWrite("tab"), frame(10, {0x02, 0xB6, 0x00, 0x05}));
    session.SentReadFileCmd(3, 5);
    EXPECT_EQ(lastWrite("tab"), frame(10, {0x02, 0xB6, 0x02, 0x00}));
}

TEST_F(Session, CommandsWithoutAHandleSendNothing)
{
    CUSBTablet closed;
    closed.SentCmd(kCmdReportMode, 4, 0);
    closed.SentSaveFileCmd(kSaveFileBegin, nullptr, 10);
    closed.SentReadFileCmd(kReadFileHeader, 0);
    EXPECT_TRUE(fakeusb::writes().empty());
}

} // namespace
