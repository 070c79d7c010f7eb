#include "actionmessages.h"
#include "cinputglobals.h"
#include "cusbtablet.h"
#include "devicecommands.h"
#include "devicefixture.h"
#include "devicethread.h"
#include "hidrawstring.h"
#include "usblink.h"
#include "xmlhelp.h"

#include <QFile>
#include <QMutex>
#include <QSignalSpy>
#include <cstring>
#include <fcntl.h>
#include <linux/input.h>
#include <unistd.h>

namespace
{

// Sessions on scripted devices, without the window.
class Session : public DeviceFixture
{
protected:
    CUSBTablet &open(const fakeusb::Device &device)
    {
        fakeusb::addDevice(device);
        const ZelkDevice &catalogued = row(device.pid);
        auto *tablet = new CUSBTablet;
        m_Tablets.emplace_back(tablet);
        tablet->m_DeviceAttributes.DeviceType = catalogued.deviceType;
        m_Opened = tablet->InitTablet(
            fakeusb::hidPath(device.name, catalogued.interfaceNumber).c_str(), catalogued);
        return *tablet;
    }
    void TearDown() override
    {
        m_Tablets.clear();
        DeviceFixture::TearDown();
    }
    // Throws, failing the test, when nothing was written.
    static Bytes lastWrite(const std::string &n) { return sent(n).at(sent(n).size() - 1); }
    static std::vector<Bytes> sent(const std::string &name, size_t from = 0)
    {
        std::vector<Bytes> result;
        for (const fakeusb::Write &write : fakeusb::writesTo(name))
            result.push_back(write.data);
        return {result.begin() + long(from), result.end()};
    }

