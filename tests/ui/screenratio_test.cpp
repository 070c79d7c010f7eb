#include "cscreeninfos.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace
{

// No application object of its own, as before start-up. The offscreen screen
// has 100 physical dpi; the font dpi makes the logical 120.
TEST(ScreenRatio, FromTheRunningOrAShortLivedApplication)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_FONT_DPI", "120");
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    EXPECT_FLOAT_EQ(GetScreenRatio(false), 1.0f) << "without an application";
    EXPECT_FLOAT_EQ(GetScreenRatio(true), 1.2f);
    EXPECT_EQ(QCoreApplication::instance(), nullptr) << "the application is short-lived";
    int argc = 1;
    char name[] = "screenratio_test";
    char *argv[] = {name, nullptr};
    QApplication application(argc, argv);
    EXPECT_FLOAT_EQ(GetScreenRatio(false), 1.2f);
    EXPECT_FLOAT_EQ(GetScreenRatio(true), 1.2f);
}

} // namespace
