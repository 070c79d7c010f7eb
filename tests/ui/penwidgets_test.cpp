#include "cglobaldata.h"
#include "cpendrawwidget.h"
#include "digitalpennames.h"
#include "drawlinetestdialog.h"
#include "mainwindow.h"
#include "penbuttonslot.h"
#include "penmath.h"
#include "penstatus.h"
#include "qpressadjustwedget.h"
#include "selectpenmenulist.h"

#include <QComboBox>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QWidgetAction>
#include <gtest/gtest.h>

#include <tuple>

namespace
{

bool same(SPresslvPoints a, SPresslvPoints b)
{
    return a.P0 == b.P0 && a.P1X == b.P1X && a.P1Y == b.P1Y && a.P2 == b.P2;
}

struct Editor {
    QPressAdjustWedget widget;
    QSlider *p0 = widget.findChild<QSlider *>("pressSliderP0");
    QSlider *p2 = widget.findChild<QSlider *>("pressSliderP2");
    QWidget *handle = widget.findChild<QWidget *>("pressHandle");
    QList<SPresslvPoints> emitted;

    Editor()
    {
        QObject::connect(&widget, &QPressAdjustWedget::PressSensitivityChange,
                         [this](SPresslvPoints points) { emitted << points; });
        widget.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget));
    }
    // Through the window, as a real pointer would.
    void drag(QPoint from, QPoint by)
    {
        QWindow *window = widget.windowHandle();
        QTest::mousePress(window, Qt::LeftButton, {}, from);
        QTest::mouseMove(window, from + by);
        QTest::mouseRelease(window, Qt::LeftButton, {}, from + by);
    }
    QPoint handleCentre() const { return handle->mapTo(&widget, QPoint(10, 10)); }
};

// From the middle (top-left 58, 58), the handle's top-left stops at the bounds; the control
// point is its centre, 10 on from the top-left, in the square at 10 of 116.
TEST(PressCurveEditor, DraggedHandleStopsAtItsBoundsAndGivesItsCentre)
{
    const struct {
        int p0, p2;
        QPoint by, topLeft;
        int level;
    } drags[] = {{0, 0, {13, -7}, {71, 51}, 0},
                 {0, 0, {300, 300}, {116, 116}, 3},
                 {20, 0, {-45, -300}, {20, 0}, -3},
                 {0, 40, {25, 0}, {82, 58}, 0},
                 {0, 0, {-300, 0}, {0, 58}, -3}};
    Editor editor;
    for (const auto &d : drags) {
        SCOPED_TRACE(d.by.x());
        editor.widget.Reset();
        editor.p0->setValue(d.p0);
        editor.p2->setValue(d.p2);
        editor.emitted.clear();
        editor.drag(editor.handleCentre(), d.by);
        EXPECT_EQ(editor.handle->pos(), d.topLeft);
        EXPECT_EQ(editor.widget.P1X, d.topLeft.x() / 116.0f);
        EXPECT_EQ(editor.widget.P1Y, d.topLeft.y() / 116.0f);
        ASSERT_EQ(editor.emitted.size(), 1);
        EXPECT_TRUE(same(editor.emitted[0], editor.widget.GetPoints()));
        EXPECT_EQ(MainWindow::DidPressurePointsConvertToIntValue(editor.emitted[0]), d.level);
    }
    editor.drag(editor.handleCentre() + QPoint(11, 0), QPoint(-30, 0));
    EXPECT_EQ(editor.emitted.size(), 1) << "a press beside the handle drags nothing";
}

TEST(PressCurveEditor, LevelsGiveTheirCurvesSlidersStopAtTheHandleCurveIsTheEnginesOwn)
{
    Editor editor;
    editor.p0->setValue(100);
    editor.p2->setValue(90);
    EXPECT_EQ(editor.p0->value(), 58);
    EXPECT_EQ(editor.p2->value(), 58);
    EXPECT_TRUE(same(editor.widget.GetPoints(), {0.5f, 0.5f, 0.5f, 0.5f}));
    EXPECT_EQ(editor.emitted.size(), 2);
    for (short level = -3; level <= 3; ++level) {
        editor.widget.SetPressSensitivityLv(level);
        EXPECT_EQ(MainWindow::DidPressurePointsConvertToIntValue(editor.widget.GetPoints()), level);
    }
    EXPECT_TRUE(same(editor.widget.GetPoints(), {0.14f, 0.93f, 0.93f, 1}));
    EXPECT_EQ(editor.p0->value(), 16);
    editor.widget.SetPressSensitivityLv(4);
    editor.widget.SetPressSensitivityLv(-4);
    EXPECT_TRUE(same(editor.widget.GetPoints(), {0.14f, 0.93f, 0.93f, 1}));
    const QImage image = editor.widget.grab().toImage();
    const QPoint square =
        editor.widget.findChild<QWidget *>("pressCurveArea")->pos() + QPoint(10, 10);
    const double out = penmath::curveOutput(editor.widget.GetPoints(), 0.8);
    const QColor onCurve =
        image.pixelColor(square + QPoint(qRound(116 * 0.8), qRound(116 * (1 - out))));
    EXPECT_GT(onCurve.green() - onCurve.red(), 80) << "the curve's teal";
}

QStringList texts(const QMenu &menu)
{
    QStringList list;
    for (const QAction *action : menu.actions())
        list << action->text();
    return list;
}

