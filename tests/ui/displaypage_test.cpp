#include "devicefixture.h"
#include "diagnosisfunction.h"
#include "mainwindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QSlider>

namespace
{

// The window over one scripted device, and what it last wrote to it.
class DisplayAndLights : public DeviceFixture
{
protected:
    void open(uint16_t pid)
    {
        fakeusb::addDevice(tablet("tab", pid, 1));
        ASSERT_TRUE(m_Window.EnumDeviceLinux(0));
    }
    CTablet &device() { return *m_Window.currentTablet(); }
    stTablet_XMLData &data() { return *device().m_TabletXMLData; }
    void reshow() { m_Window.InitUI(QString::fromUtf8(device().m_DeviceAttributes.ShowName)); }
    static Bytes lastWrite(size_t length)
    {
        const Bytes last = fakeusb::writesTo("tab").back().data;
        return Bytes(last.begin(), last.begin() + std::min(length, last.size()));
    }
    template <typename T> T *child(const char *name) { return m_Window.findChild<T *>(name); }
    bool shown(const char *name) { return !child<QWidget>(name)->isHidden(); }

    MainWindow m_Window;
};

// The strip light of a model with levels shows the level the device holds; each control sends
// its level, and the device's answers are not sent back.
TEST_F(DisplayAndLights, LightControlsFollowTheModelAndSendTheirLevels)
{
    writeConfig(section("TQR4470C-C"));
    open(0xA105);
    data().DeviceTrackPad = 1;
    data().DeviceControl = 1;
    device().m_DeviceAttributes.WheelLight = 150;
    reshow();
    EXPECT_TRUE(shown("groupBox_brightness") && shown("widget_tablet_light"));
    EXPECT_FALSE(shown("BrightnessCheckBox"));
    EXPECT_TRUE(child<QAbstractButton>("bright100")->isChecked());
    child<QAbstractButton>("bright50")->click();
    EXPECT_EQ(lastWrite(6), Bytes({0x02, 0xb4, 0x01, 0x01, 0x01, 50}));
    child<QAbstractButton>("LightCheckBox")->click();
    EXPECT_EQ(lastWrite(6), Bytes({0x02, 0xb4, 0x01, 0x01, 0x02, 50}));
    child<QSlider>("horizontalSlider_tablet_light")->setValue(2);
    EXPECT_EQ(lastWrite(6), Bytes({0x02, 0xb4, 0x01, 0x01, 0x02, 100}));
    const size_t writes = fakeusb::writesTo("tab").size();
    feed(device(), frame(64, {0x02, 0xb4, 0x01, 0x00, 0x01, 0x00}));
    feed(device(), frame(64, {0x02, 0xb4, 0x01, 0x00, 0x02, 0x00}));
    EXPECT_TRUE(child<QAbstractButton>("bright0")->isChecked());
    EXPECT_FALSE(child<QAbstractButton>("LightCheckBox")->isChecked());
    EXPECT_EQ(fakeusb::writesTo("tab").size(), writes);
}

// The diagnosis shows the device and follows its pen while open, whatever the page; it closes
// when the last device goes.
TEST_F(DisplayAndLights, DiagnosisFollowsThePenAndTheDevice)
{
    open(0x0B40);
    m_Window.show();
    m_Window.onDiagnosisFun();
    DiagnosisFunction *dialog = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets())
        dialog = dialog ? dialog : qobject_cast<DiagnosisFunction *>(widget);
    ASSERT_NE(dialog, nullptr);
    const auto text = [&](const char *name) { return dialog->findChild<QLabel *>(name)->text(); };
    EXPECT_EQ(text("diagnosis_DeviceName"),
              QString::fromUtf8(device().m_DeviceAttributes.ShowName));
    EXPECT_EQ(text("diagnosis_Pid"), "PID_0B40");
    EXPECT_EQ(text("diagnosis_XmlVerion"), "3.4");
    EXPECT_TRUE(device().m_SendMultiData);
    MultiData pen{};
    pen.flags = 1;
    pen.pressure = 4096;
    pen.screenPosX = 12.5;
    pen.screenPosY = 7.25;
    m_Window.ReceivMultiData(&device(), pen);
    pen.flags = 0;
    pen.screenPosX = 99;
    m_Window.ReceivMultiData(&device(), pen);
    EXPECT_EQ(text("diagnosis_currentX") + " " + text("diagnosis_currentY") + " " +
                  text("diagnosis_currentZ"),
              "12.50 7.25 4096");

    QPointer<DiagnosisFunction> open = dialog;
    fakeusb::unplug("tab");
    m_Window.ReceiveUsbMsg(0x5A3C, 0x0B40, 2);
    EXPECT_TRUE(open.isNull());
}

} // namespace
