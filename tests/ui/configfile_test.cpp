#include "devicefixture.h"
#include "mainwindow.h"

#include <QFile>

namespace
{

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A tablet on the installed profile file (version 3.4.9) and candidate files beside it.
class ConfigFile : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        fakeusb::addDevice(tablet("tab", 0x0B40, 1));
        ASSERT_TRUE(m_Window.EnumDeviceLinux(0));
    }
    QString candidate(const QByteArray &content)
    {
        const QString path = m_Folder.filePath("candidate.scfg");
        QFile file(path);
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        file.write(content);
        return path;
    }
    QString installed() const { return m_Folder.filePath("config.xml"); }

    MainWindow m_Window;
};

// Only the last part of a version may differ; each refusal has its code and leaves the
// installed file as it was.
TEST_F(ConfigFile, ImportRefusesOtherVersionsAndBrokenFilesWithTheirCodes)
{
    const QByteArray before = contents(installed());
    const struct {
        QByteArray content;
        int code;
    } refused[] = {
        {"<Config version=\"3.5.9\"/>", 104},
        {"<Config version=\"3\"/>", 104},
        {"<Config/>", 105},
        {"<Config version=\"3.4.9\">", 102},
        {"", 102},
    };
    for (const auto &file : refused) {
        EXPECT_EQ(m_Window.ImportConfigFrom(candidate(file.content)), file.code)
            << file.content.constData();
        EXPECT_EQ(contents(installed()), before);
    }
    EXPECT_EQ(m_Window.ImportConfigFrom(m_Folder.filePath("missing.scfg")), 101);
    int code = 0;
    EXPECT_EQ(MainWindow::GetXMLFileVersion(candidate("<C version=\"1.2.10\"/>"), code), "1.2");
    EXPECT_EQ(MainWindow::GetXMLFileVersion(candidate("<C version=\".5\"/>"), code), ".5");
}

// A file of the same version replaces the installed one byte for byte, and the tablet runs on
// what it says at once; the export gives those bytes back.
TEST_F(ConfigFile, ImportReplacesAndReloadsAndExportCopiesTheFile)
{
    QByteArray imported = contents(installed());
    imported.replace("<Config version=\"3.4.9\">", "<Config version=\"3.4.12\">");
    imported.replace("<K1 id=\"0\" Motid=\"1\" Actid=\"1\"",
                     "<K1 id=\"0\" Motid=\"1\" Actid=\"7\"");
    ASSERT_EQ(m_Window.ImportConfigFrom(candidate(imported)), 0);
    EXPECT_EQ(contents(installed()), imported);
    EXPECT_EQ(m_Window.currentTablet()->m_TabletXMLData->CommonAPP.Key[0].Actid, 7);
    EXPECT_EQ(m_Window.xmlVersion(), "3.4");

    const QString exported = m_Folder.filePath("out.scfg");
    candidate("old");
    ASSERT_TRUE(QFile::copy(m_Folder.filePath("candidate.scfg"), exported));
    ASSERT_TRUE(m_Window.ExportConfigTo(exported));
    EXPECT_EQ(contents(exported), imported);
}

} // namespace
