#include "mainwindow.h"

#include <gtest/gtest.h>
#include <utility>

namespace
{

// The curves the pressure slider sets for its levels -3 to 3.
constexpr SPresslvPoints kSliderLevels[] = {
    {0, 0.04f, 0.04f, 1},     {0, 0.15f, 0.25f, 1},    {0, 0.3f, 0.4f, 1},       {0, 0.5f, 0.5f, 1},
    {0.05f, 0.56f, 0.65f, 1}, {0.09f, 0.75f, 0.8f, 1}, {0.14f, 0.93f, 0.93f, 1},
};

TEST(PressureLevel, SliderCurvesReadBackAsTheirLevels)
{
    for (int level = -3; level <= 3; ++level)
        EXPECT_EQ(MainWindow::DidPressurePointsConvertToIntValue(kSliderLevels[level + 3]), level);
}

TEST(PressureLevel, ThresholdsAreExclusive)
{
    // v = (1 - P1Y) / |P1X - P0| with |P1X - P0| = 1/32
    const std::pair<float, int> cases[] = {
        {10.29f, -3}, {10.27f, -2}, {3.01f, -2}, {3.0f, -1}, {1.40f, -1}, {1.38f, 0},
        {0.70f, 0},   {0.68f, 1},   {0.34f, 1},  {0.32f, 2}, {0.21f, 2},  {0.19f, 3},
    };
    for (const auto &[v, level] : cases)
        EXPECT_EQ(MainWindow::DidPressurePointsConvertToIntValue({0, 1.0f / 32, 1 - v / 32, 1}),
                  level)
            << v;
    // A vertical middle leg divides by zero: infinitely steep, the softest level.
    EXPECT_EQ(MainWindow::DidPressurePointsConvertToIntValue({0.3f, 0.3f, 0.5f, 1}), -3);
}

} // namespace
