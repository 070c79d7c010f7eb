#include "cglobaldata.h"
#include "cscreeninfos.h"
#include "ctablet.h"
#include "screencalibrate.h"
#include "windowfixture.h"

#include <QApplication>
#include <QDesktopWidget>
#include <QSignalSpy>
#include <QTest>

#include <chrono>
#include <cmath>
#include <iterator>
#include <thread>
#include <vector>

namespace
{

const QRect kSentinel(7, 7, 7, 7);
const QRect kZero(QPoint(0, 0), QPoint(0, 0)); // all four coordinates 0
const QRect kOffscreen(0, 0, 800, 600);        // the offscreen platform's one screen

struct SortCase {
    std::vector<QRect> screens; // in slots 1.. of the source
    int count;
    std::vector<int> sorted; // indices into screens, for dst slots 1..
    bool track;
    int primary, primaryAfter;
};

const std::vector<QRect> kThree = {QRect(1920, 0, 1280, 1024), QRect(-1280, 0, 1280, 800),
                                   QRect(0, 0, 1920, 1080)};
const std::vector<QRect> kTwo = {QRect(1920, 0, 800, 600), QRect(0, 0, 1920, 1080)};
// Lefts 1100 down to 100: only slots 1 to 9 take part.
const std::vector<QRect> kEleven = [] {
    std::vector<QRect> screens;
    for (int i = 1; i <= 11; ++i)
        screens.push_back(QRect((12 - i) * 100, 0, 100, 100));
    return screens;
}();

const SortCase kSortCases[] = {
    // Swaps (1,2) then (2,3): the primary follows its screen.
    {kThree, 3, {1, 2, 0}, true, 3, 2},
    {kThree, 3, {1, 2, 0}, true, 1, 3},
    {kThree, 3, {1, 2, 0}, true, 2, 1},
    {kThree, 0, {}, true, 2, 2},
    {kTwo, 2, {1, 0}, true, 0, 0},
    {kTwo, 2, {1, 0}, false, 2, 2},
    // Same left: lower top first; same left and top keep their order.
    {{QRect(0, 1080, 1920, 1080), QRect(0, 0, 1920, 1080), QRect(1920, 0, 800, 600)},
     3,
     {1, 0, 2},
     false,
     0,
     0},
    {{QRect(0, 0, 800, 600), QRect(0, 0, 1024, 768)}, 2, {0, 1}, false, 0, 0},
    {kEleven, 12, {8, 7, 6, 5, 4, 3, 2, 1, 0}, false, 0, 0},
};

TEST(SortQRectRect, OrdersSlotsOneToNineByLeftThenTop)
{
    for (const SortCase &c : kSortCases) {
        SCOPED_TRACE(::testing::Message() << c.screens.size() << " screens, count " << c.count
                                          << ", primary " << c.primary);
        QRect src[kScreenSlots + 2], dst[kScreenSlots + 2];
        std::fill(std::begin(src), std::end(src), kSentinel);
        std::fill(std::begin(dst), std::end(dst), kSentinel);
        std::copy(c.screens.begin(), c.screens.end(), src + 1);
        CGlobalData::PrimaryID = c.primary;
        MainWindow::SortQRectRect(src, dst, c.count, c.track);
        EXPECT_EQ(CGlobalData::PrimaryID, c.primaryAfter);
        EXPECT_EQ(src[0], kSentinel);
        EXPECT_EQ(dst[0], kSentinel);
        for (size_t i = 0; i + 1 < std::size(dst); ++i) {
            const bool sorted = i < c.sorted.size();
            const QRect unsorted = i < c.screens.size() ? c.screens[i] : kSentinel;
            EXPECT_EQ(dst[i + 1], sorted ? c.screens[c.sorted[i]] : kSentinel) << "slot " << i + 1;
            EXPECT_EQ(src[i + 1], sorted ? c.screens[c.sorted[i]] : unsorted) << "slot " << i + 1;
        }
    }
    CGlobalData::PrimaryID = 0;
}

TEST(CScreenInfos, ReportsTheDesktopOrNullWithoutOne)
{
    const CScreenInfos infos, none(nullptr);
    EXPECT_EQ(infos.GetScreenCount(), 1);
    EXPECT_EQ(none.GetScreenCount(), 0);
    for (const QRect &rect : {infos.GetScreenRect(0), infos.GetFirstScreenRect(),
                              infos.GetLastScreenRect(), infos.GetAllScreenRect()})
        EXPECT_EQ(rect, kOffscreen);
    for (const QRect &rect :
         {none.GetFirstScreenRect(), none.GetLastScreenRect(), none.GetAllScreenRect()})
        EXPECT_TRUE(rect.isNull());
}

using ScreenTables = WindowFixture;

void scramble()
{
    std::fill(std::begin(CGlobalData::ScreenArray), std::end(CGlobalData::ScreenArray), kSentinel);
    std::fill(std::begin(CGlobalData::LogicScreenArray), std::end(CGlobalData::LogicScreenArray),
              kSentinel);
    CGlobalData::ScreenNum = 5;
    CGlobalData::PrimaryID = 3;
}

// Slot 0 of the screen table is the whole desktop; unfilled logical slots are kZero.
void expectOffscreenTables()
{
    for (int i = 0; i < kScreenSlots; ++i) {
        EXPECT_EQ(CGlobalData::ScreenArray[i], i < 2 ? kOffscreen : QRect()) << i;
        EXPECT_EQ(CGlobalData::LogicScreenArray[i], i == 1 ? kOffscreen : kZero) << i;
    }
    EXPECT_EQ(CGlobalData::ScreenNum, 1);
    EXPECT_EQ(CGlobalData::PrimaryID, 0);
}

TEST_F(ScreenTables, FilledByTheConstructorAndOnEveryDesktopChange)
{
    m_Window.reset();
    scramble();
    m_Window = std::make_unique<MainWindow>();
    expectOffscreenTables();
    QDesktopWidget *desktop = QApplication::desktop();
    for (const char *signal : {"resized", "screenCountChanged", "workAreaResized"}) {
        scramble();
        ASSERT_TRUE(QMetaObject::invokeMethod(desktop, signal, Q_ARG(int, 0)));
        expectOffscreenTables();
    }
    scramble();
    ASSERT_TRUE(QMetaObject::invokeMethod(desktop, "primaryScreenChanged"));
    expectOffscreenTables();
}

TEST_F(ScreenTables, LogicalTableReadsScreenNumOnly)
{
    scramble();
    CGlobalData::ScreenNum = 0;
    MainWindow::EnumLogicDisplay();
    for (int i = 0; i < kScreenSlots; ++i)
        EXPECT_EQ(CGlobalData::LogicScreenArray[i], kZero) << i;
    EXPECT_EQ(CGlobalData::ScreenArray[1], kSentinel);
}

using Points = ScreenCalibrate::Points;
using Terms = ScreenCalibrate::Terms;

// The targets of a 1280x800 screen: 50 in from each corner, and the centre.
const Points kTargets = {QPoint(50, 50), QPoint(50, 750), QPoint(1230, 750), QPoint(1230, 50),
                         QPoint(640, 400)};

void expectTerms(const Terms &actual, const Terms &expected)
{
    const float a[] = {actual.fkx, actual.fky, actual.fxlc, actual.fylc};
    const float e[] = {expected.fkx, expected.fky, expected.fxlc, expected.fylc};
    for (int i = 0; i < 4; ++i) {
        if (std::isnan(e[i]))
            EXPECT_TRUE(std::isnan(a[i])) << "term " << i;
        else
            EXPECT_FLOAT_EQ(a[i], e[i]) << "term " << i;
    }
}

struct TermsCase {
    Points measured;
    Terms expected;
    Points targets = kTargets;
};

// X terms over 2 * (1230 - 50) = 2360, Y over 2 * (750 - 50) = 1400; centre 640 / x, 400 / y.
// Terms below 0 or above 2, infinity included, are 1; NaN stands.
const TermsCase kTermsCases[] = {
    {kTargets, {1.0f, 1.0f, 1.0f, 1.0f}},
    {{QPoint(345, 0), QPoint(345, 1050), QPoint(935, 1050), QPoint(935, 0), QPoint(512, 800)},
     {0.5f, 1.5f, 1.25f, 0.5f}},
    // The two edges average: (1200 + 1160) / 2360; (780 + 795) / 1400.
    {{QPoint(40, 20), QPoint(78, 800), QPoint(1238, 800), QPoint(1240, 5), QPoint(800, 640)},
     {1.0f, 1.125f, 0.8f, 0.625f}},
    {{QPoint(0, 50), QPoint(0, 750), QPoint(2950, 750), QPoint(2950, 50), QPoint(256, 400)},
     {1.0f, 1.0f, 1.0f, 1.0f}},
    {{QPoint(0, 50), QPoint(0, 750), QPoint(2360, 750), QPoint(2360, 50), QPoint(640, 200)},
     {2.0f, 1.0f, 1.0f, 2.0f}},
    {{QPoint(50, 750), QPoint(50, 50), QPoint(1230, 50), QPoint(1230, 750), QPoint(640, -400)},
     {1.0f, 1.0f, 1.0f, 1.0f}},
    {{QPoint(100, 50), QPoint(100, 750), QPoint(100, 750), QPoint(100, 50), QPoint(0, 400)},
     {0.0f, 1.0f, 1.0f, 1.0f}},
    // A 100x100 screen: zero spans; 0 / 0 in X is NaN.
    {{QPoint(10, 0), QPoint(10, 10), QPoint(10, 10), QPoint(10, 0), QPoint(0, 0)},
     {NAN, 1.0f, 1.0f, 1.0f},
     {QPoint(50, 50), QPoint(50, 50), QPoint(50, 50), QPoint(50, 50), QPoint(50, 50)}},
};

TEST(CalculationTerms, FromFiveMeasuredPoints)
{
    for (const TermsCase &c : kTermsCases) {
        SCOPED_TRACE(c.measured[4].x());
        expectTerms(ScreenCalibrate::calculateTerms(c.measured, c.targets), c.expected);
    }
}

const QColor kRed(255, 0, 2);

// Right of a 1920 wide screen: hit rectangles are global, the measured points local.
TEST(ScreenCalibrateWindow, AdvancesOnHitsDrawsTheCurrentCrossAndEmitsOnTheFifth)
{
    ScreenCalibrate window;
    QSignalSpy spy(&window, &ScreenCalibrate::sign_ScreenCalibrate);
    window.SetScreenArea(QRect(1920, 0, 1280, 800));
    ASSERT_EQ(window.geometry(), QRect(1920, 0, 1280, 800));
    // From 50 ahead of the target to twice its offset.
    const QRect hits[] = {
        QRect(QPoint(1920, 0), QPoint(2019, 99)), QRect(QPoint(1920, 700), QPoint(2019, 1499)),
        QRect(QPoint(3100, 700), QPoint(4379, 1499)), QRect(QPoint(3100, 0), QPoint(4379, 99)),
        QRect(QPoint(2510, 350), QPoint(3199, 799))};
    const Points measured = {QPoint(40, 20), QPoint(78, 800), QPoint(1238, 800), QPoint(1240, 5),
                             QPoint(800, 640)};
    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(40, 100));
    EXPECT_EQ(window.pointCounter(), 0) << "a miss does not advance";
    for (int i = 0; i < ScreenCalibrate::kPointCount; ++i) {
        const QPoint t = kTargets[i];
        EXPECT_EQ(window.targetPoint(i), t);
        EXPECT_EQ(window.hitRect(i), hits[i]);
        const QImage shot = window.grab().toImage();
        for (const QPoint &p : {t, t + QPoint(-19, 0), t + QPoint(0, 19)})
            EXPECT_EQ(shot.pixelColor(p), kRed) << "cross " << i;
        EXPECT_NE(shot.pixelColor(kTargets[(i + 1) % 5]), kRed) << "only the current cross";
        QTest::mouseClick(&window, Qt::LeftButton, {}, measured[i]);
        EXPECT_EQ(window.pointCounter(), i + 1);
        EXPECT_EQ(spy.count(), i == 4 ? 1 : 0);
    }
    EXPECT_FALSE(window.isVisible());
    const QList<QVariant> args = spy.takeFirst();
    expectTerms({args[0].toFloat(), args[1].toFloat(), args[2].toFloat(), args[3].toFloat()},
                {1.0f, 1.125f, 0.8f, 0.625f});
    window.SetScreenArea(QRect(0, 0, 1280, 800));
    EXPECT_EQ(window.pointCounter(), 0) << "a run starts from the first point";
}

