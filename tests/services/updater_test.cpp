#include "localhttpserver.h"
#include "updater.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace
{

TEST(Updater, CompareSaysWhetherTheFirstVersionIsNewer)
{
    const struct {
        const char *x, *y;
        bool newer;
    } cases[] = {
        {"1.2.0", "1.1.9", true}, {"1.1.9", "1.2.0", false}, {"1.10", "1.9", true},
        {"1.2", "1.2", false},    {"1.2.1", "1.2", true},    {"1.2", "1.2.1", false},
        {"", "1.0", true},        {"1.0", "", false},        {"", "", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Updater::compare(c.x, c.y), c.newer) << c.x << " vs " << c.y;
}

QByteArray appcast(const QByteArray &mandatory)
{
    return R"({"updates": {
        "windows": {"latest-version": "9.0", "download-url": "http://x/win.exe"},
        "linux": {"latest-version": "3.5.0", "download-url": "http://x/scribora.deb",
                  "changelog": "Fixes", "open-url": "" )" +
           mandatory + "}}}";
}

// The boxes stay shut: no notification flag is set.
TEST(Updater, ReadsThePlatformEntryOfTheAppcast)
{
    LocalHttpServer server;
    Updater updater;
    updater.setNotifyOnUpdate(false);
    updater.setUrl(server.url("/appcast.json").toString());
    updater.setModuleVersion("3.4.11");
    updater.setMandatoryUpdate(true);
    QSignalSpy finished(&updater, &Updater::checkingFinished);

    server.answer(200, appcast(""));
    updater.checkForUpdates();
    ASSERT_TRUE(finished.wait(5000));
    EXPECT_EQ(finished.last().first().toString(), updater.url());
    EXPECT_TRUE(updater.updateAvailable());
    EXPECT_EQ(updater.latestVersion(), "3.5.0");
    EXPECT_EQ(updater.downloadUrl(), "http://x/scribora.deb");
    EXPECT_EQ(updater.changelog(), "Fixes");
    EXPECT_TRUE(updater.mandatoryUpdate());

    server.answer(200, appcast(R"(, "mandatory-update": false)"));
    updater.setModuleVersion("3.5.0");
    updater.checkForUpdates();
    ASSERT_TRUE(finished.wait(5000));
    EXPECT_FALSE(updater.updateAvailable());
    EXPECT_FALSE(updater.mandatoryUpdate());
}

} // namespace
