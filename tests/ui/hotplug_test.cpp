#include "devicecommands.h"
#include "devicefixture.h"
#include "fakeuinput.h"
#include "mainwindow.h"
#include "qdeviceitemwidget.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QMessageBox>
#include <QSet>
#include <QTabWidget>
#include <QTimer>

namespace
{

constexpr unsigned short kVendor = 0x5A3C;
constexpr short kArrived = 1;
constexpr short kLeft = 2;

// The state of each hot-plug message the window takes, in the order taken.
std::vector<short> seenStates;
void recordStates(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtInfoMsg && text.startsWith("ReceiveUsbMsg"))
        seenStates.push_back(static_cast<short>(text.section(' ', -1).toShort()));
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
    void present(const QString &text)
    {
        TearDown();
        SetUp();
        m_Known.clear();
        add(text);
        m_Window->EnumDeviceLinux(0);
    }
    // Device names by slot as "a b - - -": each named device holds its slot with the one
    // open handle of its catalogued interface, and the window shows what is open.
    void expectSlots(const QString &wanted)
    {
        std::vector<std::string> expected, paths;
        QSet<QString> shown;
        for (const QString &name : wanted.split(' '))
            expected.push_back(
                m_Known.count(name)
                    ? fakeusb::hidPath(name.toStdString(), row(m_Known[name].pid).interfaceNumber)
                    : "");
        for (const CTablet *tablet : CGlobalData::TabletArray) {
            paths.push_back(tablet ? tablet->m_DeviceAttributes.DevicePath : "");
            if (tablet)
                shown << tablet->m_DeviceAttributes.ShowName;
        }
        const int filled = int(expected.size() - std::count(expected.begin(), expected.end(), ""));
        EXPECT_EQ(paths, expected);
        EXPECT_EQ(fakeusb::openHidHandles(), filled);
        EXPECT_EQ(m_Window->GetTabletArraySize(), filled);
        EXPECT_EQ(m_Strip->count(), filled);
        EXPECT_EQ(m_Pages->isVisible(), filled > 0);
        EXPECT_EQ(m_Disconnected->isVisible(), filled == 0);
        const QStringList keys = CGlobalData::TabletMap.keys();
        EXPECT_EQ(QSet<QString>(keys.begin(), keys.end()), shown)
            << "one name key for like tablets";
    }

    // "a:0B40:1": a tablet of a product on a port; ":i01" with interfaces 0 and 1 only,
    // ":v1234" of another vendor, ":x" one that cannot be opened. Gives the last one's product.
    uint16_t add(const QString &text, void (*attach)(const fakeusb::Device &) = fakeusb::addDevice)
    {
        uint16_t pid = 0;
        for (const QString &item : text.split(' ', Qt::SkipEmptyParts)) {
            const QStringList f = item.split(':');
            fakeusb::Device device = tablet(f[0].toStdString(), uint16_t(f[1].toUInt(nullptr, 16)),
                                            uint8_t(f[2].toUInt()));
            const QString flag = f.value(3);
            if (flag == "i01")
                device.interfaces = {0, 1};
            if (flag.startsWith('v'))
                device.vid = uint16_t(flag.mid(1).toUInt(nullptr, 16));
            device.openable = flag != "x";
            attach(device);
            m_Known[f[0]] = device;
            pid = device.pid;
        }
        return pid;
    }
    QTemporaryDir m_Uinput;
    std::unique_ptr<MainWindow> m_Window;
    QDeviceItemWidget *m_Strip = nullptr;
    QTabWidget *m_Pages = nullptr;
    QLabel *m_Disconnected = nullptr;
    std::map<QString, fakeusb::Device> m_Known;
};

TEST_F(HotPlug, OpensACataloguedTabletWithItsModelSection)
{
    fakeusb::addDevice(tablet("tab", 0x0B40, 1));
    ASSERT_TRUE(m_Window->EnumDeviceLinux(0));
    CTablet *opened = CGlobalData::TabletArray[0];
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->m_Index, 0);
    EXPECT_TRUE(opened->m_Active);
    EXPECT_EQ(opened->m_ReportMode, row(0x0B40).reportMode);
    EXPECT_EQ(CGlobalData::TabletMap.value("Scribora Sketch S"), opened);
    EXPECT_EQ(m_Window->currentTablet(), opened);

    const _DEVICE_ATTRIBUTES &a = opened->m_DeviceAttributes;
    EXPECT_EQ(QStringList({a.DevicePath, a.ModelName, a.Manufacturer, a.ProductName, a.SerialNumber,
                           a.ICVersion, a.ICData}),
              QStringList({QString::fromStdString(fakeusb::hidPath("tab", 2)), "QTB0610", "Maker",
                           "Sketch Tablet", "SN001", "FW_1.0", "2024-05-06"}));
    EXPECT_EQ(a.DeviceType, 1);
    const auto writes = fakeusb::writesTo("tab");
    EXPECT_EQ(writes.at(0).path, fakeusb::hidPath("tab", 2));
    EXPECT_EQ(writes.at(0).data, frame(10, {0x02, 0xB0, uint8_t(row(0x0B40).reportMode)}));

    const stTablet_XMLData &data = *opened->m_TabletXMLData;
    EXPECT_STREQ(data.szPidName, "QTB0610");
    EXPECT_EQ(data.DeviceKeyNum, 4);
    EXPECT_EQ(QRect(0, 0, data.TW, data.TH), QRect(0, 0, 1030, 582)) << "empty: the whole tablet";
    EXPECT_EQ(QRect(0, 0, data.SW, data.SH), QRect(0, 0, 1920, 1080)) << "empty: the whole screen";
    EXPECT_FALSE(opened->m_DefaultMappingPending) << "the first page shown takes the default";
    EXPECT_EQ(m_Window->getDeviceListIndex("\\\\?\\hid#VID_5A3C&PID_0B40&MI_02#7&1"),
              int(&row(0x0B40) - zelkDevList));
    EXPECT_EQ(m_Window->getDeviceListIndex("vid_5a3c&pid_0b40&mi_00"), -1);
}