TEST(ScreenCalibrateWindow, EscapeAloneClosesWithoutEmitting)
{
    ScreenCalibrate window;
    QSignalSpy spy(&window, &ScreenCalibrate::sign_ScreenCalibrate);
    window.SetScreenArea(QRect(0, 0, 1280, 800));
    QTest::keyClick(&window, Qt::Key_A);
    EXPECT_TRUE(window.isVisible());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(spy.count(), 0);
}

class CalibrationResult : public WindowFixture
{
protected:
    void SetUp() override
    {
        WindowFixture::SetUp();
        // The window deletes the tablets of the slots when it goes.
        CGlobalData::TabletArray[0] = CGlobalData::TabletMap["Test Tablet"] = new CTablet;
        m_Data = CGlobalData::TabletArray[0]->m_TabletXMLData;
        m_Data->fKX = m_Data->fKY = m_Data->fXLC = m_Data->fYLC = 1.0f;
    }
    void expectRecord(const Terms &expected) const
    {
        expectTerms({m_Data->fKX, m_Data->fKY, m_Data->fXLC, m_Data->fYLC}, expected);
    }

    stTablet_XMLData *m_Data = nullptr;
};

TEST_F(CalibrationResult, WithoutACurrentTabletNothingIsStored)
{
    m_Window->GetScreenCalibrate(0.5f, 1.5f, 0.75f, 1.25f);
    expectRecord({1.0f, 1.0f, 1.0f, 1.0f});
}

TEST_F(CalibrationResult, WaitsForTheSettingsLock)
{
    m_Window->InitUI("Test Tablet");
    CGlobalData::XMLMutex.lock();
    std::thread writer([this] { m_Window->GetScreenCalibrate(0.5f, 1.5f, 0.75f, 1.25f); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    expectRecord({1.0f, 1.0f, 1.0f, 1.0f});
    CGlobalData::XMLMutex.unlock();
    writer.join();
    expectRecord({0.5f, 1.5f, 0.75f, 1.25f});
}

} // namespace
