#include "cglobaldata.h"
#include "ctablet.h"
#include "screencalibrate.h"
#include "windowfixture.h"

#include <QDir>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>
#include <vector>

namespace
{

using Points = ScreenCalibrate::Points;
using Terms = ScreenCalibrate::Terms;

// The targets of a 1280x800 screen: 50 in from each corner, and the centre.
const Points kTargets = {QPoint(50, 50), QPoint(50, 750), QPoint(1230, 750), QPoint(1230, 50),
                         QPoint(640, 400)};
const QRect kScreen(0, 0, 1280, 800);
const QColor kRed(255, 0, 2);

void expectTerms(const Terms &actual, const Terms &expected)
{
    EXPECT_FLOAT_EQ(actual.fkx, expected.fkx);
    EXPECT_FLOAT_EQ(actual.fky, expected.fky);
    EXPECT_FLOAT_EQ(actual.fxlc, expected.fxlc);
    EXPECT_FLOAT_EQ(actual.fylc, expected.fylc);
}

struct TermsCase {
    const char *name;
    Points measured;
    Terms expected;
};

// Denominators for these targets: 2 * (1230 - 50) = 2360 in X, 2 * (750 - 50) = 1400 in Y;
// the centre terms are 640 / M4.x and 400 / M4.y.
const TermsCase kTermsCases[] = {
    {"presses on the targets", kTargets, {1.0f, 1.0f, 1.0f, 1.0f}},
    // (590 + 590) / 2360, (1050 + 1050) / 1400, 640 / 512, 400 / 800.
    {"scaled",
     {QPoint(345, 0), QPoint(345, 1050), QPoint(935, 1050), QPoint(935, 0), QPoint(512, 800)},
     {0.5f, 1.5f, 1.25f, 0.5f}},
    // The two edges average: (1200 + 1160) / 2360; (780 + 795) / 1400.
    {"edges averaged",
     {QPoint(40, 20), QPoint(78, 800), QPoint(1238, 800), QPoint(1240, 5), QPoint(800, 640)},
     {1.0f, 1.125f, 0.8f, 0.625f}},
    // (2950 + 2950) / 2360 = 2.5 and 640 / 256 = 2.5 are too large.
    {"above 2 clamps",
     {QPoint(0, 50), QPoint(0, 750), QPoint(2950, 750), QPoint(2950, 50), QPoint(256, 400)},
     {1.0f, 1.0f, 1.0f, 1.0f}},
    // (2360 + 2360) / 2360 = 2 and 400 / 200 = 2 stand.
    {"exactly 2 stands",
     {QPoint(0, 50), QPoint(0, 750), QPoint(2360, 750), QPoint(2360, 50), QPoint(640, 200)},
     {2.0f, 1.0f, 1.0f, 2.0f}},
    // (-700 - 700) / 1400 = -1 and 400 / -400 = -1 are below 0.
    {"below 0 clamps",
     {QPoint(50, 750), QPoint(50, 50), QPoint(1230, 50), QPoint(1230, 750), QPoint(640, -400)},
     {1.0f, 1.0f, 1.0f, 1.0f}},
    // All x equal: 0 / 2360 = 0 stands; 640 / 0 is infinite and clamps.
    {"zero stands, infinity clamps",
     {QPoint(100, 50), QPoint(100, 750), QPoint(100, 750), QPoint(100, 50), QPoint(0, 400)},
     {0.0f, 1.0f, 1.0f, 1.0f}},
};

TEST(CalculationTerms, FromFiveMeasuredPoints)
{
    for (const TermsCase &c : kTermsCases) {
        SCOPED_TRACE(c.name);
        expectTerms(ScreenCalibrate::calculateTerms(c.measured, kTargets), c.expected);
    }
}

TEST(CalculationTerms, NaNStands)
{
    // A 100x100 screen puts all five targets on (50, 50): zero spans in X and Y.
    const Points targets = {QPoint(50, 50), QPoint(50, 50), QPoint(50, 50), QPoint(50, 50),
                            QPoint(50, 50)};
    // X spans 0 / 0 is NaN; Y spans (10 + 10) / 0 is infinite; 50 / 0 is infinite.
    const Points measured = {QPoint(10, 0), QPoint(10, 10), QPoint(10, 10), QPoint(10, 0),
                             QPoint(0, 0)};
    const Terms terms = ScreenCalibrate::calculateTerms(measured, targets);
    EXPECT_TRUE(std::isnan(terms.fkx));
    EXPECT_FLOAT_EQ(terms.fky, 1.0f);
    EXPECT_FLOAT_EQ(terms.fxlc, 1.0f);
    EXPECT_FLOAT_EQ(terms.fylc, 1.0f);
}

TEST(ScreenCalibrateWindow, StartsSmallAndFramelessOnTop)
{
    ScreenCalibrate window;
    EXPECT_EQ(window.size(), QSize(400, 300));
    const Qt::WindowFlags flags = window.windowFlags();
    EXPECT_TRUE(flags.testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(flags.testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_EQ(window.windowType(), Qt::Tool);
}

TEST(ScreenCalibrateWindow, CoversTheScreenWithTargetsAndHitRectangles)
{
    ScreenCalibrate window;
    // A second screen to the right of a 1920 wide one.
    window.SetScreenArea(QRect(1920, 0, 1280, 800));
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.geometry(), QRect(1920, 0, 1280, 800));
    EXPECT_EQ(window.pointCounter(), 0);
    for (int i = 0; i < ScreenCalibrate::kPointCount; ++i)
        EXPECT_EQ(window.targetPoint(i), kTargets[i]) << "target " << i;
    // Left and top x + sx - 50 and y + sy - 50; right and bottom 2x + sx - 1 and 2y + sy - 1.
    const QRect expected[] = {
        QRect(QPoint(1920, 0), QPoint(2019, 99)), QRect(QPoint(1920, 700), QPoint(2019, 1499)),
        QRect(QPoint(3100, 700), QPoint(4379, 1499)), QRect(QPoint(3100, 0), QPoint(4379, 99)),
        QRect(QPoint(2510, 350), QPoint(3199, 799))};
    for (int i = 0; i < ScreenCalibrate::kPointCount; ++i)
        EXPECT_EQ(window.hitRect(i), expected[i]) << "hit rectangle " << i;
}

struct Press {
    QPoint at;
    int counter;
};

// Each miss lies one pixel outside the current hit rectangle, each hit on its edge.
const Press kPresses[] = {
    {QPoint(100, 50), 0},   {QPoint(50, 100), 0},   {QPoint(99, 99), 1},    {QPoint(50, 699), 1},
    {QPoint(100, 750), 1},  {QPoint(0, 700), 2},    {QPoint(1179, 750), 2}, {QPoint(1180, 699), 2},
    {QPoint(1279, 799), 3}, {QPoint(1230, 100), 3}, {QPoint(1179, 50), 3},  {QPoint(1180, 0), 4},
    {QPoint(589, 400), 4},  {QPoint(640, 349), 4},  {QPoint(590, 350), 5},
};

TEST(ScreenCalibrateWindow, PressesInsideTheHitRectangleAdvance)
{
    ScreenCalibrate window;
    QSignalSpy spy(&window, &ScreenCalibrate::sign_ScreenCalibrate);
    window.SetScreenArea(kScreen);
    for (const Press &press : kPresses) {
        SCOPED_TRACE(QString("press at %1,%2").arg(press.at.x()).arg(press.at.y()).toStdString());
        QTest::mouseClick(&window, Qt::LeftButton, {}, press.at);
        EXPECT_EQ(window.pointCounter(), press.counter);
        EXPECT_EQ(spy.count(), press.counter == 5 ? 1 : 0);
    }
    EXPECT_FALSE(window.isVisible()) << "the fifth point closes the window";
}

// Inside the hit rectangles, giving the "edges averaged" terms.
const Points kMeasured = {QPoint(40, 20), QPoint(78, 800), QPoint(1238, 800), QPoint(1240, 5),
                          QPoint(800, 640)};

void pressAll(ScreenCalibrate &window, const std::vector<QPoint> &points)
{
    for (const QPoint &point : points)
        QTest::mouseClick(&window, Qt::LeftButton, {}, point);
}

TEST(ScreenCalibrateWindow, TheFifthPressEmitsTheTerms)
{
    ScreenCalibrate window;
    QSignalSpy spy(&window, &ScreenCalibrate::sign_ScreenCalibrate);
    window.SetScreenArea(kScreen);
    pressAll(window, {kMeasured.begin(), kMeasured.end()});
    ASSERT_EQ(spy.count(), 1);
    const QList<QVariant> args = spy.takeFirst();
    expectTerms({args[0].toFloat(), args[1].toFloat(), args[2].toFloat(), args[3].toFloat()},
                {1.0f, 1.125f, 0.8f, 0.625f});
}

TEST(ScreenCalibrateWindow, ARunStartsFromTheFirstPoint)
{
    ScreenCalibrate window;
    window.SetScreenArea(kScreen);
    pressAll(window, {QPoint(50, 50), QPoint(50, 750)});
    ASSERT_EQ(window.pointCounter(), 2);
    window.SetScreenArea(kScreen);
    EXPECT_EQ(window.pointCounter(), 0);
}

TEST(ScreenCalibrateWindow, EscapeClosesWithoutEmitting)
{
    ScreenCalibrate window;
    QSignalSpy spy(&window, &ScreenCalibrate::sign_ScreenCalibrate);
    window.SetScreenArea(kScreen);
    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(50, 50));
    QTest::keyClick(&window, Qt::Key_A);
    EXPECT_TRUE(window.isVisible()) << "other keys go to the base class";
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(spy.count(), 0);
}

TEST(ScreenCalibrateWindow, DrawsTheCurrentCross)
{
    ScreenCalibrate window;
    window.SetScreenArea(kScreen);
    const QImage first = window.grab().toImage();
    EXPECT_EQ(first.size(), QSize(1280, 800));
    QDir().mkpath(SCREENSHOT_DIR);
    first.save(SCREENSHOT_DIR "/calibration-first-point.png");
    // Arms reach 20 pixels each way from the centre.
    for (const QPoint &p :
         {QPoint(50, 50), QPoint(31, 50), QPoint(69, 50), QPoint(50, 31), QPoint(50, 69)})
        EXPECT_EQ(first.pixelColor(p), kRed) << p.x() << "," << p.y();
    EXPECT_NE(first.pixelColor(50, 750), kRed) << "only the current cross is drawn";
    EXPECT_NE(first.pixelColor(75, 50), kRed);

    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(50, 50));
    const QImage second = window.grab().toImage();
    second.save(SCREENSHOT_DIR "/calibration-second-point.png");
    EXPECT_NE(second.pixelColor(50, 50), kRed);
    EXPECT_EQ(second.pixelColor(50, 750), kRed);
}

