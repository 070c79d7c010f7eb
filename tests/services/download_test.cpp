#include "download.h"
#include "localhttpserver.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace
{

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// HOME is a folder of the test run, so the default folder is made fresh here.
TEST(Download, WritesThePartialFileReportsProgressAndRenamesAtTheEnd)
{
    LocalHttpServer server;
    QByteArray body;
    for (int i = 0; i < 300000; ++i)
        body.append(char(i % 251));
    server.answer(200, body, 400);
    Download download;
    download.setFileName("");
    const QString final = QDir::homePath() + "/Downloads/Driver_Update.exe";
    const QString partial = final + ".part";
    ASSERT_TRUE(QDir().mkpath(QDir::homePath() + "/Downloads"));
    writeFile(final, "old driver");
    writeFile(partial, "stale part");
    QSignalSpy progress(&download, &Download::updateUIProgress);
    QSignalSpy finished(&download, &Download::downloadFinished);

    download.startDownload(server.url("/files/update"));
    EXPECT_FALSE(QFile::exists(final));
    EXPECT_FALSE(QFile::exists(partial));

    // The server holds the second half back: only the partial file may be there.
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(partial); }, 5000));
    EXPECT_FALSE(QFile::exists(final));
    EXPECT_LT(QFile(partial).size(), body.size());

    ASSERT_TRUE(finished.wait(5000));
    EXPECT_EQ(finished.first().first().toString(), final);
    EXPECT_FALSE(QFile::exists(partial));
    QFile file(final);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly) && file.readAll() == body);
    EXPECT_GT(progress.size(), 1);
    EXPECT_EQ(progress.last().first().toInt(), 100);
}

TEST(Download, TimeRemainingTexts)
{
    const struct {
        qint64 received, total, elapsed;
        QString text;
    } cases[] = {
        {1000, 1000 + 7800 * 1000, 1, "Time remaining: about 2 hours"},
        {100, 100 + 6100, 1, "Time remaining: 1 minute"},
        {200, 200 + 90 * 100, 2, "Time remaining: 2 minutes"},
        {30, 30 + 45 * 30, 1, "Time remaining: 45 seconds"},
        {10, 10 + 14, 1, "Time remaining: 1 second"},
        {1000, 2000, 0, ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Download::timeRemainingText(c.received, c.total, c.elapsed), c.text)
            << c.received << " of " << c.total;
}

} // namespace
