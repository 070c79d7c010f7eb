#include "devicefixture.h"
#include "mainwindow.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>

namespace
{

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

    std::unique_ptr<MainWindow> m_Window;
};

TEST_F(Enumeration, OpensACataloguedTabletWithItsModelSection)
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

    const _DEVICE_ATTRIBUTES &a = opened->m_DeviceAttributes;
    EXPECT_EQ(QStringList({a.DevicePath, a.ModelName, a.Manufacturer, a.ProductName, a.SerialNumber,
                           a.ICVersion, a.ICData}),
              QStringList({QString::fromStdString(fakeusb::hidPath("tab", 2)), "QTB0610", "Maker",
                           "Sketch Tablet", "SN001", "FW_1.0", "2024-05-06"}));
    EXPECT_EQ(a.DeviceType, 1);
    EXPECT_EQ(std::vector<int64_t>({a.MaxX, a.MaxY, a.MaxPressure, a.LPI, a.Width, a.Height}),
              std::vector<int64_t>({52324, 29600, 8191, 5080, 1030, 582}));

    const auto writes = fakeusb::writesTo("tab");
    ASSERT_FALSE(writes.empty());
    EXPECT_EQ(writes[0].path, fakeusb::hidPath("tab", 2));
    EXPECT_EQ(writes[0].data, frame(10, {0x02, 0xB0, uint8_t(row(0x0B40).reportMode)}));

    const stTablet_XMLData &data = *opened->m_TabletXMLData;
    EXPECT_STREQ(data.szPidName, "QTB0610");
    EXPECT_EQ(data.DeviceKeyNum, 4);
    EXPECT_EQ(QRect(0, 0, data.TW, data.TH), QRect(0, 0, 1030, 582)) << "empty: the whole tablet";
    EXPECT_EQ(QRect(0, 0, data.SW, data.SH), QRect(0, 0, 1920, 1080)) << "empty: the whole screen";
    EXPECT_FALSE(opened->m_DefaultMappingPending) << "the first page shown takes the default";
}

// Five slots and the sixth device left alone: the hot-plug tests.
TEST_F(Enumeration, KeepsOnlyCataloguedInterfacesAndLikeTabletsShareTheNameKey)
{
    fakeusb::addDevice(tablet("unknown", 0x0BFF, 10));
    fakeusb::Device wrongInterface = tablet("wrong", 0x0B40, 11);
    wrongInterface.interfaces = {0, 1};
    fakeusb::addDevice(wrongInterface);
    fakeusb::Device otherVendor = tablet("other", 0x0B40, 12);
    otherVendor.vid = 0x1234;
    fakeusb::addDevice(otherVendor);
    EXPECT_FALSE(scan());
    EXPECT_EQ(fakeusb::hidOpenCalls(), 0);

    fakeusb::addDevice(tablet("a", 0x0B40, 1));
    fakeusb::addDevice(tablet("b", 0x0B40, 2));
    ASSERT_TRUE(scan());
    EXPECT_EQ(slotPaths(), std::vector<std::string>(
                               {fakeusb::hidPath("a", 2), fakeusb::hidPath("b", 2), "", "", ""}));
    EXPECT_EQ(CGlobalData::TabletMap.size(), 1);
    EXPECT_EQ(CGlobalData::TabletMap.value("Scribora Sketch S"), CGlobalData::TabletArray[1]);
}

TEST_F(Enumeration, OnlyTheAskedProductIsScanned)
{
    fakeusb::addDevice(tablet("a", 0x0B40, 1));
    fakeusb::addDevice(tablet("b", 0xA20C, 2));
    ASSERT_TRUE(scan(0xA20C));
    EXPECT_EQ(slotPaths(), std::vector<std::string>({fakeusb::hidPath("b", 2), "", "", "", ""}));
    EXPECT_EQ(CGlobalData::TabletArray[0]->m_DeviceAttributes.DeviceType, 2);
}

TEST_F(Enumeration, AModelMissingFromTheFileGetsNoSlot)
{
    writeConfig(section("QPD1600"));
    fakeusb::addDevice(tablet("tab", 0x0B40, 1));
    EXPECT_FALSE(scan());
    EXPECT_EQ(slotPaths(), std::vector<std::string>(5));
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
    EXPECT_EQ(boxes, QStringList("warning|You need to use root permissions to run the driver."));
    EXPECT_EQ(slotPaths(), std::vector<std::string>({fakeusb::hidPath("open", 2), "", "", "", ""}));
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
    EXPECT_EQ(writes[0].data, frame(10, {0x03, 0x01, uint8_t(row(0x03E1).reportMode)}));
}

TEST_F(Enumeration, DeviceListIndexFromAWindowsStylePath)
{
    MainWindow window;
    const int index = int(&row(0x0B40) - zelkDevList);
    EXPECT_EQ(window.getDeviceListIndex("\\\\?\\hid#VID_5A3C&PID_0B40&MI_02#7&1"), index);
    EXPECT_EQ(window.getDeviceListIndex("vid_5a3c&pid_0b40&mi_00"), -1);
    EXPECT_EQ(window.getDeviceListIndex(""), -1);
}

} // namespace
