#include "jsonserver.h"
#include "jsonserveraction.h"
#include "localhttpserver.h"
#include "updateserver.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

namespace
{

QByteArray backlog()
{
    QFile file(JsonServerAction::dataFolder() + "TabletData.txt");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
}

// The option file beside the test program sends the worker to the test's own server.
class Telemetry : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QDir(JsonServerAction::dataFolder()).removeRecursively();
        QSettings options(JsonServerAction::optionFile(), QSettings::IniFormat);
        options.setValue("config/URL", m_Server.url("/receive/data").toString());
        options.setValue("config/Data", true);
        options.sync();
        m_Action = std::make_unique<JsonServerAction>(false);
    }
    void TearDown() override { QFile::remove(JsonServerAction::optionFile()); }
    // Posts one event and gives the body the server saw.
    QByteArray post(int status, const QByteArray &answer, const QString &event)
    {
        m_Server.answer(status, answer);
        QEventLoop loop;
        m_Action->SendMessageToServerAction(event, loop);
        return m_Server.requests().last().body;
    }

    LocalHttpServer m_Server;
    std::unique_ptr<JsonServerAction> m_Action;
};

// The backlog rides on a post after a success and goes with it; a failed post keeps its
// message unless the server names a JSONArray right after its first character.
TEST_F(Telemetry, BacklogRidesOnASuccessAndKeepsWhatFailed)
{
    ASSERT_EQ(m_Action->WriteDataToLocalFile(R"({"kept":"中文"})"), 1);
    const QByteArray body = post(200, "ok", R"("CloseBtnClicked":"1","path":"C:\\\\x")");
    EXPECT_EQ(m_Server.requests().last().path, "/receive/data");
    EXPECT_TRUE(body.startsWith("[{\"kept\"") && body.endsWith("}\n ]"));
    const QJsonArray sent = QJsonDocument::fromJson(body).array();
    ASSERT_EQ(sent.size(), 2) << body.toStdString();
    EXPECT_EQ(sent[0]["kept"].toString(), "中文");
    EXPECT_EQ(sent[1]["path"].toString() + sent[1]["CloseBtnClicked"].toString(), "C:\\x1");
    const qint64 age =
        QDateTime::currentMSecsSinceEpoch() - sent[1]["time"].toString().toLongLong();
    EXPECT_TRUE(age >= 0 && age < 60000 && !sent[1]["mac"].toString().isEmpty());
    EXPECT_EQ(backlog(), "none");

    post(500, "{JSONArray text}", R"("first":"1")");
    EXPECT_EQ(backlog(), "none");
    post(500, "{JSONArray in a JSONObject}", R"("second":"1")");
    post(500, "", R"("third":"1")");
    EXPECT_TRUE(backlog().endsWith("\"third\":\"1\"},\n") && backlog().count(",\n") == 2);
    EXPECT_TRUE(QJsonDocument::fromJson(post(200, "ok", R"("fourth":"1")")).isObject());
    EXPECT_TRUE(post(200, "ok", R"("fifth":"1")").contains("second"));
    EXPECT_EQ(backlog(), "none");
}

TEST_F(Telemetry, BacklogAboveItsBoundIsDroppedWholeBeforeTheNextWrite)
{
    for (const int size : {1049599, 1049600}) {
        QDir().mkpath(JsonServerAction::dataFolder());
        QFile file(JsonServerAction::dataFolder() + "TabletData.txt");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(QByteArray(size, 'x'));
        file.close();
        m_Action->WriteDataToLocalFile("new");
        EXPECT_EQ(backlog().size(), size > 1049599 ? 5 : size + 5) << size;
    }
    EXPECT_TRUE(QRegularExpression("^[0-9a-f]{2}(:[0-9a-f]{2}){4}$")
                    .match(JsonServerAction::GetRandonMac())
                    .hasMatch());
}

// Consent starts the worker's thread, withdrawing it ends it, and consent again restarts it;
// without the option file nothing starts and no option file appears.
TEST_F(Telemetry, OptionFileAndConsentDriveTheWorker)
{
    auto workerRuns = [](JsonServer &server) {
        auto *thread = server.findChild<QThread *>();
        return thread && thread->isRunning();
    };
    {
        JsonServer server;
        EXPECT_TRUE(workerRuns(server));
        for (bool consent : {false, true}) {
            server.setCollectDataToServerOption(consent);
            EXPECT_EQ(workerRuns(server), consent);
            EXPECT_EQ(QSettings(JsonServerAction::optionFile(), QSettings::IniFormat)
                          .value("config/Data")
                          .toBool(),
                      consent);
        }
    }
    QFile::remove(JsonServerAction::optionFile());
    JsonServer server;
    server.setCollectDataToServerOption(true);
    EXPECT_FALSE(server.BCollectDataVersion() || workerRuns(server) ||
                 QFile::exists(JsonServerAction::optionFile()));
}

// md5(md5(key) + text), both rounds in lower-case hex.
TEST(UpdateServer, SignsWithTwoRoundsOfMd5)
{
    EXPECT_EQ(UpdateServer(false).GetMD5Sign("1700000000"), "c3231474e7147f8a0f823ef7b30531d6");
}

} // namespace

// Each test process has a home of its own for the backlog and the identity.
int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
