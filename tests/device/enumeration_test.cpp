#include "cusbtablet.h"
#include "devicefixture.h"
#include "mainwindow.h"
#include "qdeviceitemwidget.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QResource>
#include <QTabWidget>
#include <QTimer>

namespace
{

using fakeusb::Bytes;

// Scans with a real main window over the scripted bus.
class Enumeration : public DeviceFixture
{
protected:
    void TearDown() override
    {
        m_Window.reset();
        DeviceFixture::TearDown();
    }

    bool scan(int pid = 0)
    {
        if (!m_Window) {
            m_Window = std::make_unique<MainWindow>();
            // The window reads the (offscreen) desktop; the profile expects 1080p.
            CGlobalData::ScreenArray[0] = QRect(0, 0, 1920, 1080);
        }
        return m_Window->EnumDeviceLinux(pid);
    }

    static int filledSlots()
    {
        int count = 0;
        for (CTablet *tablet : CGlobalData::TabletArray)
            count += tablet != nullptr;
        return count;
    }

    std::unique_ptr<MainWindow> m_Window;
};

Bytes startPacket(uint8_t first, uint8_t second, uint8_t mode)
{
    Bytes packet(10, 0);
    packet[0] = first;
    packet[1] = second;
    packet[2] = mode;
    return packet;
}

TEST_F(Enumeration, OpensACataloguedTablet)
{
    fakeusb::addDevice(tablet("tab", 0x0B40, 1));
    ASSERT_TRUE(scan());

    CTablet *opened = CGlobalData::TabletArray[0];
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->m_Index, 0);
    EXPECT_TRUE(opened->m_Active);
    EXPECT_EQ(opened->m_ReportMode, row(0x0B40).reportMode);
    EXPECT_EQ(CGlobalData::TabletMap.value("Scribora Sketch S"), opened);
    EXPECT_EQ(m_Window->currentTablet(), opened);

    const _DEVICE_ATTRIBUTES &attributes = opened->m_DeviceAttributes;
    EXPECT_STREQ(attributes.DevicePath, fakeusb::hidPath("tab", 2).c_str());
    EXPECT_STREQ(attributes.PidString, "PID_0B40");
    EXPECT_STREQ(attributes.ModelName, "QTB0610");
    EXPECT_STREQ(attributes.Manufacturer, "Maker");
    EXPECT_STREQ(attributes.ProductName, "Sketch Tablet");
    EXPECT_STREQ(attributes.SerialNumber, "SN001");
    EXPECT_STREQ(attributes.ICVersion, "FW_1.0");
    EXPECT_STREQ(attributes.ICData, "2024-05-06");
    EXPECT_EQ(attributes.DeviceType, 1);
    EXPECT_EQ(attributes.MaxX, 52324);
    EXPECT_EQ(attributes.MaxY, 29600);
    EXPECT_EQ(attributes.MaxPressure, 8191);
    EXPECT_EQ(attributes.LPI, 5080);
    EXPECT_EQ(attributes.Width, 1030) << "52324 * 100 / 5080";
    EXPECT_EQ(attributes.Height, 582) << "29600 * 100 / 5080";

    const auto writes = fakeusb::writesTo("tab");
    ASSERT_FALSE(writes.empty());
    EXPECT_EQ(writes[0].path, fakeusb::hidPath("tab", 2));
    EXPECT_EQ(writes[0].data, startPacket(0x02, 0xB0, row(0x0B40).reportMode));

    bool askedForDescriptor100 = false;
    for (const fakeusb::ControlTransfer &transfer : fakeusb::controlTransfers())
        askedForDescriptor100 |= transfer.requestType == 0x80 && transfer.request == 6 &&
                                 transfer.value == 0x0364 && transfer.index == 0x0409;
    EXPECT_TRUE(askedForDescriptor100);
}