// Devices present (and scanned), then a change: "+d e" plugs d and e and tells of e's
// product arriving, "-a:0B40" unplugs a and tells that 0B40 left. Tablets of other
// products keep their objects, those of a product that left end their session; each
// device that cannot be opened warns once.
TEST_F(HotPlug, ArrivalsAndRemovalsFillTheSlots)
{
    const char *cases[][3] = {
        {"", "+a:0B40:1", "a - - - -"},
        {"a:0B40:1", "+b:0B40:2", "a b - - -"},
        {"", "+odd:0BFF:2", "- - - - -"},
        {"", "+wrong:0B40:1:i01 other:0B40:2:v1234", "- - - - -"},
        {"", "+a:0B40:1 b:A20C:2", "b - - - -"},
        {"", "+missing:0A5B:1", "- - - - -"},
        {"", "+remote:03E1:1:i01", "remote - - - -"},
        {"", "+locked:0B40:1:x open:0B40:2", "open - - - -"},
        {"a:0B40:1 b:0B40:2 c:0B41:3 d:0B41:4 e:A20C:5", "+f:0B40:6", "a b c d e"},
        {"a:0B40:1", "-a:0B40", "- - - - -"},
        {"a:0B40:1 b:0B40:2", "-a:0B40", "b - - - -"},
        {"a:0B40:1 c:A20C:2", "-c:A20C", "a - - - -"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c[1]);
        present(c[0]);
        const std::vector<CTablet *> earlier(std::begin(CGlobalData::TabletArray),
                                             std::end(CGlobalData::TabletArray));
        const QString change = QString(c[1]).mid(1);
        QStringList boxes;
        QTimer closer;
        QObject::connect(&closer, &QTimer::timeout, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                boxes << box->windowTitle() + "|" + box->text();
                box->accept();
            }
        });
        closer.start(10);
        uint16_t left = 0;
        if (c[1][0] == '+') {
            const uint16_t pid = add(change, fakeusb::plug);
            QElapsedTimer timer;
            timer.start();
            m_Window->ReceiveUsbMsg(kVendor, pid, kArrived);
            EXPECT_GE(timer.elapsed(), 600);
        } else {
            left = uint16_t(change.section(':', 1).toUInt(nullptr, 16));
            fakeusb::unplug(change.section(':', 0, 0).toStdString());
            m_Window->ReceiveUsbMsg(kVendor, left, kLeft);
        }
        closer.stop();
        expectSlots(c[2]);
        const QString warning = "warning|You need to use root permissions to run the driver.";
        EXPECT_EQ(boxes.join(','), change.contains(":x") ? warning : QString());
        for (size_t slot = 0; slot < earlier.size(); ++slot) {
            const bool gone = earlier[slot] && earlier[slot]->m_ProductId == left;
            EXPECT_TRUE(!earlier[slot] || gone || CGlobalData::TabletArray[slot] == earlier[slot]);
            EXPECT_TRUE(!gone || (!earlier[slot]->m_Active &&
                                  !std::count(std::begin(CGlobalData::TabletArray),
                                              std::end(CGlobalData::TabletArray), earlier[slot])));
        }
        EXPECT_TRUE(!left || m_Window->currentTablet() == CGlobalData::TabletArray[0]);
    }
}

// The strip keeps the user's choice when another device's entry goes.
TEST_F(HotPlug, RemovingAnotherDeviceKeepsTheSelection)
{
    writeNames("[Common]\nPID_0B40=Alpha\nPID_0B41=Beta\nPID_A20C=Gamma\n");
    add("a:0B40:1 b:0B41:2 c:A20C:3");
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
    add("a:0B40:1");
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
    expectSlots("a - - - -");
    const size_t written = fakeusb::writesTo("a").size();
    CGlobalData::TabletArray[0]->SentCmd(kCmdReportMode, kReportModeSystem, 0);
    EXPECT_EQ(fakeusb::writesTo("a").size(), written + 1) << "the handle is the new attachment's";

    fakeusb::unplug("a");
    ASSERT_TRUE(waitFor([] { return CGlobalData::TabletArray[0] == nullptr; }));
    expectSlots("- - - - -");
    add("b:0B40:2", fakeusb::plug);
    ASSERT_TRUE(waitFor([] { return CGlobalData::TabletArray[0] != nullptr; }));
    EXPECT_TRUE(CGlobalData::TabletArray[0]->m_Active);
    EXPECT_EQ(m_Window->currentTablet(), CGlobalData::TabletArray[0]);
    EXPECT_EQ(m_Strip->currentText(), "Scribora Sketch S");
    expectSlots("b - - - -");
}

} // namespace
