#include "devicecommands.h"
#include "devicefixture.h"
#include "fakeuinput.h"
#include "mainwindow.h"
#include "qdeviceitemwidget.h"

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QLabel>
#include <QTabWidget>

namespace
{

constexpr unsigned short kVendor = 0x5A3C;
constexpr short kArrived = 1;
constexpr short kLeft = 2;
using Devices = std::vector<fakeusb::Device>;
using Names = std::vector<std::string>;

// The state of each hot-plug message the window takes, in the order taken.
std::vector<short> seenStates;
void recordStates(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtInfoMsg && text.startsWith("ReceiveUsbMsg"))
        seenStates.push_back(static_cast<short>(text.section(' ', -1).toShort()));
}

// Slot contents as "a b - - -".
Names names(const QString &text)
{
    Names result;
    for (const QString &name : text.split(' '))
        result.push_back(name == "-" ? "" : name.toStdString());
    return result;
}

class HotPlug : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        ASSERT_TRUE(m_Uinput.isValid());
        fakeuinput::start(m_Uinput.path().toStdString());
        m_Window = std::make_unique<MainWindow>();
        CGlobalData::ScreenArray[0] = QRect(0, 0, 1920, 1080);
        m_Window->show();
        m_Strip = m_Window->findChild<QDeviceItemWidget *>("widget_device");
        m_Pages = m_Window->findChild<QTabWidget *>("tabWidget");
        m_Disconnected = m_Window->findChild<QLabel *>("DisconnectTipsLabel");
        ASSERT_TRUE(m_Strip && m_Pages && m_Disconnected);
    }
    void TearDown() override
    {
        m_Window.reset();
        fakeuinput::stop();
        DeviceFixture::TearDown();
    }
    void present(const Devices &devices)
    {
        TearDown();
        SetUp();
        for (const fakeusb::Device &device : devices)
            fakeusb::addDevice(device);
        m_Window->EnumDeviceLinux(0);
    }
    // Device names by slot, "" for an empty one: each named device holds its slot with
    // the one open handle of its vendor interface, and the window shows what is open.
    void expectSlots(const Names &wanted)
    {
        Names expected;
        int filled = 0;
        for (const std::string &name : wanted) {
            expected.push_back(name.empty() ? "" : fakeusb::hidPath(name, 2));
            filled += !name.empty();
        }
        EXPECT_EQ(slotPaths(), expected);
        EXPECT_EQ(fakeusb::openHidHandles(), filled);
        EXPECT_EQ(m_Window->GetTabletArraySize(), filled);
        EXPECT_EQ(m_Strip->count(), filled);
        EXPECT_EQ(m_Pages->isVisible(), filled > 0);
        EXPECT_EQ(m_Disconnected->isVisible(), filled == 0);
    }

    // "a:0B40:1 b:0B41:2": named tablets of a product on a port each.
    static Devices devices(const QString &text)
    {
        Devices result;
        for (const QString &item : text.split(' ', Qt::SkipEmptyParts)) {
            const QStringList f = item.split(':');
            result.push_back(tablet(f[0].toStdString(), uint16_t(f[1].toUInt(nullptr, 16)),
                                    uint8_t(f[2].toUInt())));
        }
        return result;
    }

    QTemporaryDir m_Uinput;
    std::unique_ptr<MainWindow> m_Window;
    QDeviceItemWidget *m_Strip = nullptr;
    QTabWidget *m_Pages = nullptr;
    QLabel *m_Disconnected = nullptr;
};

TEST_F(HotPlug, ArrivalOpensCataloguedDevicesOnly)
{
    const char *cases[][3] = {
        // present before | plugged | slots after
        {"", "a:0B40:1", "a - - - -"},
        {"a:0B40:1", "b:0B40:2", "a b - - -"},
        {"", "odd:0BFF:2", "- - - - -"},
        {"a:0B40:1 b:0B40:2 c:0B41:3 d:0B41:4 e:A20C:5", "f:0B40:6", "a b c d e"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c[1]);
        present(devices(c[0]));
        const std::vector<CTablet *> earlier(std::begin(CGlobalData::TabletArray),
                                             std::end(CGlobalData::TabletArray));
        const fakeusb::Device plugged = devices(c[1]).front();
        fakeusb::plug(plugged);
        QElapsedTimer timer;
        timer.start();
        m_Window->ReceiveUsbMsg(kVendor, plugged.pid, kArrived);
        EXPECT_GE(timer.elapsed(), 600);
        expectSlots(names(c[2]));
        for (size_t slot = 0; slot < earlier.size(); ++slot)
            EXPECT_TRUE(!earlier[slot] || CGlobalData::TabletArray[slot] == earlier[slot]) << slot;
    }
}