TEST_F(Enumeration, TheWindowShowsTheOpenedDevice)
{
    QResource::registerResource(RESOURCE_FILE);
    MainWindow window;
    window.show();
    auto *strip = window.findChild<QDeviceItemWidget *>("widget_device");
    auto *pages = window.findChild<QTabWidget *>("tabWidget");
    auto *disconnected = window.findChild<QLabel *>("DisconnectTipsLabel");
    ASSERT_TRUE(strip && pages && disconnected);
    EXPECT_FALSE(pages->isVisible());
    EXPECT_TRUE(disconnected->isVisible());

    fakeusb::addDevice(tablet("tab", 0x0B40, 1));
    ASSERT_TRUE(window.EnumDeviceLinux(0));
    EXPECT_EQ(strip->count(), 1);
    EXPECT_EQ(strip->currentText(), "Scribora Sketch S");
    EXPECT_TRUE(pages->isVisible());
    EXPECT_FALSE(disconnected->isVisible());
    QCoreApplication::processEvents();
    EXPECT_TRUE(strip->findChild<QWidget *>("DeviceNameGroup")->isVisible());

    QFile style(":/qss/qss/stylesheet.qss");
    if (style.open(QIODevice::ReadOnly))
        window.setStyleSheet(QString::fromLatin1(style.readAll()));
    QDir().mkpath(SCREENSHOT_DIR);
    window.grab().save(SCREENSHOT_DIR "/window-one-device.png");
}

TEST_F(Enumeration, LoadsTheModelSectionWithDefaults)
{
    fakeusb::addDevice(tablet("tab", 0x0B40, 1));
    ASSERT_TRUE(scan());
    const stTablet_XMLData &data = *CGlobalData::TabletArray[0]->m_TabletXMLData;
    EXPECT_STREQ(data.szPidName, "QTB0610");
    EXPECT_EQ(data.DeviceKeyNum, 4);
    EXPECT_EQ(data.TW, 1030) << "an empty tablet area is the whole tablet";
    EXPECT_EQ(data.TH, 582);
    EXPECT_EQ(data.SW, 1920) << "an empty mapping is the whole screen";
    EXPECT_EQ(data.SH, 1080);
    EXPECT_FALSE(CGlobalData::TabletArray[0]->m_DefaultMappingPending)
        << "the first page shown takes the default mapping";
}

TEST_F(Enumeration, IgnoresWhatTheCatalogueDoesNotName)
{
    uint16_t unknown = 0x0B00;
    while (std::any_of(std::begin(zelkDevList), std::end(zelkDevList),
                       [&](const ZelkDevice &r) { return r.pid == unknown; }))
        ++unknown;
    fakeusb::addDevice(tablet("unknown", unknown, 1));
    fakeusb::Device wrongInterface = tablet("wrong", 0x0B40, 2);
    wrongInterface.interfaces = {0, 1};
    fakeusb::addDevice(wrongInterface);
    fakeusb::Device otherVendor = tablet("other", 0x0B40, 3);
    otherVendor.vid = 0x1234;
    fakeusb::addDevice(otherVendor);

    EXPECT_FALSE(scan());
    EXPECT_EQ(filledSlots(), 0);
    EXPECT_EQ(fakeusb::hidOpenCalls(), 0);
    EXPECT_TRUE(fakeusb::writes().empty());
}

TEST_F(Enumeration, FiveSlotsAndTheSixthIsLeftAlone)
{
    for (uint8_t port = 1; port <= 6; ++port)
        fakeusb::addDevice(tablet("tab" + std::to_string(port), 0x0B40, port));
    ASSERT_TRUE(scan());
    EXPECT_EQ(filledSlots(), 5);
    EXPECT_EQ(fakeusb::hidOpenCalls(), 5);
    for (int slot = 0; slot < 5; ++slot) {
        EXPECT_STREQ(CGlobalData::TabletArray[slot]->m_DeviceAttributes.DevicePath,
                     fakeusb::hidPath("tab" + std::to_string(slot + 1), 2).c_str());
    }
    EXPECT_TRUE(fakeusb::writesTo("tab6").empty());
}

