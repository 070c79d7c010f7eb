#include "qappitemwidget.h"
#include "qtexticonbutton.h"

#include <QFileIconProvider>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace
{

// Real files, so that the icon provider has something to show.
const QStringList kApps = {"/bin/sh",   "/usr/bin/env", "/bin/ls",    "/bin/cat",
                           "/bin/echo", "/bin/true",    "/bin/false", "/bin/mkdir"};

QTextIconButton *button(QAppItemWidget &strip, int number)
{
    return strip.findChild<QTextIconButton *>(QString("toolButton_%1").arg(number));
}

// The buttons shown, by title, and the selected one's number.
QString shown(QAppItemWidget &strip)
{
    QStringList titles;
    int selected = 0;
    for (int i = 1; i <= QAppItemWidget::kButtonCount; ++i) {
        if (button(strip, i)->isVisibleTo(&strip))
            titles << button(strip, i)->getButtonTitle();
        if (button(strip, i)->isSelected())
            selected = selected ? -1 : i;
    }
    return titles.join(' ') + QString(" [%1]").arg(selected);
}

TEST(AppStrip, AddsSevenProgramsAndRefusesEmptyDuplicateAndFurtherOnes)
{
    for (const QString &app : kApps)
        ASSERT_FALSE(QFileIconProvider().icon(QFileInfo(app)).isNull()) << app.toStdString();
    QAppItemWidget strip;
    EXPECT_FALSE(strip.doAddItem(""));
    EXPECT_FALSE(strip.doAddItem("Other.app"));
    for (const QString &app : kApps.mid(0, 7))
        EXPECT_TRUE(strip.doAddItem(app));
    EXPECT_FALSE(strip.doAddItem("/bin/ls"));
    strip.doAddItem(kApps[7]);
    EXPECT_EQ(strip.getAppCount(), 8);
    EXPECT_EQ(shown(strip), "Other sh env ls cat echo true false [1]");
}

TEST(AppStrip, RemovingKeepsTheNumberOrTakesTheOneBeforeAndCleaningLeavesOther)
{
    QAppItemWidget strip;
    for (const QString &app : kApps.mid(0, 3))
        strip.doAddItem(app);
    QSignalSpy spy(&strip, &QAppItemWidget::onSelectAppItem);
    const struct {
        int click;
        QString path;
        int number;
        QString strip;
    } steps[] = {{4, "/usr/bin/env", 3, "Other sh env [3]"},
                 {2, "/usr/bin/env", 2, "Other env [2]"},
                 {2, "Other.app", 1, "Other [1]"}};
    for (const auto &step : steps) {
        button(strip, step.click)->click();
        spy.clear();
        strip.removeSelectItem();
        ASSERT_EQ(spy.size(), 1);
        EXPECT_EQ(spy[0][0].toString(), step.path);
        EXPECT_EQ(spy[0][1].toInt(), step.number);
        EXPECT_EQ(strip.getSelectAppPath(), step.path);
        EXPECT_EQ(shown(strip), step.strip);
    }
    spy.clear();
    strip.removeSelectItem();
    EXPECT_EQ(spy.size(), 0);
    EXPECT_EQ(strip.getAppCount(), 1);
    strip.doAddItem(kApps[0]);
    button(strip, 2)->click();
    strip.cleanAppItem();
    EXPECT_EQ(strip.getSelectAppPath(), "Other.app");
    EXPECT_EQ(shown(strip), "Other [1]");
}

} // namespace
