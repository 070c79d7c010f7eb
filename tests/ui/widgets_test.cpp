#include "batterywidget.h"
#include "cases.h"
#include "cglobaldata.h"
#include "cscreeninfos.h"
#include "ctablet.h"
#include "jingximode.h"
#include "mainwindow.h"
#include "screencalibrate.h"
#include "scriboradialog.h"
#include "settingform.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <cstring>

namespace
{

TEST(SortQRectRect, OrdersSlotsOneToNineByLeftThenTop)
{
    const QRect sentinel(7, 7, 7, 7);
    for (const QStringList &c : caseRows("sort.txt")) {
        SCOPED_TRACE(c.join(' ').toStdString());
        QRect src[kScreenSlots + 2], dst[kScreenSlots + 2];
        std::fill(std::begin(src), std::end(src), sentinel);
        std::fill(std::begin(dst), std::end(dst), sentinel);
        for (int i = 5; i < c.size(); ++i) {
            const QList<int> r = ints(c[i]);
            src[i - 4] = QRect(r[0], r[1], r[2], r[3]);
        }
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
    CGlobalData::PrimaryID = 0;
}

TEST(CScreenInfos, ReportsTheOffscreenDesktopOrNullWithoutOne)
{
    const CScreenInfos infos, none(nullptr);
    EXPECT_EQ(infos.GetFirstScreenRect(), QRect(0, 0, 800, 600));
    EXPECT_EQ(infos.GetLastScreenRect(), QRect(0, 0, 800, 600));
    EXPECT_EQ(none.GetScreenCount(), 0);
    EXPECT_TRUE(none.GetFirstScreenRect().isNull() && none.GetLastScreenRect().isNull() &&
                none.GetAllScreenRect().isNull());
}

using Points = ScreenCalibrate::Points;

// The targets of a 1280x800 screen: 50 in from each corner, and the centre.
const Points kTargets = {QPoint(50, 50), QPoint(50, 750), QPoint(1230, 750), QPoint(1230, 50),
                         QPoint(640, 400)};

QString text(float fkx, float fky, float fxlc, float fylc)
{
    return QString("%1 %2 %3 %4").arg(fkx).arg(fky).arg(fxlc).arg(fylc);
}

TEST(CalculationTerms, FromFiveMeasuredPoints)
{
    for (const QStringList &c : caseRows("terms.txt")) {
        SCOPED_TRACE(c.join(' ').toStdString());
        Points measured, targets = kTargets;
        for (int i = 0; i < 5; ++i) {
            measured[i] = point(c[i]);
            targets[i] = c.size() > 9 ? point(c[9 + i]) : targets[i];
        }
        const auto t = ScreenCalibrate::calculateTerms(measured, targets);
        EXPECT_EQ(text(t.fkx, t.fky, t.fxlc, t.fylc), c.mid(5, 4).join(' '));
    }
}

// Right of a 1920 wide screen: hit rectangles are global, the measured points local.
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
    // From 50 ahead of the target to twice its offset.
    const QRect hits[] = {
        QRect(QPoint(1920, 0), QPoint(2019, 99)), QRect(QPoint(1920, 700), QPoint(2019, 1499)),
        QRect(QPoint(3100, 700), QPoint(4379, 1499)), QRect(QPoint(3100, 0), QPoint(4379, 99)),
        QRect(QPoint(2510, 350), QPoint(3199, 799))};
    const Points measured = {QPoint(40, 20), QPoint(78, 800), QPoint(1238, 800), QPoint(1240, 5),
                             QPoint(800, 640)};
    for (int i = 0; i < ScreenCalibrate::kPointCount; ++i) {
        const QPoint t = kTargets[i];
        EXPECT_EQ(window.targetPoint(i), t);
        EXPECT_EQ(window.hitRect(i), hits[i]);
        const QImage shot = window.grab().toImage();
        for (const QPoint &p : {t, t + QPoint(-19, 0), t + QPoint(0, 19)})
            EXPECT_EQ(shot.pixelColor(p), QColor(255, 0, 2)) << "cross " << i;
        EXPECT_NE(shot.pixelColor(kTargets[(i + 1) % 5]), QColor(255, 0, 2)) << "only one cross";
        EXPECT_EQ(spy.count(), 0);
        QTest::mouseClick(&window, Qt::LeftButton, {}, measured[i]);
        EXPECT_EQ(window.pointCounter(), i + 1);
    }
    EXPECT_FALSE(window.isVisible());
    ASSERT_EQ(spy.count(), 1);
    const QList<QVariant> a = spy.takeFirst();
    EXPECT_EQ(text(a[0].toFloat(), a[1].toFloat(), a[2].toFloat(), a[3].toFloat()),
              "1 1.125 0.8 0.625");
}

// A window of 1920 by 1080; the hole's last row is one below its nominal height.
TEST(FineModeHole, StaysOnTheScreen)
{
    const QPoint cases[][2] = {{{960, 540}, {800, 428}},  {{160, 112}, {0, 0}},
                               {{161, 113}, {1, 1}},      {{1910, 540}, {1600, 428}},
                               {{960, 1075}, {800, 855}}, {{960, 968}, {800, 856}}};
    for (const auto &[centre, hole] : cases)
        EXPECT_EQ(JingXiMode::HoleOrigin(centre, QSize(1920, 1080)), hole) << centre.x();
}

// On a second screen, the pen near its bottom right: hole at 960, 799 of the screen.
TEST(FineModeHole, PaintingReportsTheBodyInDesktopCoordinates)
{
    JingXiMode overlay(QRect(1920, 0, 1280, 1024), QPoint(1920 + 1270, 1000));
    QSignalSpy spy(&overlay, &JingXiMode::GetModeRect);
    QImage image(1280, 1024, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    overlay.render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
    ASSERT_GE(spy.count(), 1);
    EXPECT_EQ(spy.last().at(0).toRect(), QRect(QPoint(2880, 814), QPoint(3199, 1023)));
}

// Slider levels -3 to 3 by the steepness (1 - P1Y) / |P1X - P0|; thresholds are exclusive.
TEST(PressureLevel, FromTheSteepnessOfTheMiddleLeg)
{
    const std::pair<float, int> cases[] = {{10.29f, -3}, {10.27f, -2}, {3.01f, -2}, {3.0f, -1},
                                           {1.40f, -1},  {1.38f, 0},   {0.70f, 0},  {0.68f, 1},
                                           {0.34f, 1},   {0.32f, 2},   {0.21f, 2},  {0.19f, 3}};
    for (const auto &[v, level] : cases)
        EXPECT_EQ(MainWindow::DidPressurePointsConvertToIntValue({0, 1.0f / 32, 1 - v / 32, 1}),
                  level)
            << v;
    // A vertical middle leg is infinitely steep; a leg's width counts whichever way it runs.
    EXPECT_EQ(MainWindow::DidPressurePointsConvertToIntValue({0.3f, 0.3f, 0.5f, 1}), -3);
    EXPECT_EQ(MainWindow::DidPressurePointsConvertToIntValue({1.0f / 16, 1.0f / 32, 0.84375f, 1}),
              -2);
}

// Seven sprite rows of 13 pixels, full at the top; the value is kept within 0 to 100.
TEST(BatteryWidget, PicksTheSpriteRowOfTheCharge)
{
    const int cases[][3] = {{-5, 0, 6},  {0, 0, 6},   {1, 1, 5},   {20, 20, 5},   {21, 21, 4},
                            {60, 60, 3}, {61, 61, 2}, {99, 99, 1}, {100, 100, 0}, {140, 100, 0}};
    BatteryWidget widget;
    for (const auto &[value, stored, row] : cases) {
        widget.SetBatteryValue(value, 0);
        EXPECT_EQ(widget.GetValue(), stored) << value;
        EXPECT_EQ(widget.barStyle(),
                  QString("border-image:url(:/image/Res/battery_uncharing.png) %1 0 %2 0 0;")
                      .arg(13 * row)
                      .arg(78 - 13 * row))
            << value;
    }
}

// The head strip ends at a rounded y of 79; global positions stay those of the press.
TEST(ScriboraDialog, OnlyTheHeadStripDrags)
{
    for (const auto &[y, drags] : {std::pair{0.0, true}, {79.4, true}, {79.5, false}}) {
        ScriboraDialog dialog;
        dialog.setGeometry(200, 100, 300, 200);
        for (const auto &[type, at] : {std::pair{QEvent::MouseButtonPress, QPointF(50, y)},
                                       {QEvent::MouseMove, QPointF(60, y + 5)},
                                       {QEvent::MouseButtonRelease, QPointF(80, y + 20)}}) {
            QMouseEvent event(type, at, at, QPointF(200, 100) + at, Qt::LeftButton, Qt::LeftButton,
                              Qt::NoModifier);
            QApplication::sendEvent(&dialog, &event);
        }
        EXPECT_EQ(dialog.pos(), drags ? QPoint(230, 120) : QPoint(200, 100)) << y;
    }
}

// Dialog 101 by 61. Window: 100 + 499 / 2, 50 + 439 / 2. Owner at 120,80: 299 / 2, 239 / 2.
TEST(ScriboraDialog, CentresOverTheOwnerOnScreen)
{
    QWidget window;
    window.setGeometry(100, 50, 600, 500);
    QWidget owner(&window);
    owner.setGeometry(20, 30, 400, 300);
    for (const auto &[parent, centred] :
         {std::pair{&window, QPoint(349, 269)}, {&owner, QPoint(269, 199)}}) {
        ScriboraDialog dialog(parent);
        EXPECT_EQ(dialog.parentWidget(), nullptr);
        dialog.resize(101, 61);
        dialog.ShowDialogInCenter();
        EXPECT_EQ(dialog.pos(), centred);
    }
}

// The version is what follows the first colon, before any bracket.
TEST(SettingForm, FeedbackQueryCarriesLanguageDeviceAndVersions)
{
    CTablet tablet;
    std::strcpy(tablet.m_DeviceAttributes.ShowName, "Pad 10");
    std::strcpy(tablet.m_DeviceAttributes.ICVersion, "20240105");
    std::strcpy(tablet.m_DeviceAttributes.SerialNumber, "SN123");
    SettingForm form;
    for (const auto &[label, version] :
         {std::pair{"Ver:3.4.9", "3.4.9"}, {"Ver:3.4.11(7169b73)", "3.4.11"}, {"Ver:1:2", "1:2"}}) {
        form.SetCheckButtonStatus(&tablet, "German", label);
        EXPECT_TRUE(form.FeedbackUrl().startsWith(
            QString("https://www.scribora.com/feedback?drive_lang=German&product_name=Pad 10"
                    "&firmware_version=20240105&drive_version=V%1&serial_number=SN123"
                    "&system_version=")
                .arg(version)))
            << form.FeedbackUrl().toStdString();
    }
}

// Setting the consent box is silent; clicking it sends its state.
TEST(SettingForm, ConsentPartShowsSilentlyAndSendsClicks)
{
    SettingForm form;
    QSignalSpy spy(&form, &SettingForm::CollectDataChecked);
    QWidget *consent = form.findChild<QWidget *>("SettingFormWidget2");
    auto *box = form.findChild<QAbstractButton *>("HotKeyWincheckBox_1");
    for (bool shown : {false, true}) {
        form.SetDataCollectVisable(shown, shown);
        EXPECT_EQ(consent->isHidden(), !shown);
        EXPECT_EQ(box->isChecked(), shown);
    }
    EXPECT_EQ(spy.count(), 0);
    box->click();
    ASSERT_EQ(spy.count(), 1);
    EXPECT_FALSE(spy.at(0).at(0).toBool());
}

} // namespace
