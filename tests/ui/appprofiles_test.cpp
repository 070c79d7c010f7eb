#include "devicefixture.h"
#include "mainwindow.h"

#include <QAbstractButton>
#include <QSlider>

namespace
{

// Each program on the strip has a record of its own, a copy of the common one when added; the
// pages edit the one selected, and the eighth program fills the strip.
class AppProfiles : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        fakeusb::addDevice(tablet("tab", 0x0B40, 1));
        ASSERT_TRUE(m_Window.EnumDeviceLinux(0));
    }
    stTablet_XMLData &data() { return *m_Window.currentTablet()->m_TabletXMLData; }
    template <typename T> T *child(const char *name) { return m_Window.findChild<T *>(name); }

    MainWindow m_Window;
};

TEST_F(AppProfiles, PagesEditTheSelectedProgramsOwnCopy)
{
    data().CommonAPP.Key[0].Actid = 9;
    ASSERT_TRUE(m_Window.AddApplication("/bin/sh"));
    EXPECT_FALSE(m_Window.AddApplication("/bin/sh"));
    _stAppConfigNode *app = m_Window.currentTablet()->m_AppConfigs.value("/bin/sh");
    ASSERT_NE(app, nullptr);
    EXPECT_STREQ(app->path, "/bin/sh");
    EXPECT_EQ(app->Key[0].Actid, 9);

    child<QAbstractButton>("toolButton_2")->click();
    EXPECT_EQ(m_Window.editedRecord(), app);
    EXPECT_TRUE(child<QAbstractButton>("pushButton_delete")->isEnabled());
    data().DeviceCurPenID = 0;
    child<QSlider>("horizontalSlider_pressLv")->setValue(3);
    EXPECT_FLOAT_EQ(app->Pen[0].P0, 0.14f);
    EXPECT_NE(data().CommonAPP.Pen[0].P0, 0.14f);

    child<QAbstractButton>("toolButton_1")->click();
    EXPECT_EQ(m_Window.editedRecord(), &data().CommonAPP);
    EXPECT_FALSE(child<QAbstractButton>("pushButton_delete")->isEnabled());
}

TEST_F(AppProfiles, TheEighthProgramDisablesAddAndDeletingEnablesIt)
{
    const char *paths[] = {"/bin/sh", "/bin/ls", "/bin/cat", "/bin/cp",
                           "/bin/mv", "/bin/rm", "/bin/ln",  "/bin/df"};
    for (const char *path : paths)
        m_Window.AddApplication(path);
    EXPECT_EQ(m_Window.currentTablet()->m_AppConfigs.size(), 7);
    EXPECT_FALSE(child<QAbstractButton>("pushButton_add")->isEnabled());
    child<QAbstractButton>("toolButton_3")->click();
    m_Window.OnDeleteApplication();
    EXPECT_FALSE(m_Window.currentTablet()->m_AppConfigs.contains("/bin/ls"));
    EXPECT_TRUE(child<QAbstractButton>("pushButton_add")->isEnabled());
}

} // namespace
