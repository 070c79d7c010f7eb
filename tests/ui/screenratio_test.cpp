#include "cscreeninfos.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace
{

// No application object of its own, as before start-up. The offscreen screen
// has 100 physical dpi; the font dpi makes the logical 120.
TEST(CScreenInfos, WithoutThenWithAnApplication)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_FONT_DPI", "120");
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    const CScreenInfos none;
    EXPECT_EQ(none.GetScreenCount(), 0);
    EXPECT_TRUE(none.GetFirstScreenRect().isNull() && none.GetLastScreenRect().isNull() &&
                none.GetAllScreenRect().isNull());
    EXPECT_FLOAT_EQ(GetScreenRatio(false), 1.0f) << "without an application";
    EXPECT_FLOAT_EQ(GetScreenRatio(true), 1.2f);
    EXPECT_EQ(QCoreApplication::instance(), nullptr) << "the application is short-lived";
    int argc = 1;
    char name[] = "screenratio_test", *argv[] = {name, nullptr};
    QApplication application(argc, argv);
    EXPECT_FLOAT_EQ(GetScreenRatio(false), 1.2f);
    EXPECT_FLOAT_EQ(GetScreenRatio(true), 1.2f);
    const CScreenInfos infos;
    EXPECT_EQ(infos.GetFirstScreenRect(), QRect(0, 0, 800, 600));
    EXPECT_EQ(infos.GetLastScreenRect(), QRect(0, 0, 800, 600));
}

} // namespace
