#include "actionmessages.h"
#include "devicefixture.h"
#include "keypreviewwindow.h"
#include "mainwindow.h"

#include <QApplication>

namespace
{

// The remote's preview key: each message 11 shows the keypad preview or takes it away, and
// the preview goes with its device.
class KeyPage : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        writeConfig(section("QRM07"));
        fakeusb::addDevice(tablet("remote", 0x03E2, 1));
        ASSERT_TRUE(m_Window.EnumDeviceLinux(0));
    }
    static int previews()
    {
        int shown = 0;
        for (QWidget *widget : QApplication::topLevelWidgets())
            shown += qobject_cast<KeyPreviewWindow *>(widget) && widget->isVisible();
        return shown;
    }

    MainWindow m_Window;
};

TEST_F(KeyPage, PreviewKeyTogglesTheKeypadPreviewAndItGoesWithItsDevice)
{
    ASSERT_NE(CGlobalData::TabletArray[0], nullptr);
    for (int shown : {1, 0, 1}) {
        m_Window.ReceivActionMsg(0, kMsgKeyPreview, QString());
        QApplication::processEvents();
        EXPECT_EQ(previews(), shown);
    }
    fakeusb::unplug("remote");
    m_Window.ReceiveUsbMsg(0x5A3C, 0x03E2, 2);
    EXPECT_EQ(CGlobalData::TabletArray[0], nullptr);
    EXPECT_EQ(previews(), 0);
}

} // namespace