TEST(ScreenCalibrateWindow, DrawsTheCentreCrossClearOfTheText)
{
    ScreenCalibrate window;
    window.SetScreenArea(kScreen);
    pressAll(window, {QPoint(50, 50), QPoint(50, 750), QPoint(1230, 750), QPoint(1230, 50)});
    ASSERT_EQ(window.pointCounter(), 4);
    const QImage centre = window.grab().toImage();
    QDir().mkpath(SCREENSHOT_DIR);
    centre.save(SCREENSHOT_DIR "/calibration-centre-point.png");
    EXPECT_EQ(centre.pixelColor(640, 400), kRed);
    EXPECT_EQ(centre.pixelColor(640, 380), kRed);
    EXPECT_EQ(centre.pixelColor(640, 420), kRed);
}

class CalibrationResult : public WindowFixture
{
protected:
    void SetUp() override
    {
        WindowFixture::SetUp();
        m_Tablet = new CTablet;
        stTablet_XMLData &data = *m_Tablet->m_TabletXMLData;
        data.fKX = data.fKY = data.fXLC = data.fYLC = 1.0f;
        // The window deletes the tablets of the slots when it goes.
        CGlobalData::TabletArray[0] = m_Tablet;
        CGlobalData::TabletMap["Test Tablet"] = m_Tablet;
    }

