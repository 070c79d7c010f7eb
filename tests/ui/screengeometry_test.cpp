#include "cglobaldata.h"
#include "cscreeninfos.h"
#include "mainwindow.h"
#include "windowfixture.h"

#include <QApplication>
#include <QDesktopWidget>
#include <QGuiApplication>
#include <QScreen>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace
{

// Arrays two slots longer than the screen table, so that writes past slot 9 show.
constexpr int kPadded = kScreenSlots + 2;
const QRect kSentinel(7, 7, 7, 7);
// A rectangle with all four coordinates 0: one pixel at the origin.
const QRect kZero(QPoint(0, 0), QPoint(0, 0));
// The offscreen platform has one 800x600 screen at the origin.
const QRect kOffscreen(0, 0, 800, 600);

struct SortRun {
    QRect src[kPadded];
    QRect dst[kPadded];
};

// Screens go to slots 1.. of the source; every other slot holds the sentinel.
SortRun sortScreens(const std::vector<QRect> &screens, int count, bool trackPrimary)
{
    SortRun run;
    std::fill(std::begin(run.src), std::end(run.src), kSentinel);
    std::fill(std::begin(run.dst), std::end(run.dst), kSentinel);
    std::copy(screens.begin(), screens.end(), run.src + 1);
    MainWindow::SortQRectRect(run.src, run.dst, count, trackPrimary);
    return run;
}

struct OrderCase {
    const char *name;
    std::vector<QRect> screens;
    std::vector<QRect> sorted;
};

const OrderCase kOrderCases[] = {
    {"three screens out of order",
     {QRect(1920, 0, 1280, 1024), QRect(-1280, 0, 1280, 800), QRect(0, 0, 1920, 1080)},
     {QRect(-1280, 0, 1280, 800), QRect(0, 0, 1920, 1080), QRect(1920, 0, 1280, 1024)}},
    {"same left edge, lower top first",
     {QRect(0, 1080, 1920, 1080), QRect(0, 0, 1920, 1080), QRect(1920, 0, 800, 600)},
     {QRect(0, 0, 1920, 1080), QRect(0, 1080, 1920, 1080), QRect(1920, 0, 800, 600)}},
    {"same left and top keep their order",
     {QRect(0, 0, 800, 600), QRect(0, 0, 1024, 768)},
     {QRect(0, 0, 800, 600), QRect(0, 0, 1024, 768)}},
    {"one screen is copied", {QRect(10, 20, 30, 40)}, {QRect(10, 20, 30, 40)}},
};

TEST(SortQRectRect, OrdersByLeftThenTop)
{
    for (const OrderCase &c : kOrderCases) {
        SCOPED_TRACE(c.name);
        const int count = static_cast<int>(c.screens.size());
        const SortRun run = sortScreens(c.screens, count, false);
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(run.dst[i + 1], c.sorted[i]) << "slot " << i + 1;
            EXPECT_EQ(run.src[i + 1], c.sorted[i]) << "the source is sorted along";
        }
        EXPECT_EQ(run.dst[count + 1], kSentinel) << "the slot after the last is not written";
        EXPECT_EQ(run.src[0], kSentinel);
        EXPECT_EQ(run.dst[0], kSentinel);
    }
}

TEST(SortQRectRect, ZeroCountWritesNothing)
{
    const SortRun run = sortScreens(kOrderCases[0].screens, 0, false);
    for (int i = 0; i < kPadded; ++i)
        EXPECT_EQ(run.dst[i], kSentinel) << "slot " << i;
}

TEST(SortQRectRect, ClipsACountAboveNine)
{
    // Slots 1 to 11 hold lefts 1100, 1000, ... 100: only 1 to 9 take part.
    std::vector<QRect> screens;
    for (int i = 1; i <= 11; ++i)
        screens.push_back(QRect((12 - i) * 100, 0, 100, 100));
    SortRun run;
    std::copy(screens.begin(), screens.end(), run.src + 1);
    std::fill(std::begin(run.dst), std::end(run.dst), kSentinel);
    MainWindow::SortQRectRect(run.src, run.dst, 12, false);
    // Slots 1 to 9 held lefts 1100 down to 300; sorted they run 300 up to 1100.
    for (int i = 1; i <= 9; ++i)
        EXPECT_EQ(run.dst[i], QRect((i + 2) * 100, 0, 100, 100)) << "slot " << i;
    EXPECT_EQ(run.dst[10], kSentinel);
    EXPECT_EQ(run.dst[11], kSentinel);
    EXPECT_EQ(run.src[10], QRect(200, 0, 100, 100)) << "slot 10 of the source is not swapped";
    EXPECT_EQ(run.src[11], QRect(100, 0, 100, 100));
}

struct PrimaryCase {
    const char *name;
    std::vector<QRect> screens;
    bool trackPrimary;
    int before;
    int after;
};

const std::vector<QRect> kTwoSwapped = {QRect(1920, 0, 800, 600), QRect(0, 0, 1920, 1080)};
const std::vector<QRect> kThreeOutOfOrder = kOrderCases[0].screens;

const PrimaryCase kPrimaryCases[] = {
    {"the later slot moves forward", kTwoSwapped, true, 2, 1},
    {"the earlier slot moves back", kTwoSwapped, true, 1, 2},
    {"slot 0 stays", kTwoSwapped, true, 0, 0},
    {"untracked stays", kTwoSwapped, false, 2, 2},
    // Swaps (1,2) then (2,3): the screen at left 0 goes from slot 3 to slot 2.
    {"three screens, left 0 from slot 3", kThreeOutOfOrder, true, 3, 2},
    // The screen at left 1920 goes from slot 1 to 2, then to 3.
    {"three screens, left 1920 from slot 1", kThreeOutOfOrder, true, 1, 3},
    {"three screens, left -1280 from slot 2", kThreeOutOfOrder, true, 2, 1},
};

