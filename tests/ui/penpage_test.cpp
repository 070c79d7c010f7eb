#include "actionmessages.h"
#include "cpendrawwidget.h"
#include "devicefixture.h"
#include "drawlinetestdialog.h"
#include "mainwindow.h"
#include "mylrc.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QSlider>
#include <QTabWidget>

namespace
{

// A QTB0860 (one wheel) shown in the window, with the pen page open.
class PenAndWheelPages : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        writeConfig(section("QTB0860"));
        fakeusb::addDevice(tablet("tab", 0x0B44, 1));
        ASSERT_TRUE(m_Window.EnumDeviceLinux(0));
        data().DeviceRingNum = 1;
        m_Window.show();
        reshow();
        m_Window.findChild<QTabWidget *>("tabWidget")->setCurrentIndex(1);
    }
    void reshow()
    {
        m_Window.InitUI(QString::fromUtf8(m_Window.currentTablet()->m_DeviceAttributes.ShowName));
    }
    stTablet_XMLData &data() { return *m_Window.currentTablet()->m_TabletXMLData; }
    template <typename T> T *child(const char *name) { return m_Window.findChild<T *>(name); }
    static const QStringList &tipLines()
    {
        return static_cast<MyLrc *>(CGlobalData::Show_Info)->lines();
    }

    MainWindow m_Window;
};

// Each pen of an eight-pen device keeps its own settings; taking the edited pen off the list
// moves the page to the first pen left; with no pen chosen the page changes nothing.
TEST_F(PenAndWheelPages, EachOfEightPensKeepsItsOwnSettings)
{
    data().DevicePenNum = 8;
    data().PenMoveInTablet = 0x21;
    m_Window.onPenMenuSelectedAction(QString(), 5);
    EXPECT_EQ(data().DeviceCurPenID, 5);
    child<QSlider>("horizontalSlider_pressLv")->setValue(3);
    EXPECT_FLOAT_EQ(data().CommonAPP.Pen[5].P0, 0.14f);
    EXPECT_FLOAT_EQ(data().CommonAPP.Pen[5].P1X, 0.93f);
    child<QAbstractButton>("checkBox_mouseMode")->click();
    EXPECT_EQ(data().CommonAPP.Pen[5].bRelativeCoords, 1);
    EXPECT_EQ(data().CommonAPP.Pen[5].bTablePC, 0);
    EXPECT_EQ(data().CommonAPP.Pen[0].bRelativeCoords, 0);

    m_Window.onPenMenuDeletePenSelectedAction(QString(), 5);
    EXPECT_EQ(data().PenMoveInTablet, 0x01);
    EXPECT_EQ(data().DeviceCurPenID, 0);
    EXPECT_EQ(child<QSlider>("horizontalSlider_pressLv")->value(),
              MainWindow::DidPressurePointsConvertToIntValue(
                  {data().CommonAPP.Pen[0].P0, data().CommonAPP.Pen[0].P1X,
                   data().CommonAPP.Pen[0].P1Y, data().CommonAPP.Pen[0].P2}));
    EXPECT_FALSE(child<QSlider>("horizontalSlider_mspeed")->isEnabled());

    const stPenConfig before = data().CommonAPP.Pen[0];
    data().DeviceCurPenID = -1;
    child<QSlider>("horizontalSlider_pressLv")->setValue(-3);
    child<QAbstractButton>("checkBox_mouseMode")->click();
    EXPECT_EQ(memcmp(&before, &data().CommonAPP.Pen[0], sizeof before), 0);
}

// The bar shows the pen's pressure in the tablet's own range while the page can be seen.
TEST_F(PenAndWheelPages, PressureBarFollowsTheLivePenWhileSeen)
{
    auto *value = child<QLabel>("label_pressValue");
    const int track = child<QWidget>("widget_pressTrack")->width();
    m_Window.currentTablet()->m_DeviceAttributes.MaxPressure = 2047;
    MultiData pen{};
    pen.flags = 1;
    pen.pressure = 8191;
    m_Window.ReceivMultiData(m_Window.currentTablet(), pen);
    EXPECT_EQ(value->text(), "2047");
    EXPECT_EQ(child<QLabel>("label_pressBar")->width(), track);
    pen.pressure = 4096;
    m_Window.ReceivMultiData(m_Window.currentTablet(), pen);
    EXPECT_EQ(value->text(), "1023");
    EXPECT_EQ(child<QLabel>("label_pressBar")->width(), 1023 * track / 2047);

    m_Window.hide();
    EXPECT_FALSE(m_Window.currentTablet()->m_SendMultiData);
    pen.pressure = 100;
    m_Window.ReceivMultiData(m_Window.currentTablet(), pen);
    EXPECT_EQ(value->text(), "1023");
}

