#include "jsonserver.h"
#include "jsonserveraction.h"
#include "localhttpserver.h"
#include "threadnames.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
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

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The option file beside the test program sends the worker to a server of the test's own.
class Telemetry : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QDir(JsonServerAction::dataFolder()).removeRecursively();
        writeOptions(false);
        m_Action = std::make_unique<JsonServerAction>(false);
    }
    void TearDown() override
    {
        m_Action.reset();
        QFile::remove(JsonServerAction::optionFile());
    }
    void writeOptions(bool consent)
    {
        QSettings options(JsonServerAction::optionFile(), QSettings::IniFormat);
        options.setValue("config/URL", m_Server.url("/receive/data").toString());
        options.setValue("config/Data", consent);
    }
    // Posts one event and gives the body the server saw.
    QByteArray post(int status, const QByteArray &answer, const QString &event)
    {
        m_Server.answer(status, answer);
        QEventLoop loop;
        m_Action->SendMessageToServerAction(event, loop);
        return m_Server.requests().last().body;
    }
    static QString backlog() { return JsonServerAction::dataFolder() + "TabletData.txt"; }

    LocalHttpServer m_Server;
    std::unique_ptr<JsonServerAction> m_Action;
};

TEST_F(Telemetry, SuccessCarriesTheBacklogOnceAndRemovesIt)
{
    ASSERT_EQ(m_Action->WriteDataToLocalFile(R"({"kept":"中文"})"), 1);
    const QByteArray body = post(200, "ok", R"("CloseBtnClicked":"1","path":"C:\\\\x")");

    EXPECT_EQ(m_Server.requests().last().path, "/receive/data");
    QJsonParseError error{};
    const QJsonArray sent = QJsonDocument::fromJson(body, &error).array();
    ASSERT_EQ(error.error, QJsonParseError::NoError) << body.toStdString();
    ASSERT_EQ(sent.size(), 2);
    EXPECT_EQ(sent[0].toObject().value("kept").toString(), QString("中文"));
    const QJsonObject envelope = sent[1].toObject();
    EXPECT_EQ(envelope.value("CloseBtnClicked").toString(), "1");
    EXPECT_EQ(envelope.value("path").toString(), "C:\\x");
    const qint64 sentAt = envelope.value("time").toString().toLongLong();
    EXPECT_LE(qAbs(QDateTime::currentMSecsSinceEpoch() - sentAt), 60000);
    EXPECT_FALSE(envelope.value("mac").toString().isEmpty());
    EXPECT_TRUE(body.startsWith("[{\"kept\"") && body.endsWith("}\n ]"));
    EXPECT_FALSE(QFile::exists(backlog()));

    EXPECT_TRUE(QJsonDocument::fromJson(post(200, "ok", R"("a":"1")")).isObject());
}

// A failed post keeps the message unless the server names a JSONArray right after its
// first character, and the backlog then waits for a success without it.
TEST_F(Telemetry, FailedPostsKeepTheMessageByTheServersAnswer)
{
    post(500, "{JSONArray text}", R"("first":"1")");
    EXPECT_FALSE(QFile::exists(backlog()));
    post(500, "{JSONArray in a JSONObject}", R"("second":"1")");
    post(500, "", R"("third":"1")");
    const QByteArray kept = readAll(backlog());
    EXPECT_FALSE(kept.contains("first"));
    EXPECT_TRUE(kept.contains("second") && kept.contains("third"));
    EXPECT_TRUE(kept.endsWith("},\n") && kept.count(",\n") == 2);

    EXPECT_FALSE(post(200, "ok", R"("fourth":"1")").contains("second"));
    EXPECT_TRUE(QFile::exists(backlog()));
    EXPECT_TRUE(post(200, "ok", R"("fifth":"1")").contains("second"));
    EXPECT_FALSE(QFile::exists(backlog()));
}

TEST_F(Telemetry, BacklogAboveItsBoundIsDroppedWhole)
{
    for (const qint64 size : {qint64(1049599), qint64(1049600)}) {
        QDir().mkpath(JsonServerAction::dataFolder());
        QFile file(backlog());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(QByteArray(size, 'x'));
        file.close();
        m_Action->WriteDataToLocalFile("new");
        const QByteArray kept = readAll(backlog());
        EXPECT_EQ(kept.size(), size > 1049599 ? 5 : size + 5) << size;
        EXPECT_TRUE(kept.endsWith("new,\n"));
    }
}

TEST_F(Telemetry, RandomIdentityIsFivePairsOfLowerHex)
{
    const QRegularExpression shape("^[0-9a-f]{2}(:[0-9a-f]{2}){4}$");
    EXPECT_TRUE(shape.match(JsonServerAction::GetRandonMac()).hasMatch());
    EXPECT_NE(JsonServerAction::GetRandonMac(), JsonServerAction::GetRandonMac());
}

// Consent starts the worker's thread and withdrawing it ends it; without the option file
// the installation neither collects nor starts to.
TEST_F(Telemetry, OptionFileAndConsentDriveTheWorker)
{
    auto workerRuns = [](bool expected) {
        for (int i = 0; i < 100 && threadNames().contains("JsonServer") != expected; ++i)
            QThread::msleep(10);
        return threadNames().contains("JsonServer");
    };
    writeOptions(true);
    {
        JsonServer server;
        EXPECT_TRUE(server.BCollectDataVersion() && server.BCollectDataToServer());
        EXPECT_TRUE(workerRuns(true));
        server.setCollectDataToServerOption(false);
        EXPECT_FALSE(workerRuns(false));
        EXPECT_FALSE(QSettings(JsonServerAction::optionFile(), QSettings::IniFormat)
                         .value("config/Data")
                         .toBool());
        server.setCollectDataToServerOption(true);
        EXPECT_TRUE(workerRuns(true));
    }
    EXPECT_FALSE(workerRuns(false));
    QFile::remove(JsonServerAction::optionFile());
    JsonServer server;
    EXPECT_FALSE(server.BCollectDataVersion());
    server.setCollectDataToServerOption(true);
    EXPECT_FALSE(workerRuns(true));
    EXPECT_FALSE(QFile::exists(JsonServerAction::optionFile()));
}

TEST(JsonText, IsBuiltByConcatenationWithoutEscaping)
{
    EXPECT_EQ(JsonServer::GetJsonData("k", "a\"b"), "\"k\":\"a\"b\"");
    EXPECT_EQ(JsonServer::GetJsonDataSon("e", JsonServer::GetJsonData("x", "%1")),
              "\"e\":{\"x\":\"%1\"}");
}

} // namespace

// Each test process has a home of its own, where the backlog and identity go.
int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
