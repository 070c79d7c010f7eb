#include "devicefixture.h"
#include "xmlhelp.h"

#include <QFile>

namespace
{

class SaveXml : public DeviceFixture
{
protected:
    QByteArray config() const
    {
        QFile file(m_Folder.filePath("config.xml"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static void map(CTablet &tablet)
    {
        stTablet_XMLData &data = *tablet.m_TabletXMLData;
        data.ScreenId = 1;
        data.SX = 1920;
        data.SY = 0;
        data.SW = 1280;
        data.SH = 1024;
    }
};

TEST_F(SaveXml, StoresTheSettingsAndRefreshesTheCachedMapping)
{
    CTablet tablet;
    ASSERT_EQ(tablet.LoadXML("QTB0610"), 1);
    map(tablet);
    tablet.SaveXML();
    EXPECT_EQ(tablet.m_MappedScreenId, 1);
    EXPECT_EQ(tablet.m_MappedScreenRect, QRect(1920, 0, 1280, 1024));

    CTablet reloaded;
    ASSERT_EQ(reloaded.LoadXML("QTB0610"), 1);
    EXPECT_EQ(reloaded.m_MappedScreenId, 1);
    EXPECT_EQ(reloaded.m_MappedScreenRect, QRect(1920, 0, 1280, 1024));
}

TEST_F(SaveXml, WithoutAHelperNothingHappens)
{
    CTablet tablet;
    ASSERT_EQ(tablet.LoadXML("QTB0610"), 1);
    const QByteArray before = config();
    const QRect cached = tablet.m_MappedScreenRect;
    delete tablet.m_XMLHelp;
    tablet.m_XMLHelp = nullptr;
    map(tablet);
    tablet.SaveXML();
    EXPECT_EQ(config(), before);
    EXPECT_EQ(tablet.m_MappedScreenRect, cached);
}

} // namespace
