#include "actionmessages.h"
#include "cases.h"
#include "devicefixture.h"
#include "jsonserver.h"
#include "mainwindow.h"
#include "settingform.h"
#include "textfield.h"

#include <QAbstractButton>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>

namespace
{

// Keeps what the window hands over instead of dropping it.
struct RecordingJsonServer : JsonServer {
    void SendMessageToServer(QString message) override { m_Sent << message; }
    QStringList m_Sent;
};

class Usage : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        fakeusb::addDevice(tablet("tab", 0x0B40, 1));
        ASSERT_TRUE(m_Window.EnumDeviceLinux(0));
    }

    MainWindow m_Window;
    RecordingJsonServer m_Server;
};

// Dormant, nothing is composed; with a channel each shell action sends its event, and an
// installation without the option file neither marks the version nor counts time.
TEST_F(Usage, ShellEventsGoOutOnlyThroughAChannel)
{
    EXPECT_TRUE(m_Window.GetTabletXmlDataToJson(0).isEmpty());
    m_Window.setJsonServer(&m_Server);
    EXPECT_EQ(m_Window.findChild<QLabel *>("version")->text(), "Ver:3.4.9");
    m_Window.ShowSettingForm();
    for (const char *box : {"checkBox_pressure", "checkBox_tips", "checkBox_tips"})
        m_Window.settingForm()->findChild<QAbstractButton *>(box)->click();
    m_Window.on_pushButton_cancel_clicked();
    m_Window.on_closeBtn_clicked();
    m_Window.ReceivActionMsg(0, kMsgUsage, QString(R"("DoKeyAction":{"KeyID":"3"})"));
    m_Window.ReceivActionMsg(1, kMsgUsage, QString(R"("DoKeyAction":{"KeyID":"4"})"));
    m_Window.OnQuiqDriver();
    const QString tablet =
        ",\"tablet\":\"" + fieldText(m_Window.currentTablet()->m_DeviceAttributes.ShowName) + "\"";
    const QStringList expected{"\"CheckBoxDisablePress\":\"1\"" + tablet,
                               "\"CheckBoxDisableTipMsg\":\"1\"" + tablet,
                               "\"CheckBoxDisableTipMsg\":\"0\"" + tablet,
                               "\"CancelButtonClicked\":\"1\"" + tablet,
                               "\"CloseBtnClicked\":\"1\"",
                               "\"ConfirmButtonClicked\":\"1\"" + tablet + ",\"DeviceInfo\":{",
                               R"("tablet":"PID_0B40","DoKeyAction":{"KeyID":"3"})",
                               "\"ExitDriver\":\"1\"",
                               "\"ConfirmButtonClicked\":\"1\"" + tablet + ",\"DeviceInfo\":{"};
    ASSERT_EQ(m_Server.m_Sent.size(), expected.size()) << m_Server.m_Sent.join('\n').toStdString();
    for (int i = 0; i < expected.size(); ++i)
        EXPECT_TRUE(m_Server.m_Sent[i].startsWith(expected[i]))
            << m_Server.m_Sent[i].left(200).toStdString();
    // The saved profile goes along as one well-formed object.
    const QString confirm = m_Server.m_Sent[5];
    const QJsonObject profile = QJsonDocument::fromJson(("{" + confirm + "}").toUtf8()).object();
    EXPECT_EQ(profile["DeviceInfo"]["DeviceKeyNum"].toString(),
              QString::number(m_Window.currentTablet()->m_TabletXMLData->DeviceKeyNum));
    EXPECT_TRUE(profile["CommonAPP"]["Pen0"].isObject() && profile["Apps"].isObject());

    // The used time runs from the last tick to the last pen activity, if there was any.
    m_Server.m_Sent.clear();
    m_Window.time_handler();
    CGlobalData::LastTabletActionTime = QTime::currentTime().addSecs(-5);
    m_Window.time_handler();
    CGlobalData::LastTabletActionTime = QTime::currentTime().addSecs(5);
    m_Window.time_handler();
    ASSERT_EQ(m_Server.m_Sent.size(), 1);
    const int used = m_Server.m_Sent[0].section('"', 3, 3).toInt();
    EXPECT_TRUE(m_Server.m_Sent[0].startsWith("\"DriverUsedMsTime\":\""));
    EXPECT_TRUE(used > 4000 && used <= 5000) << used;
}

// Newer keeps the download address; with no update client there is never a red point.
TEST_F(Usage, VersionsCompareTheWayTheyAlwaysHave)
{
    auto version = [](const QString &field) { return field == "-" ? QString() : field; };
    for (const QStringList &c : caseRows("versions.txt"))
        EXPECT_EQ(MainWindow::compareVersion(version(c[0]), version(c[1])), c[2] == "newer")
            << c.join(' ').toStdString();
    m_Window.OnGetNewDriver(1, "3.4.10", "https://x.invalid/new", "");
    m_Window.OnGetNewDriver(1, "2.0", "https://x.invalid/old", "");
    EXPECT_EQ(m_Window.driverDownloadUrl(), "https://x.invalid/new");
    EXPECT_FALSE(m_Window.findChild<QWidget *>("settingBtn")->property("redPoint").toBool());
}

} // namespace
