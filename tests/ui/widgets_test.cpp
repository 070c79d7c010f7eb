#include "batterywidget.h"
#include "cases.h"
#include "cglobaldata.h"
#include "elidedcombobox.h"
#include "jingximode.h"
#include "mainwindow.h"
#include "screencalibrate.h"

#include <QSignalSpy>
#include <QTest>

namespace
{

TEST(SortQRectRect, OrdersSlotsOneToNineByLeftThenTop)
{
    const QRect sentinel(7, 7, 7, 7);
    for (const QStringList &c : caseRows("sort.txt")) {
        SCOPED_TRACE(c.join(' ').toStdString());
        QRect src[kScreenSlots + 2], dst[kScreenSlots + 2];
        std::fill(std::begin(dst), std::end(dst), sentinel);
        for (int i = 5; i < c.size(); ++i)
            src[i - 4] = QRect(ints(c[i])[0], ints(c[i])[1], ints(c[i])[2], ints(c[i])[3]);
        const std::vector<QRect> unsorted(std::begin(src), std::end(src));
        const QList<int> order = ints(c[4]);
        CGlobalData::PrimaryID = c[2].toInt();
        MainWindow::SortQRectRect(src, dst, c[0].toInt(), c[1] == "1");
        EXPECT_EQ(CGlobalData::PrimaryID, c[3].toInt());
        for (int i = 0; i < int(std::size(dst)); ++i) {
            const bool sorted = i >= 1 && i <= order.size();
            EXPECT_EQ(dst[i], sorted ? unsorted[order[i - 1] + 1] : sentinel) << "slot " << i;
            EXPECT_EQ(src[i], sorted ? unsorted[order[i - 1] + 1] : unsorted[i]) << "slot " << i;
        }
    }
}

QString text(float fkx, float fky, float fxlc, float fylc)
{
    return QString("%1 %2 %3 %4").arg(fkx).arg(fky).arg(fxlc).arg(fylc);
}

TEST(CalculationTerms, FromFiveMeasuredPoints)
{
    for (const QStringList &c : caseRows("terms.txt")) {
        ScreenCalibrate::Points measured, targets;
        for (int i = 0; i < 5; ++i) {
            measured[i] = point(c[i]);
            targets[i] = point(c[9 + i]);
        }
        const auto t = ScreenCalibrate::calculateTerms(measured, targets);
        EXPECT_EQ(text(t.fkx, t.fky, t.fxlc, t.fylc), c.mid(5, 4).join(' '))
            << c.join(' ').toStdString();
    }
}

TEST(ScreenCalibrateWindow, AdvancesOnHitsDrawsTheCurrentCrossAndEmitsOnTheFifth)
{
    ScreenCalibrate window;
    QSignalSpy spy(&window, &ScreenCalibrate::sign_ScreenCalibrate);
    window.SetScreenArea(QRect(0, 0, 1280, 800));
    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(50, 50));
    QTest::keyClick(&window, Qt::Key_A);
    EXPECT_TRUE(window.isVisible()) << "other keys go to the base class";
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    window.SetScreenArea(QRect(1920, 0, 1280, 800));
    ASSERT_EQ(window.geometry(), QRect(1920, 0, 1280, 800));
    EXPECT_EQ(window.pointCounter(), 0) << "a run starts from the first point";
    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(40, 100));
    EXPECT_EQ(window.pointCounter(), 0) << "a miss does not advance";
    const std::vector<QStringList> points = caseRows("calibrate.txt");
    for (int i = 0; i < ScreenCalibrate::kPointCount; ++i) {
        const QPoint t = point(points[i][0]);
        EXPECT_EQ(window.targetPoint(i), t);
        EXPECT_EQ(window.hitRect(i), QRect(point(points[i][1]), point(points[i][2])));
        const QImage shot = window.grab().toImage();
        for (const QPoint &p : {t, t + QPoint(-19, 0), t + QPoint(0, 19)})
            EXPECT_EQ(shot.pixelColor(p), QColor(255, 0, 2)) << "cross " << i;
        EXPECT_NE(shot.pixelColor(point(points[(i + 1) % 5][0])), QColor(255, 0, 2)) << i;
        EXPECT_EQ(spy.count(), 0);
        QTest::mouseClick(&window, Qt::LeftButton, {}, point(points[i][3]));
        EXPECT_EQ(window.pointCounter(), i + 1);
    }
    EXPECT_FALSE(window.isVisible());
    ASSERT_EQ(spy.count(), 1);
    const QList<QVariant> a = spy.takeFirst();
    EXPECT_EQ(text(a[0].toFloat(), a[1].toFloat(), a[2].toFloat(), a[3].toFloat()),
              "1 1.125 0.8 0.625");
}

// On a second screen, the pen near its bottom right: the hole is at 960, 799 of the screen.
TEST(FineModeHole, StaysOnTheScreenAndIsReportedInDesktopCoordinates)
{
    for (const QStringList &c : caseRows("holes.txt"))
        EXPECT_EQ(JingXiMode::HoleOrigin(point(c[0]), QSize(1920, 1080)), point(c[1]))
            << c[0].toStdString();
    JingXiMode overlay(QRect(1920, 0, 1280, 1024), QPoint(1920 + 1270, 1000));
    QSignalSpy spy(&overlay, &JingXiMode::GetModeRect);
    overlay.grab();
    ASSERT_GE(spy.count(), 1);
    EXPECT_EQ(spy.last().at(0).toRect(), QRect(QPoint(2880, 814), QPoint(3199, 1023)));
}

TEST(PressureLevel, FromTheSteepnessOfTheMiddleLeg)
{
    for (const QStringList &c : caseRows("pressure.txt"))
        EXPECT_EQ(MainWindow::DidPressurePointsConvertToIntValue(
                      {c[0].toFloat(), c[1].toFloat(), c[2].toFloat(), c[3].toFloat()}),
                  c[4].toInt())
            << c[2].toStdString();
}

TEST(BatteryWidget, PicksTheSpriteRowOfTheCharge)
{
    BatteryWidget widget;
    for (const QStringList &c : caseRows("battery.txt")) {
        widget.SetBatteryValue(c[0].toInt(), 0);
        EXPECT_EQ(widget.GetValue(), c[1].toInt()) << c[0].toStdString();
        EXPECT_EQ(widget.barStyle(), c.mid(2).join(' ')) << c[0].toStdString();
    }
}

// A name too long for the closed box shows whole in the tool tip, a short one none.
TEST(ElidedComboBox, ToolTipCarriesOnlyANameThatDoesNotFit)
{
    const QString longName = "Switch the Function of Wheel One (Ctrl+Shift+Alt+F12)";
    ElidedComboBox box;
    box.addItems({"Undo", longName});
    box.resize(120, 26);
    box.show();
    EXPECT_EQ(box.toolTip(), QString());
    box.setCurrentIndex(1);
    EXPECT_EQ(box.toolTip(), longName);
    box.setItemText(1, "Redo");
    EXPECT_EQ(box.toolTip(), QString()) << "a text changed in place";
    box.setItemText(1, longName);
    box.resize(900, 26);
    EXPECT_EQ(box.toolTip(), QString()) << "widened";
    box.setCurrentIndex(0);
    box.resize(120, 26);
    QFont large = box.font();
    large.setPixelSize(60);
    box.setFont(large);
    EXPECT_EQ(box.toolTip(), "Undo") << "a larger font";
}

} // namespace