TEST(SortQRectRect, PrimaryFollowsItsScreenWhenTracked)
{
    for (const PrimaryCase &c : kPrimaryCases) {
        SCOPED_TRACE(c.name);
        CGlobalData::PrimaryID = c.before;
        sortScreens(c.screens, static_cast<int>(c.screens.size()), c.trackPrimary);
        EXPECT_EQ(CGlobalData::PrimaryID, c.after);
    }
    CGlobalData::PrimaryID = 0;
}

TEST(CScreenInfos, ReportsTheOffscreenDesktop)
{
    ASSERT_EQ(QGuiApplication::screens().size(), 1);
    const CScreenInfos infos;
    EXPECT_EQ(infos.GetScreenCount(), 1);
    EXPECT_EQ(infos.GetScreenRect(0), kOffscreen);
    EXPECT_EQ(infos.GetFirstScreenRect(), kOffscreen);
    EXPECT_EQ(infos.GetLastScreenRect(), kOffscreen);
    EXPECT_EQ(infos.GetAllScreenRect(), kOffscreen);
}

TEST(CScreenInfos, WithoutADesktopEveryRectangleIsNull)
{
    const CScreenInfos infos(nullptr);
    EXPECT_EQ(infos.GetScreenCount(), 0);
    EXPECT_TRUE(infos.GetFirstScreenRect().isNull());
    EXPECT_TRUE(infos.GetLastScreenRect().isNull());
    EXPECT_TRUE(infos.GetAllScreenRect().isNull());
}

using ScreenEnumeration = WindowFixture;

void expectOffscreenScreenArray()
{
    EXPECT_EQ(CGlobalData::ScreenArray[0], kOffscreen) << "slot 0 is the whole desktop";
    EXPECT_EQ(CGlobalData::ScreenArray[1], kOffscreen);
    for (int i = 2; i < kScreenSlots; ++i) {
        const QRect &slot = CGlobalData::ScreenArray[i];
        EXPECT_TRUE(slot.isNull()) << "slot " << i;
        EXPECT_EQ(slot.left(), 0) << "slot " << i;
        EXPECT_EQ(slot.top(), 0) << "slot " << i;
        EXPECT_EQ(slot.right(), -1) << "slot " << i;
        EXPECT_EQ(slot.bottom(), -1) << "slot " << i;
    }
    EXPECT_EQ(CGlobalData::ScreenNum, 1);
    EXPECT_EQ(CGlobalData::PrimaryID, 0);
}

void scrambleScreens()
{
    std::fill(std::begin(CGlobalData::ScreenArray), std::end(CGlobalData::ScreenArray), kSentinel);
    std::fill(std::begin(CGlobalData::LogicScreenArray), std::end(CGlobalData::LogicScreenArray),
              kSentinel);
    CGlobalData::ScreenNum = 5;
    CGlobalData::PrimaryID = 3;
}

TEST_F(ScreenEnumeration, TheConstructorEnumerates)
{
    m_Window.reset();
    scrambleScreens();
    m_Window = std::make_unique<MainWindow>();
    expectOffscreenScreenArray();
}

TEST_F(ScreenEnumeration, EnumDisplayFillsTheScreenTable)
{
    scrambleScreens();
    m_Window->EnumDisplay(false);
    expectOffscreenScreenArray();
}

TEST_F(ScreenEnumeration, EnumDisplayFillsTheLogicalTable)
{
    scrambleScreens();
    m_Window->EnumDisplay(false);
    EXPECT_EQ(CGlobalData::LogicScreenArray[0], kZero);
    EXPECT_EQ(CGlobalData::LogicScreenArray[1], kOffscreen);
    for (int i = 2; i < kScreenSlots; ++i)
        EXPECT_EQ(CGlobalData::LogicScreenArray[i], kZero) << "slot " << i;
}

TEST_F(ScreenEnumeration, EnumLogicDisplayReadsScreenNum)
{
    struct Case {
        int screenNum;
        QRect slot1;
    };
    const Case cases[] = {{1, kOffscreen}, {0, kZero}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.screenNum);
        scrambleScreens();
        CGlobalData::ScreenNum = c.screenNum;
        MainWindow::EnumLogicDisplay();
        EXPECT_EQ(CGlobalData::LogicScreenArray[0], kZero);
        EXPECT_EQ(CGlobalData::LogicScreenArray[1], c.slot1);
        for (int i = 2; i < kScreenSlots; ++i)
            EXPECT_EQ(CGlobalData::LogicScreenArray[i], kZero) << "slot " << i;
        EXPECT_EQ(CGlobalData::ScreenArray[1], kSentinel) << "the screen table is not touched";
    }
}

TEST_F(ScreenEnumeration, DesktopChangesEnumerateAgain)
{
    struct Change {
        const char *signal;
        bool hasArgument;
    };
    const Change changes[] = {{"resized", true},
                              {"screenCountChanged", true},
                              {"primaryScreenChanged", false},
                              {"workAreaResized", true}};
    QDesktopWidget *desktop = QApplication::desktop();
    for (const Change &change : changes) {
        SCOPED_TRACE(change.signal);
        scrambleScreens();
        const bool sent =
            change.hasArgument
                ? QMetaObject::invokeMethod(desktop, change.signal, Qt::DirectConnection,
                                            Q_ARG(int, 0))
                : QMetaObject::invokeMethod(desktop, change.signal, Qt::DirectConnection);
        ASSERT_TRUE(sent);
        expectOffscreenScreenArray();
    }
}

} // namespace
