#include "actionmessages.h"
#include "devicefixture.h"
#include "mainwindow.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QSpinBox>

namespace
{

TEST(MappingPage, ProportionalAreaKeepsTheScreensShapeCentred)
{
    EXPECT_EQ(MainWindow::ProportionalArea({1000, 500}, {1920, 1080}), QRect(56, 0, 888, 500));
    EXPECT_EQ(MainWindow::ProportionalArea({500, 1000}, {1920, 1080}), QRect(0, 359, 500, 281));
    EXPECT_EQ(MainWindow::ProportionalArea({1600, 900}, {1920, 1080}), QRect(0, 0, 1600, 900));
}

// A 1000 by 500 tablet beside two screens, the second the primary.
class Mapping : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        fakeusb::addDevice(tablet("tab", 0x0B40, 1));
        ASSERT_TRUE(m_Window.EnumDeviceLinux(0));
        setScreens({QRect(0, 0, 3200, 1080), QRect(0, 0, 1280, 1024), QRect(1280, 0, 1920, 1080)});
        CGlobalData::PrimaryID = 2;
        m_Window.currentTablet()->m_DeviceAttributes.Width = 1000;
        m_Window.currentTablet()->m_DeviceAttributes.Height = 500;
        m_Window.InitUI(QString::fromUtf8(m_Window.currentTablet()->m_DeviceAttributes.ShowName));
    }
    void setScreens(const QList<QRect> &screens)
    {
        for (int i = 0; i < kScreenSlots; ++i)
            CGlobalData::ScreenArray[i] = screens.value(i);
        CGlobalData::ScreenNum = screens.size() - 1;
        m_Window.fillScreenList();
    }
    template <typename T> T *child(const char *name) { return m_Window.findChild<T *>(name); }
    stTablet_XMLData &data() { return *m_Window.currentTablet()->m_TabletXMLData; }
    QRect workArea() { return QRect(data().TX, data().TY, data().TW, data().TH); }
    QRect screenArea() { return QRect(data().SX, data().SY, data().SW, data().SH); }

    MainWindow m_Window;
};

// The work area keeps the chosen screen's shape; the left edge shrinks the width to at least
// 1 and stops there; a wider area moves the left edge back; a rotation resets the area.
TEST_F(Mapping, WorkAreaFollowsItsRulesAndRotationResetsIt)
{
    child<QComboBox>("comboBox_screen")->setCurrentIndex(2);
    child<QAbstractButton>("pushButton_screenscal")->click();
    EXPECT_EQ(workArea(), QRect(56, 0, 888, 500));
    child<QSpinBox>("spinBox_tx")->setValue(1000);
    EXPECT_EQ(workArea(), QRect(1000, 0, 1, 500));
    child<QSpinBox>("spinBox_tx")->setValue(200);
    child<QSpinBox>("spinBox_tw")->setValue(900);
    EXPECT_EQ(workArea(), QRect(100, 0, 900, 500));
    child<QAbstractButton>("radioButton_r90")->click();
    EXPECT_EQ(workArea(), QRect(0, 0, 500, 1000));
    EXPECT_EQ(data().Orientation, 1);
    EXPECT_EQ(child<QSpinBox>("spinBox_tw")->maximum(), 500);
    child<QAbstractButton>("pushButton_fullworkarea")->click();
    EXPECT_EQ(workArea(), QRect(0, 0, 500, 1000));
}

// A screen area beside its screen narrows, and a screen that has gone gives the primary.
TEST_F(Mapping, ScreenAreaStaysOnItsScreenAndFallsBackToThePrimary)
{
    child<QComboBox>("comboBox_screen")->setCurrentIndex(2);
    EXPECT_EQ(screenArea(), QRect(1280, 0, 1920, 1080));
    child<QSpinBox>("spinBox_sx")->setValue(2000);
    EXPECT_EQ(screenArea(), QRect(2000, 0, 1200, 1080));
    child<QSpinBox>("spinBox_sw")->setValue(1800);
    child<QSpinBox>("spinBox_sy")->setValue(100);
    EXPECT_EQ(screenArea(), QRect(1400, 100, 1800, 980));

    setScreens({QRect(0, 0, 2304, 1080), QRect(0, 0, 1280, 1024), QRect(1280, 0, 1024, 768)});
    m_Window.UpdateMapping(&data());
    EXPECT_EQ(data().ScreenId, 2);
    EXPECT_EQ(screenArea(), QRect(1280, 0, 1024, 768));
    EXPECT_EQ(child<QComboBox>("comboBox_screen")->currentIndex(), 2);

    // Cancel brings the stored mapping back, into the profile and the page: the whole
    // desktop, since the stored area is empty.
    m_Window.on_pushButton_cancel_clicked();
    EXPECT_EQ(data().ScreenId, 0);
    EXPECT_EQ(screenArea(), QRect(0, 0, 2304, 1080));
    EXPECT_EQ(child<QSpinBox>("spinBox_sw")->value(), 2304);
}

// Message 2 maps the tablet to the next screen, whole, and round to the desktop, with one,
// two and three screens.
TEST_F(Mapping, ScreenSwitchGoesRoundTheScreens)
{
    const QList<QRect> screens{QRect(0, 0, 1280, 1024), QRect(1280, 0, 1920, 1080),
                               QRect(3200, 0, 800, 600)};
    for (int count = 1; count <= 3; ++count) {
        setScreens(QList<QRect>{QRect(0, 0, 1280 + (count > 1) * 1920 + (count > 2) * 800, 1080)} +
                   screens.mid(0, count));
        child<QAbstractButton>("pushButton_fullscreen")->click();
        for (int press = 1; press <= count + 2; ++press) {
            const int expected = press % (count + 1);
            m_Window.ReceivActionMsg(0, kMsgScreenMapping, 0);
            EXPECT_EQ(data().ScreenId, expected) << count << " screens";
            EXPECT_EQ(screenArea(), CGlobalData::ScreenArray[expected]);
            EXPECT_EQ(child<QComboBox>("comboBox_screen")->currentIndex(), expected);
        }
    }
}

} // namespace
