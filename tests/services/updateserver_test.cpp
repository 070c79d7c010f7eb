#include "localhttpserver.h"
#include "updateserver.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace
{

// Known answer: md5(md5(key) + text), both rounds in lower-case hex.
TEST(UpdateServer, SignsWithTwoRoundsOfMd5)
{
    EXPECT_EQ(UpdateServer(false).GetMD5Sign("1700000000"), "c3231474e7147f8a0f823ef7b30531d6");
}

TEST(UpdateServer, PingsOnlyWhenCheckingIsOn)
{
    LocalHttpServer server;
    server.answer(200, R"({"code":1,"server_time":1700000000})");
    UpdateServer idle(false, nullptr, server.url(""));
    EXPECT_EQ(idle.CheckUpdateServer(2), 0);
    UpdateServer checking(true, nullptr, server.url(""));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !server.requests().isEmpty(); }));
    QTest::qWait(100);
    ASSERT_EQ(server.requests().size(), 1);
    EXPECT_EQ(server.requests()[0].method, "GET");
    EXPECT_EQ(server.requests()[0].path, "/api/ping");
}

// The driver's record reaches the window version first, address second; anything but
// code 1 reaches nothing.
TEST(UpdateServer, DriverRecordBecomesTheNewDriverSignal)
{
    LocalHttpServer server;
    QNetworkAccessManager manager;
    UpdateServer client(false);
    QSignalSpy newDriver(&client, &UpdateServer::GetNewDriver);
    const QByteArray record =
        R"("message":"m","data":{"driver_code":"d","system":"linux","version":"3.5.0",)"
        R"("download_link":"https://example.invalid/driver.deb"}})";
    for (const QByteArray &answer : {"{\"code\":1," + record, "{\"code\":0," + record}) {
        server.answer(200, answer);
        QNetworkReply *reply = manager.get(QNetworkRequest(server.url("/driver")));
        ASSERT_TRUE(QTest::qWaitFor([&] { return reply->isFinished(); }));
        QMetaObject::invokeMethod(&client, "on_GetDriverFinished", Q_ARG(QNetworkReply *, reply));
    }
    ASSERT_EQ(newDriver.size(), 1);
    EXPECT_EQ(newDriver[0][0].toInt(), 1);
    EXPECT_EQ(newDriver[0][1].toString(), "3.5.0");
    EXPECT_EQ(newDriver[0][2].toString(), "https://example.invalid/driver.deb");
}

} // namespace
