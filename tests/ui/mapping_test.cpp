#include "ctablet.h"
#include "mappingwidget.h"
#include "qrubber.h"
#include "screensettingwidget.h"
#include "selectareasettingdialog.h"
#include "selectscreenarea.h"
#include "workareasettingwidget.h"

#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

namespace
{

QRect spinRect(const QWidget &widget, char letter)
{
    int v[4];
    for (int i = 0; i < 4; ++i)
        v[i] = widget.findChild<QSpinBox *>(QString("spinBox_%1%2").arg(letter).arg("XYWH"[i]))
                   ->value();
    return QRect(v[0], v[1], v[2], v[3]);
}

// Through the window, as a real pointer: offscreen, the widget overloads cannot move the mouse.
void mouse(QTest::MouseAction action, QWidget *widget, QPoint pos)
{
    QTest::mouseEvent(action, widget->window()->windowHandle(), Qt::LeftButton, {},
                      widget->mapTo(widget->window(), pos));
}

void setSpin(QWidget &widget, const char *name, int value)
{
    widget.findChild<QSpinBox *>(name)->setValue(value);
}

TEST(Rubber, DragGivesTheNormalisedRectangleClampedToTheWidget)
{
    QWidget parent;
    auto *rubber = new QRubber(&parent);
    rubber->setGeometry(30, 40, 200, 100);
    parent.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&parent));
    QSignalSpy spy(rubber, &QRubber::RubberRectChange);
    const struct {
        QPoint press, move;
        QRect band;
    } drags[] = {{{150, 80}, {250, -5}, QRect(QPoint(150, 0), QPoint(199, 80))},
                 {{199, 99}, {260, 150}, QRect(199, 99, 1, 1)}};
    for (const auto &drag : drags) {
        spy.clear();
        mouse(QTest::MousePress, rubber, drag.press);
        mouse(QTest::MouseMove, rubber, drag.move);
        mouse(QTest::MouseRelease, rubber, drag.move);
        ASSERT_EQ(spy.size(), 1);
        EXPECT_EQ(spy[0][0].toRect(), drag.band);
        EXPECT_EQ(spy[0][1].toRect(), QRect(30, 40, 200, 100));
    }
    spy.clear();
    mouse(QTest::MouseClick, rubber, QPoint(5, 5));
    EXPECT_EQ(spy.size(), 0) << "a click without a move chooses nothing";
}

// The screen entry 1920x1080 fits the picture box as 337x190; the tablet of 100 by 60 as
// 316x190, where one pixel of band is less than one unit.
TEST(AreaSettingWidgets, BandBecomesUnitsAndSpinBoxesKeepTheAreaInside)
{
    ScreenSettingWidget screen;
    const QRect screens[] = {QRect(), QRect(0, 0, 1920, 1080), QRect(1920, 0, 1920, 1080)};
    screen.SetScreens(screens, 2, screens[2], nullptr);
    WorkAreaSettingWidget tablet;
    tablet.SetTablet(QRect(0, 0, 100, 60), QRect(0, 0, 100, 60), QRect(160, 25, 360, 190), "", 0);
    ASSERT_EQ(screen.rubber()->size(), QSize(337, 190));
    ASSERT_EQ(tablet.rubber()->size(), QSize(316, 190));
    const struct {
        AreaSettingWidget *widget;
        char letter;
        QRect band, units;
    } cases[] = {{&screen, 'S', QRect(10, 20, 100, 50), QRect(1976, 113, 569, 284)},
                 {&tablet, 'T', QRect(0, 0, 1, 1), QRect(0, 0, 1, 1)},
                 {&tablet, 'T', QRect(315, 189, 1, 1), QRect(99, 59, 1, 1)},
                 {&tablet, 'T', QRect(158, 95, 158, 95), QRect(50, 30, 50, 30)}};
    for (const auto &c : cases) {
        emit c.widget->rubber()->RubberRectChange(c.band, c.widget->rubber()->geometry());
        EXPECT_EQ(spinRect(*c.widget, c.letter), c.units) << c.band.x() << "," << c.band.y();
    }

    // A moved start shortens the span, a grown span pulls the start back; the band follows.
    setSpin(screen, "spinBox_SW", 1200);
    setSpin(screen, "spinBox_SX", 3000);
    EXPECT_EQ(spinRect(screen, 'S'), QRect(3000, 113, 840, 284));
    setSpin(screen, "spinBox_SH", 1000);
    EXPECT_EQ(spinRect(screen, 'S'), QRect(3000, 80, 840, 1000));
    EXPECT_EQ(screen.rubber()->GetRubberRect(), QRect(189, 14, 147, 175));
    setSpin(tablet, "spinBox_TY", 60);
    EXPECT_EQ(spinRect(tablet, 'T'), QRect(50, 60, 50, 1)) << "0 high becomes the minimum";
    setSpin(tablet, "spinBox_TW", 80);
    EXPECT_EQ(spinRect(tablet, 'T'), QRect(20, 60, 80, 1));
}