    void select() { m_Window->InitUI("Test Tablet"); }

    void expectRecord(const Terms &expected) const
    {
        const stTablet_XMLData &data = *m_Tablet->m_TabletXMLData;
        expectTerms({data.fKX, data.fKY, data.fXLC, data.fYLC}, expected);
    }

    CTablet *m_Tablet = nullptr;
};

TEST_F(CalibrationResult, StoresIntoTheCurrentTablet)
{
    select();
    ASSERT_EQ(m_Window->currentTablet(), m_Tablet);
    m_Window->GetScreenCalibrate(0.5f, 1.5f, 0.75f, 1.25f);
    expectRecord({0.5f, 1.5f, 0.75f, 1.25f});
}

TEST_F(CalibrationResult, WithoutACurrentTabletNothingIsStored)
{
    ASSERT_EQ(m_Window->currentTablet(), nullptr);
    m_Window->GetScreenCalibrate(0.5f, 1.5f, 0.75f, 1.25f);
    expectRecord({1.0f, 1.0f, 1.0f, 1.0f});
}

TEST_F(CalibrationResult, WaitsForTheSettingsLock)
{
    select();
    CGlobalData::XMLMutex.lock();
    std::thread writer([this] { m_Window->GetScreenCalibrate(0.5f, 1.5f, 0.75f, 1.25f); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    expectRecord({1.0f, 1.0f, 1.0f, 1.0f});
    CGlobalData::XMLMutex.unlock();
    writer.join();
    expectRecord({0.5f, 1.5f, 0.75f, 1.25f});
}

TEST_F(CalibrationResult, ACalibrationRunReachesTheRecord)
{
    select();
    ScreenCalibrate window;
    QObject::connect(&window, &ScreenCalibrate::sign_ScreenCalibrate, m_Window.get(),
                     &MainWindow::GetScreenCalibrate);
    window.SetScreenArea(kScreen);
    pressAll(window, {kMeasured.begin(), kMeasured.end()});
    expectRecord({1.0f, 1.125f, 0.8f, 0.625f});
}

} // namespace