TEST_F(HotPlug, RemovalClosesTheProductAndReopensWhatRemains)
{
    const struct {
        const char *before, *unplugged;
        uint16_t pid;
        const char *after;
        bool reopened; // the remaining tablet is a new object
    } cases[] = {{"a:0B40:1", "a", 0x0B40, "- - - - -", false},
                 {"a:0B40:1 b:0B40:2", "a", 0x0B40, "b - - - -", true},
                 {"a:0B40:1 c:A20C:2", "c", 0xA20C, "a - - - -", false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.before);
        present(devices(c.before));
        std::vector<CTablet *> closed;
        for (CTablet *tablet : CGlobalData::TabletArray) {
            if (tablet && tablet->m_ProductId == c.pid)
                closed.push_back(tablet);
        }
        CTablet *const first = CGlobalData::TabletArray[0];
        fakeusb::unplug(c.unplugged);
        m_Window->ReceiveUsbMsg(kVendor, c.pid, kLeft);
        expectSlots(names(c.after));
        for (const CTablet *tablet : closed)
            EXPECT_FALSE(tablet->m_Active) << "closed devices end their session";
        if (CGlobalData::TabletArray[0]) {
            EXPECT_EQ(CGlobalData::TabletArray[0] != first, c.reopened);
        }
        EXPECT_EQ(CGlobalData::TabletMap.size(), m_Window->GetTabletArraySize());
        EXPECT_EQ(m_Window->currentTablet(), CGlobalData::TabletArray[0]);
    }
}

// The strip keeps the user's choice when another device's entry goes.
TEST_F(HotPlug, RemovingAnotherDeviceKeepsTheSelection)
{
    writeNames("[Common]\nPID_0B40=Alpha\nPID_0B41=Beta\nPID_A20C=Gamma\n");
    for (const fakeusb::Device &device : devices("a:0B40:1 b:0B41:2 c:A20C:3"))
        fakeusb::addDevice(device);
    m_Window->EnumDeviceLinux(0);
    const QList<QAbstractButton *> entries = m_Strip->findChildren<QAbstractButton *>();
    ASSERT_EQ(entries.size(), 3);
    entries[2]->click();
    ASSERT_EQ(m_Window->currentTablet(), CGlobalData::TabletArray[2]);
    fakeusb::unplug("a");
    m_Window->ReceiveUsbMsg(kVendor, 0x0B40, kLeft);
    EXPECT_EQ(m_Strip->count(), 2);
    EXPECT_EQ(m_Strip->currentText(), "Gamma");
    EXPECT_EQ(m_Window->currentTablet(), CGlobalData::TabletArray[2]);
}

// Through the listener that Init starts: events are taken one by one, in the order they came.
TEST_F(HotPlug, QuickReplugsAreHandledInOrderAndALateTabletComesAndGoes)
{
    fakeusb::addDevice(tablet("a", 0x0B40, 1));
    ASSERT_EQ(m_Window->Init(), 1);
    ASSERT_NE(CGlobalData::TabletArray[0], nullptr);
    seenStates.clear();
    const QtMessageHandler previous = qInstallMessageHandler(recordStates);
    for (int round = 0; round < 2; ++round) {
        fakeusb::unplug("a");
        fakeusb::plug(tablet("a", 0x0B40, 1));
    }
    const bool allTaken = waitFor([] { return seenStates.size() >= 4; });
    qInstallMessageHandler(previous);
    ASSERT_TRUE(allTaken);
    EXPECT_EQ(seenStates, (std::vector<short>{kLeft, kArrived, kLeft, kArrived}));
    expectSlots(names("a - - - -"));
    const size_t written = fakeusb::writesTo("a").size();
    CGlobalData::TabletArray[0]->SentCmd(kCmdReportMode, kReportModeSystem, 0);
    EXPECT_EQ(fakeusb::writesTo("a").size(), written + 1) << "the handle is the new attachment's";

    fakeusb::unplug("a");
    ASSERT_TRUE(waitFor([] { return CGlobalData::TabletArray[0] == nullptr; }));
    expectSlots(names("- - - - -"));
    fakeusb::plug(tablet("b", 0x0B40, 2));
    ASSERT_TRUE(waitFor([] { return CGlobalData::TabletArray[0] != nullptr; }));
    EXPECT_TRUE(CGlobalData::TabletArray[0]->m_Active);
    EXPECT_EQ(m_Window->currentTablet(), CGlobalData::TabletArray[0]);
    EXPECT_EQ(m_Strip->currentText(), "Scribora Sketch S");
    expectSlots(names("b - - - -"));
}

} // namespace