// The pressure test draws what the live pen does, and the tablet feeds it only while it is open,
// whatever page is behind it.
TEST_F(PenAndWheelPages, PressureTestDrawsTheLivePenWhileOpen)
{
    CTablet *tablet = m_Window.currentTablet();
    m_Window.findChild<QTabWidget *>("tabWidget")->setCurrentIndex(0);
    CGlobalData::ScreenArray[1] = CGlobalData::LogicScreenArray[1];
    m_Window.on_pushButton_TestPressure_clicked();
    DrawLineTestDialog *dialog = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets())
        dialog = dialog ? dialog : qobject_cast<DrawLineTestDialog *>(widget);
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(tablet->m_SendMultiData);
    auto *field = dialog->findChild<CPenDrawWidget *>();
    const QImage blank = field->pixmap().toImage();
    const QPoint centre = field->mapToGlobal(field->rect().center());
    MultiData pen{};
    pen.flags = 1;
    pen.pressure = 8191;
    for (int step = 0; step < 3; ++step) {
        pen.screenPosX = centre.x() + 20 * step;
        pen.screenPosY = centre.y();
        m_Window.ReceivMultiData(tablet, pen);
    }
    EXPECT_NE(field->pixmap().toImage(), blank);
    dialog->close();
    EXPECT_FALSE(tablet->m_SendMultiData);
}

// The device's switch key steps to the next usable function and names them all; with none
// usable it says so, and with tips off it stays quiet.
TEST_F(PenAndWheelPages, SwitchKeyStepsThroughTheUsableWheelFunctions)
{
    stRingConfig &ring = data().CommonAPP.Ring[0];
    ring.type = 0;
    ring.id = 0;
    for (int slot = 0; slot < kRingItemCount; ++slot)
        ring.Item[slot].id = slot == 0 || slot == 3 ? 0 : 1;
    reshow();
    const QString app = QString::fromUtf8(data().CommonAPP.path);
    m_Window.ReceivActionMsg(0, kMsgRingFunctions, app);
    EXPECT_EQ(ring.id, 3);
    EXPECT_EQ(tipLines(), QStringList({"TR.Item.1", "TR.Item.4"}));
    EXPECT_TRUE(child<QAbstractButton>("radioButton_ringItem4")->isChecked());
    m_Window.ReceivActionMsg(0, kMsgRingFunctions, app);
    EXPECT_EQ(ring.id, 0);

    for (stRingItem &item : ring.Item)
        item.id = 1;
    m_Window.ReceivActionMsg(0, kMsgRingFunctions, app);
    EXPECT_EQ(tipLines(), QStringList({"No Action"}));
    data().DisableInfo = 1;
    static_cast<MyLrc *>(CGlobalData::Show_Info)->CloseInfoText();
    ring.Item[1].id = 0;
    m_Window.ReceivActionMsg(0, kMsgRingFunctions, app);
    EXPECT_EQ(ring.id, 1);
    EXPECT_TRUE(tipLines().isEmpty());
}

// The page's radio buttons choose the wheel's function, and the reset buttons put the wheel
// and the pen back.
TEST_F(PenAndWheelPages, RadiosChooseAndResetButtonsRestore)
{
    stRingConfig &ring = data().CommonAPP.Ring[0];
    ring.id = 2;
    ring.Item[1].id = 1;
    data().DeviceCurPenID = 0;
    data().CommonAPP.Pen[0].Speed = 9;
    reshow();
    child<QAbstractButton>("radioButton_ringItem1")->click();
    EXPECT_EQ(ring.id, 0);
    ring.id = 3;
    child<QAbstractButton>("pushButton_ring")->click();
    EXPECT_EQ(ring.id, 0);
    EXPECT_EQ(ring.Item[1].id, 0);
    child<QAbstractButton>("pushButton_pen")->click();
    EXPECT_EQ(data().CommonAPP.Pen[0].Speed, 5);
    EXPECT_EQ(child<QSlider>("horizontalSlider_mspeed")->value(), 5);
}

// The mode key of a touch strip toggles it between wheel and touch, on the page, in the record
// and on the device.
TEST_F(PenAndWheelPages, ModeKeyTogglesTheTouchStrip)
{
    data().DeviceTrackPad = 1;
    data().CommonAPP.Ring[1].mode = 1;
    reshow();
    EXPECT_TRUE(child<QAbstractButton>("radioButton_m_touch")->isChecked());
    for (int mode : {0, 1, 0}) {
        m_Window.ReceivActionMsg(0, kMsgTrackPad, 0);
        EXPECT_EQ(data().CommonAPP.Ring[1].mode, mode);
        EXPECT_EQ(child<QAbstractButton>("radioButton_m_wheel")->isChecked(), mode == 0);
        const fakeusb::Bytes last = fakeusb::writesTo("tab").back().data;
        EXPECT_EQ(last.at(5), mode == 0 ? 3 : 1) << "the strip's mode on the device";
    }
}

} // namespace