TEST_F(Enumeration, TwoOfOneProductShareTheNameKey)
{
    fakeusb::addDevice(tablet("first", 0x0B40, 1));
    fakeusb::addDevice(tablet("second", 0x0B40, 2));
    ASSERT_TRUE(scan());
    ASSERT_EQ(filledSlots(), 2);
    EXPECT_EQ(CGlobalData::TabletMap.size(), 1);
    EXPECT_EQ(CGlobalData::TabletMap.value("Scribora Sketch S"), CGlobalData::TabletArray[1]);
}

TEST_F(Enumeration, OnlyTheAskedProductIsScanned)
{
    fakeusb::addDevice(tablet("a", 0x0B40, 1));
    fakeusb::addDevice(tablet("b", 0xA20C, 2));
    ASSERT_TRUE(scan(0xA20C));
    ASSERT_EQ(filledSlots(), 1);
    EXPECT_STREQ(CGlobalData::TabletArray[0]->m_DeviceAttributes.ModelName, "QPD1600");
    EXPECT_EQ(CGlobalData::TabletArray[0]->m_DeviceAttributes.DeviceType, 2);
}

TEST_F(Enumeration, AModelMissingFromTheFileGetsNoSlot)
{
    writeConfig(section("QPD1600"));
    fakeusb::addDevice(tablet("tab", 0x0B40, 1));
    EXPECT_FALSE(scan());
    EXPECT_EQ(filledSlots(), 0);
    EXPECT_EQ(fakeusb::openHidHandles(), 0) << "the failed session's device is closed again";
    EXPECT_TRUE(fakeusb::writesTo("tab").empty()) << "no start packet without settings";
}

TEST_F(Enumeration, ADeviceThatCannotBeOpenedWarnsAndTheScanGoesOn)
{
    fakeusb::Device locked = tablet("locked", 0x0B40, 1);
    locked.openable = false;
    fakeusb::addDevice(locked);
    fakeusb::addDevice(tablet("open", 0xA20C, 2));

    QStringList boxes;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            boxes << box->windowTitle() + "|" + box->text();
            box->accept();
        }
    });
    closer.start(10);
    EXPECT_TRUE(scan());
    closer.stop();

    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes[0], "warning|You need to use root permissions to run the driver.");
    EXPECT_EQ(filledSlots(), 1);
    EXPECT_STREQ(CGlobalData::TabletArray[0]->m_DeviceAttributes.ModelName, "QPD1600");
}

TEST_F(Enumeration, KeyboardStyleRemoteGetsItsOwnStartPacket)
{
    writeConfig(section(QString::fromLatin1(row(0x03E1).name)));
    fakeusb::Device remote = tablet("remote", 0x03E1, 1);
    remote.interfaces = {0, 1};
    fakeusb::addDevice(remote);
    ASSERT_TRUE(scan());
    const auto writes = fakeusb::writesTo("remote");
    ASSERT_FALSE(writes.empty());
    EXPECT_EQ(writes[0].path, fakeusb::hidPath("remote", 1));
    EXPECT_EQ(writes[0].data, startPacket(0x03, 0x01, row(0x03E1).reportMode));
}

TEST_F(Enumeration, DeviceListIndexFromAWindowsStylePath)
{
    MainWindow window;
    const ZelkDevice &wanted = row(0x0B40);
    const int index = int(&wanted - zelkDevList);
    EXPECT_EQ(window.getDeviceListIndex("\\\\?\\hid#VID_5A3C&PID_0B40&MI_02#7&1"), index);
    EXPECT_EQ(window.getDeviceListIndex("vid_5a3c&pid_0b40&mi_00"), -1);
    EXPECT_EQ(window.getDeviceListIndex(""), -1);
}

} // namespace