TEST(PenMenu, MaskHidesEntriesDeleteRemovesAndChoiceNamesThePen)
{
    SelectPenMenuList menu;
    menu.CreateMenuList();
    ASSERT_EQ(menu.actions().size(), 8);
    menu.SetPenShowInMenu(0x09);
    EXPECT_EQ(texts(menu), QStringList({tagDigitalPenName[0], tagDigitalPenName[3]}));
    QList<QPair<QString, int>> deleted, chosen;
    QObject::connect(&menu, &SelectPenMenuList::DeletePenSelected,
                     [&](QString name, int index) { deleted << qMakePair(name, index); });
    QObject::connect(&menu, &SelectPenMenuList::MenuSelected,
                     [&](QString name, int index) { chosen << qMakePair(name, index); });
    auto *roller = static_cast<QWidgetAction *>(menu.actions()[1])->defaultWidget();
    roller->findChild<QPushButton *>("pushButton_deletePen")->click();
    EXPECT_EQ(deleted, (QList<QPair<QString, int>>{{tagDigitalPenName[3], 3}}));
    EXPECT_EQ(texts(menu), QStringList({tagDigitalPenName[0]}));
    menu.popup(QPoint(100, 100));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    auto *first = static_cast<QWidgetAction *>(menu.actions()[0])->defaultWidget();
    const QPoint onName = first->mapTo(&menu, QPoint(30, 15));
    QTest::mouseMove(menu.windowHandle(), onName);
    QTest::mouseClick(menu.windowHandle(), Qt::LeftButton, {}, onName);
    EXPECT_EQ(chosen, (QList<QPair<QString, int>>{{tagDigitalPenName[0], 0}}));
    EXPECT_FALSE(menu.isVisible());
}

// Rows of one pixel column that hold ink.
int inkIn(const QImage &image, int x, int top, int bottom)
{
    int rows = 0;
    for (int y = top; y < bottom; ++y)
        rows += qAlpha(image.pixel(x, y)) > 0;
    return rows;
}

TEST(PressureTest, StrokesWidenWithPressureAndHoveringLeavesNoInk)
{
    QRect *const screens = CGlobalData::ScreenArray, *const logic = CGlobalData::LogicScreenArray;
    const QRect saved[] = {screens[1], screens[2], logic[1]};
    screens[1] = logic[1] = QRect(0, 0, 800, 600);
    screens[2] = QRect(800, 0, 1600, 1200);
    DrawLineTestDialog dialog;
    dialog.move(50, 50);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    auto *field = dialog.findChild<CPenDrawWidget *>("widget_draw");
    const QPoint o = field->mapToGlobal(QPoint(0, 0));
    const auto pen = [&](int x, int y, int pressure) {
        dialog.PenEvent(pressure ? 0xA1 : kPenStatusPenHover, o.x() + x, o.y() + y, pressure);
    };
    dialog.PenEvent(kPenStatusLeave, 0, 0, 0);
    pen(20, 40, 0);
    pen(300, 40, 0);
    EXPECT_EQ(inkIn(field->pixmap().toImage(), 200, 0, 262), 0);
    pen(20, 40, 1000);
    pen(300, 40, 1000);
    pen(20, 140, 0);
    pen(300, 140, 8000);
    // The other screen, twice as large, lands on the same place of the field's screen.
    dialog.PenEvent(kPenStatusLeave, 0, 0, 0);
    dialog.PenEvent(0xA1, 800 + 2 * (o.x() + 400), 2 * (o.y() + 220), 8191);
    const QImage ink = field->pixmap().toImage();
    EXPECT_NEAR(inkIn(ink, 200, 0, 90), 2, 1) << "1000 of 8191 of 12 pixels";
    EXPECT_NEAR(inkIn(ink, 200, 90, 190), 12, 1);
    EXPECT_GE(inkIn(ink, 400, 210, 230), 11) << "a tap leaves a dot";
    dialog.findChild<QPushButton *>("pushButton_clear")->click();
    EXPECT_EQ(inkIn(field->pixmap().toImage(), 200, 0, 262), 0);
    std::tie(screens[1], screens[2], logic[1]) = std::tie(saved[0], saved[1], saved[2]);
}

} // namespace

namespace
{

// A custom function is stored only when the editor accepts it, cancel leaves the button as it
// was, and any other choice clears the function.
TEST(PenButtonChoice, CustomOnlyWhenAcceptedAndOtherChoicesClearIt)
{
    QComboBox box;
    const PenButtonSlot slot(&box);
    stPenBtn button{};
    button.Actid = 207;
    slot.Show(button);
    slot.Show(button);
    ASSERT_EQ(box.count(), 3);
    const auto editor = [](bool accept) {
        return [accept](QString &func) {
            func = "1|Undo|Ctrl+Z|29:37+44:52";
            return accept;
        };
    };
    box.setCurrentIndex(PenButtonSlot::kCustomEntry);
    EXPECT_FALSE(slot.Activate(button, editor(false)));
    EXPECT_EQ(box.currentIndex(), PenButtonSlot::kActionEntry);
    EXPECT_EQ(button.id, 0);
    box.setCurrentIndex(PenButtonSlot::kCustomEntry);
    EXPECT_TRUE(slot.Activate(button, editor(true)));
    EXPECT_EQ(button.id, 1);
    EXPECT_STREQ(button.func, "1|Undo|Ctrl+Z|29:37+44:52");
    EXPECT_EQ(box.itemText(PenButtonSlot::kCustomEntry), "Undo");
    box.setCurrentIndex(PenButtonSlot::kNoneEntry);
    EXPECT_TRUE(slot.Activate(button, editor(false)));
    EXPECT_EQ(button.id, 2);
    EXPECT_STREQ(button.func, "");
}

} // namespace
