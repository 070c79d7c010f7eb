#include "cglobaldata.h"
#include "mylrc.h"
#include "windowfixture.h"

#include <QTest>
#include <gtest/gtest.h>

#include <thread>

namespace
{

TEST(TipWindow, EmptyTextShowsNothing)
{
    MyLrc tip;
    tip.ShowInfoText(QString(), true);
    EXPECT_FALSE(tip.isVisible());
    EXPECT_FALSE(tip.timer().isActive());
}

TEST(TipWindow, ASecondTipReplacesTheFirstAndRestartsItsTime)
{
    MyLrc tip;
    tip.ShowInfoText("First", true);
    QTest::qWait(600);
    tip.ShowInfoText("Second", true);
    EXPECT_EQ(tip.lines(), QStringList{"Second"});
    EXPECT_GT(tip.timer().remainingTime(), 600);
    EXPECT_TRUE(tip.isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!tip.isVisible(), 5000);
    EXPECT_TRUE(tip.lines().isEmpty());
}

using TipsFromReaders = WindowFixture;

// Reader threads only emit; the window shows the tip on the GUI thread.
TEST_F(TipsFromReaders, TextAndListArriveOnTheGuiThread)
{
    MyLrc *tip = dynamic_cast<MyLrc *>(CGlobalData::Show_Info);
    ASSERT_NE(tip, nullptr);
    std::thread reader([tip] { tip->EmitInfo("Saved"); });
    reader.join();
    EXPECT_FALSE(tip->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(tip->isVisible(), 2000);
    EXPECT_EQ(tip->lines(), QStringList{"Saved"});
    EXPECT_FALSE(tip->listMode());

    std::thread ring([tip] { tip->EmitRingLrcInfo({"Zoom", "Scroll", "Brush"}, 1); });
    ring.join();
    QTRY_VERIFY_WITH_TIMEOUT(tip->listMode(), 2000);
    EXPECT_EQ(tip->lines(), (QStringList{"Zoom", "Scroll", "Brush"}));
    // 20 per line and 10 more.
    EXPECT_EQ(tip->size(), QSize(200, 70));
    EXPECT_EQ(tip->timer().interval(), 1200);
}

} // namespace