    bool m_Opened = false;
    std::vector<std::unique_ptr<CUSBTablet>> m_Tablets;
};

// data/ranges.txt: descriptor 100 | MaxX MaxY MaxPressure LPI Width Height
TEST_F(Session, RangesFromDescriptor100)
{
    uint8_t port = 1;
    for (const QStringList &c : table("ranges.txt")) {
        fakeusb::Device device = tablet("tab" + std::to_string(port), 0x0B40, port);
        device.ports.push_back(port++); // a hub's port: the path reads "1-p.p"
        device.rawStrings[100] = bytes(c[0]);
        const _DEVICE_ATTRIBUTES &a = open(device).m_DeviceAttributes;
        ASSERT_TRUE(m_Opened) << c[0].toStdString();
        EXPECT_EQ(QString::asprintf("%lld %lld %d %d %d %d", (long long)a.MaxX, (long long)a.MaxY,
                                    a.MaxPressure, a.LPI, a.Width, a.Height),
                  c[1].trimmed());
    }
}

TEST_F(Session, IdentityStringsAndShowName)
{
    const _DEVICE_ATTRIBUTES &named = open(tablet("named", 0x0B40, 1)).m_DeviceAttributes;
    EXPECT_STREQ(named.ShowName, "Scribora Sketch S");
    EXPECT_STREQ(named.PidString, "PID_0B40");
    const _DEVICE_ATTRIBUTES &unnamed = open(tablet("unnamed", 0xA20C, 2)).m_DeviceAttributes;
    EXPECT_STREQ(unnamed.ShowName, "Sketch Tablet");

    fakeusb::Device bare = tablet("bare", 0x0B40, 3);
    bare.strings.clear();
    bare.rawStrings.clear();
    const CUSBTablet &session = open(bare);
    ASSERT_TRUE(m_Opened) << "a device without strings still runs";
    EXPECT_EQ(session.m_DeviceAttributes.MaxX, 0);
    EXPECT_EQ(session.m_DeviceAttributes.LPI, 5080);
    EXPECT_STREQ(session.m_DeviceAttributes.ProductName, "");
    EXPECT_TRUE(session.m_Active);
    EXPECT_EQ(fakeusb::writesTo("bare").at(0).data.at(1), 0xB0);

    fakeusb::Device device = tablet("long", 0x0B40, 4);
    device.strings[2] = std::wstring(64, L'\u00e9');
    device.strings[4] = std::wstring(200, L'v');
    writeNames(QString("[Common]\nPID_0B40=%1\n").arg(QString(300, 'n')));
    const _DEVICE_ATTRIBUTES &cut = open(device).m_DeviceAttributes;
    EXPECT_EQ(strlen(cut.ProductName), 54u) << "27 two-byte characters fit in 55 bytes";
    EXPECT_EQ(strlen(cut.ICVersion), 55u);
    EXPECT_EQ(strlen(cut.ShowName), 55u);
}

TEST_F(Session, ASecondDeviceOfAnActiveProductTakesItsSettings)
{
    CTablet idle;
    strcpy(idle.m_DeviceAttributes.PidString, "PID_0B40");
    idle.m_TabletXMLData->SX = 66;
    CGlobalData::TabletArray[2] = &idle;
    EXPECT_EQ(open(tablet("lone", 0x0B40, 3)).m_TabletXMLData->SX, 0) << "an inactive twin";
    CGlobalData::TabletArray[2] = nullptr;

    CUSBTablet &first = open(tablet("first", 0x0B40, 1));
    CGlobalData::TabletArray[0] = &first;
    first.m_TabletXMLData->SX = 77;
    auto *app = new _stAppConfigNode{};
    strcpy(app->path, "/usr/bin/krita");
    first.m_AppConfigs.insert("/usr/bin/krita", app);
    first.m_TabletXMLData->stAppConfigPtr = app;
    writeConfig(QString());
    CUSBTablet &second = open(tablet("second", 0x0B40, 2));
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

TEST_F(Session, NullPathRerunsAnOpenHandleAndStopReleasesIt)
{
    CUSBTablet fresh;
    EXPECT_FALSE(fresh.InitTablet(nullptr, row(0x0B40)));
    CUSBTablet &session = open(tablet("tab", 0x0B40, 1));
    const size_t before = fakeusb::writesTo("tab").size();
    EXPECT_TRUE(session.InitTablet(nullptr, row(0x0B40)));
    session.DelTablet();
    EXPECT_EQ(fakeusb::openHidHandles(), 0);
    EXPECT_FALSE(session.m_Active);
    EXPECT_EQ(session.m_DeviceThread, nullptr);
    EXPECT_EQ(session.m_XMLHelp, nullptr);
    session.SentCmd(kCmdReportMode, 4, 0);
    session.SentSaveFileCmd(kSaveFileBegin, nullptr, 10);
    session.SentReadFileCmd(kReadFileHeader, 0);
    EXPECT_EQ(sent("tab", before),
              (std::vector<Bytes>{frame(10, {0x02, 0xB0, 0x04}), frame(10, {0x02, 0xB0, 0x02})}))
        << "one more start packet, the stop's, then nothing without a handle";
}

// A device that dies with the pen down: once its reader gives up, the pen is lifted.
TEST_F(Session, AReaderThatGivesUpLiftsThePenItHeld)
{
    static QMutex mutex;
    static std::vector<std::pair<int, int>> tools; // (tool, value) as written
    tools.clear();
    MyInput &input = CInputGlobals::MyInputDriver;
    input.AttachDevices(::open("/dev/null", O_WRONLY), 0, 0);
    input.SetWriteHook(
        [](void *, int, const input_event *events, int count) {
            QMutexLocker lock(&mutex);
            for (int i = 0; i < count; ++i)
                if (events[i].type == EV_KEY && events[i].code == BTN_TOOL_PEN)
                    tools.emplace_back(events[i].code, events[i].value);
        },
        nullptr);
    CUSBTablet &session = open(tablet("tab", 0x0B40, 1));
    fakeusb::queueReport("tab", frame(64, {0x02, 0xA1, 0x10, 0x27, 0x10, 0x27, 0xE8, 0x03}));
    for (int i = 0; i < DeviceThread::kErrorLimit; ++i)
        fakeusb::queueReport("tab", {});
    const auto lifted = [] {
        QMutexLocker lock(&mutex);
        return tools == std::vector<std::pair<int, int>>{{BTN_TOOL_PEN, 1}, {BTN_TOOL_PEN, 0}};
    };
    EXPECT_TRUE(waitFor(lifted)) << "tool frames: " << tools.size();
    EXPECT_TRUE(session.m_Active) << "the session itself stays until the device goes";
    input.SetWriteHook(nullptr, nullptr);
    ::close(input.absFd());
    input.AttachDevices(0, 0, 0);
}

// 32 bytes are copied, zeros behind a short payload; nothing is touched on failure.
TEST_F(Session, RawDescriptorCopyIsPaddedAndBounded)
{
    fakeusb::Device device = tablet("tab", 0x0B40, 1);
    device.rawStrings[100] = {1, 2, 3};
    device.rawStrings[101] = bytes("*60@5a");
    fakeusb::addDevice(device);
    const std::unique_ptr<HidDevice> handle = usbLink().openHid(fakeusb::hidPath("tab", 2));
    for (const char *c : {"100 0 01 02 03 ..32 ee", "101 0 *32@5a ee", "77 -1"}) {
        const QStringList f = QString(c).split(' ');
        Bytes out(64, 0xEE);
        EXPECT_EQ(hid_get_indexed_string2(handle.get(), f[0].toInt(), out.data(), 64),
                  f[1].toInt());
        EXPECT_EQ(Bytes(out.begin(), out.begin() + 33),
                  f.size() > 2 ? bytes(f.mid(2).join(' ')) : Bytes(33, 0xEE))
            << c;
    }
}

// data/commands.txt: [a device] a command | the frame written, compared over its whole length.
TEST_F(Session, CommandFramesByteForByte)
{
    const ZelkDevice *older = std::find_if(zelkDevList, zelkDevList + kCatalogueSize, [](auto &r) {
        return r.deviceType == 2 && r.pid < 0x0A5A && r.interfaceNumber == 2;
    });
    writeConfig(section(QString::fromLatin1(row(0x0A5B).name)) +
                section(QString::fromLatin1(older->name)) + section("QTB0610"));
    std::map<QString, CUSBTablet *> sessions = {
        {"old", &open(tablet("old", uint16_t(older->pid), 2))},
        {"pad", &open(tablet("pad", 0x0B40, 3))},
        {"cmd", &open(tablet("display", 0x0A5B, 1))}};
    ASSERT_TRUE(m_Opened);
    sessions["pad"]->m_DeviceAttributes.TabletType[2] = 0x08;
    sessions["save"] = sessions["read"] = sessions["cmd"];
    for (const QStringList &c : table("commands.txt")) {
        SCOPED_TRACE(c[0].toStdString());
        QStringList args = c[0].split(' ', Qt::SkipEmptyParts);
        CUSBTablet &session = *sessions[args[0]];
        if (args[0] == "old" || args[0] == "pad")
            args.removeFirst();
        const size_t before = fakeusb::writesTo("").size();
        Bytes payload = bytes(args.mid(3).join(' '));
        payload.resize(64);
        session.m_Receiving = true;
        if (args[0] == "cmd")
            session.SentCmd(args[1].toInt(), args[2].toInt(), args[3].toInt());
        else if (args[0] == "save")
            session.SentSaveFileCmd(
                args[1].toInt(), args.contains("null") ? nullptr : payload.data(), args[2].toInt());
        else
            session.SentReadFileCmd(args[1].toInt(), args[2].toInt());
        EXPECT_EQ(session.m_Receiving, c[0] != "read 1 0 ") << "a header read starts over";
        const Bytes frame = bytes(c[1]);
        EXPECT_EQ(sent("", before), std::vector<Bytes>(!frame.empty(), frame));
    }
}

TEST_F(Session, AKeyboardStyleRemoteGetsItsOwnStartPacket)
{
    open(tablet("remote", 0x03E1, 1));
    EXPECT_EQ(lastWrite("remote"), frame(10, {0x03, 0x01, uint8_t(row(0x03E1).reportMode)}));
}

// What goes back to the device when it tells of its connection.
TEST_F(Session, AConnectionNoticeRestoresTheModeAndAWirelessDeviceItsLights)
{
    writeConfig(section("QTB0610") + section("TQR4470"));
    CUSBTablet &pad = open(tablet("tab", 0x0B40, 1));
    CUSBTablet &remote = open(tablet("remote", 0xA101, 2));
    remote.m_Index = 1;
    remote.m_DeviceAttributes.TabletType[2] = 0x18;
    const size_t padBefore = fakeusb::writesTo("tab").size();
    const size_t remoteBefore = fakeusb::writesTo("remote").size();
    feed(pad, {0x02, 0xF8, 0x02, 0x00}); // byte 3 must be 1
    feed(pad, {0x02, 0xF8, 0x02, 0x01});
    EXPECT_EQ(sent("tab", padBefore), std::vector<Bytes>{frame(10, {0x02, 0xB0, 0x04})})
        << "the catalogue's mode of 0B40";

    QSignalSpy spy(&remote, qOverload<int, int, int>(&CTablet::PostActionMsg));
    feed(remote, {0x02, 0xF8, 0x02, 0x01});
    EXPECT_EQ(sent("remote", remoteBefore),
              (std::vector<Bytes>{frame(10, {0x02, 0xB0, 0x04}),
                                  frame(12, {0x02, 0xB4, 0x01, 0x00, 0x01}),
                                  frame(12, {0x02, 0xB4, 0x01, 0x00, 0x02})}));
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy.at(0), (QList<QVariant>{1, kMsgWirelessConnected, 0}));
}

TEST_F(Session, SavingToTheDeviceKeepsTheImageAndAnnouncesItsSize)
{
    CUSBTablet &session = open(tablet("tab", 0x0B40, 1));
    _stAppConfigNode node{};
    node.SelectID = 1;
    session.SaveConfigToDevice(QString(), &node);
    const QByteArray &image = session.m_OutgoingFile;
    ASSERT_TRUE(image.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<QRM07App>"));
    const auto size = static_cast<uint32_t>(image.size());
    EXPECT_EQ(lastWrite("tab"), frame(32, {0x02, 0xB6, 0x01, uint8_t(size), uint8_t(size >> 8),
                                           uint8_t(size >> 16), uint8_t(size >> 24)}));
}

TEST_F(DeviceFixture, SaveXmlStoresTheSettingsAndRefreshesTheCachedMapping)
{
    CTablet tablet;
    ASSERT_EQ(tablet.LoadXML("QTB0610"), 1);
    stTablet_XMLData &mapping = *tablet.m_TabletXMLData;
    mapping.ScreenId = 1;
    mapping.SX = 1920;
    mapping.SW = 1280;
    mapping.SH = 1024;
    tablet.SaveXML();
    CTablet reloaded;
    ASSERT_EQ(reloaded.LoadXML("QTB0610"), 1);
    for (const CTablet *checked : {&tablet, &reloaded}) {
        EXPECT_EQ(checked->m_MappedScreenId, 1);
        EXPECT_EQ(checked->m_MappedScreenRect, QRect(1920, 0, 1280, 1024));
    }

    QFile file(m_Folder.filePath("config.xml"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    delete reloaded.m_XMLHelp;
    reloaded.m_XMLHelp = nullptr;
    reloaded.m_TabletXMLData->SX = 0;
    reloaded.SaveXML();
    EXPECT_TRUE(file.seek(0));
    EXPECT_EQ(file.readAll(), before) << "without a helper nothing happens";
    EXPECT_EQ(reloaded.m_MappedScreenRect, QRect(1920, 0, 1280, 1024));
}

} // namespace
