#include "batterywidget.h"
#include "cases.h"
#include "cglobaldata.h"
#include "ctablet.h"
#include "jingximode.h"
#include "mainwindow.h"
#include "screencalibrate.h"
#include "scriboradialog.h"
#include "settingform.h"

#include <QAbstractButton>
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

// In a window of 1920 by 1080 the hole's last row is one below its nominal height. Painted
// on a second screen, the pen near its bottom right, the hole is at 960, 799 of the screen.
TEST(FineModeHole, StaysOnTheScreenAndIsReportedInDesktopCoordinates)
{
    const QPoint cases[][2] = {{{960, 540}, {800, 428}},  {{160, 112}, {0, 0}},
                               {{161, 113}, {1, 1}},      {{1910, 540}, {1600, 428}},
                               {{960, 1075}, {800, 855}}, {{960, 968}, {800, 856}}};
    for (const auto &[centre, hole] : cases)
        EXPECT_EQ(JingXiMode::HoleOrigin(centre, QSize(1920, 1080)), hole) << centre.x();
    JingXiMode overlay(QRect(1920, 0, 1280, 1024), QPoint(1920 + 1270, 1000));
    QSignalSpy spy(&overlay, &JingXiMode::GetModeRect);
    QImage image(1280, 1024, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    overlay.render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
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

// The feedback query's version is what follows the first colon, before any bracket. Setting
// the consent box is silent; clicking it sends its state.
TEST(SettingForm, FeedbackQueryAndConsentBox)
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
    QSignalSpy spy(&form, &SettingForm::CollectDataChecked);
    auto *box = form.findChild<QAbstractButton *>("HotKeyWincheckBox_1");
    for (bool shown : {false, true}) {
        form.SetDataCollectVisable(shown, shown);
        EXPECT_EQ(form.findChild<QWidget *>("SettingFormWidget2")->isHidden(), !shown);
        EXPECT_EQ(box->isChecked(), shown);
    }
    EXPECT_EQ(spy.count(), 0);
    box->click();
    ASSERT_EQ(spy.count(), 1);
    EXPECT_FALSE(spy.at(0).at(0).toBool());
}

} // namespace