TEST(SelectScreenAreaWindow, TwoPressesGiveTheNormalisedRectangleThenItCloses)
{
    for (const double scale : {1.0, 0.5}) {
        QPointer<SelectScreenArea> pick = new SelectScreenArea;
        pick->SetScreenArea(QRect(100, 50, 400, 300), scale, scale);
        pick->show();
        QSignalSpy spy(pick.data(), &SelectScreenArea::SetScreenRect);
        mouse(QTest::MouseClick, pick, QPoint(300, 200));
        EXPECT_TRUE(pick->isVisible());
        mouse(QTest::MousePress, pick, QPoint(20, 10));
        ASSERT_EQ(spy.size(), 1);
        EXPECT_EQ(spy[0][0].toRect(), scale == 1.0 ? QRect(QPoint(120, 60), QPoint(400, 250))
                                                   : QRect(QPoint(110, 55), QPoint(250, 150)));
        mouse(QTest::MouseRelease, pick, QPoint(20, 10));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(pick.isNull());
    }
}

TEST(SelectAreaDialog, PenPickFillsTheWorkAreaAndLeavingEndsTheSelection)
{
    CTablet tablet;
    SelectAreaSettingDialog dialog;
    dialog.SetSelectTabletType(true);
    dialog.InitUI(&tablet, QRect(0, 0, 1000, 600), QRect(0, 0, 1000, 600), QRect(160, 25, 360, 190),
                  "", 0);
    dialog.findChild<QPushButton *>("SetWorkAreaPushButton")->click();
    EXPECT_TRUE(tablet.m_AreaSelecting);
    emit tablet.SetAreaOk(100, 200, 950, 300);
    EXPECT_EQ(dialog.GetWorkRect(), QRect(100, 200, 900, 300)) << "cut to the tablet's width";
    dialog.reject();
    EXPECT_FALSE(tablet.m_AreaSelecting);
}

TEST(MappingPreview, TabletAreaIsStoredOnlyWhenItIsARectangle)
{
    CTablet tablet;
    tablet.m_DeviceAttributes.Width = 1000;
    tablet.m_DeviceAttributes.Height = 500;
    mappingwidget preview;
    preview.resize(700, 230);
    preview.SetCTablet(&tablet);
    const stTablet_XMLData &s = *tablet.m_TabletXMLData;
    preview.Tablet_valueChanged(QRect(QPoint(10, 20), QPoint(9, 40)));
    EXPECT_EQ(QRect(s.TX, s.TY, s.TW, s.TH), QRect());
    preview.Tablet_valueChanged(QRect(250, 0, 500, 250));
    EXPECT_EQ(QRect(s.TX, s.TY, s.TW, s.TH), QRect(250, 0, 500, 250));
    // Right half 326x206 inside the margins; the tablet's 2:1 fits as 326x163 from 362,33.
    EXPECT_EQ(preview.tabletFrame(), QRect(362, 33, 326, 163));
    EXPECT_EQ(preview.tabletAreaFrame(), QRect(443, 33, 163, 81));
}

} // namespace
