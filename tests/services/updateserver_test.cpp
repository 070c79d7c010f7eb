#include "localhttpserver.h"
#include "updateserver.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace
{

// The sign is md5(md5(key) + text) in lower-case hex; a driver record reaches the window
// version first, address second, and only with code 1.
TEST(UpdateServer, SignsAndReportsTheDriverRecord)
{
    UpdateServer client(false);
    EXPECT_EQ(client.GetMD5Sign("1700000000"), "c3231474e7147f8a0f823ef7b30531d6");
    LocalHttpServer server;
    QNetworkAccessManager manager;
    QSignalSpy newDriver(&client, &UpdateServer::GetNewDriver);
    const QByteArray record =
        R"("data":{"version":"3.5.0","download_link":"https://x.invalid/d"}})";
    for (const QByteArray &answer : {"{\"code\":1," + record, "{\"code\":0," + record}) {
        server.answer(200, answer);
        QNetworkReply *reply = manager.get(QNetworkRequest(server.url("/driver")));
        ASSERT_TRUE(QTest::qWaitFor([&] { return reply->isFinished(); }));
        QMetaObject::invokeMethod(&client, "on_GetDriverFinished", Q_ARG(QNetworkReply *, reply));
    }
    ASSERT_EQ(newDriver.size(), 1);
    EXPECT_EQ(newDriver[0][1].toString(), "3.5.0");
    EXPECT_EQ(newDriver[0][2].toString(), "https://x.invalid/d");
}

} // namespace
