#include "penmath.h"

#include <gtest/gtest.h>
#include <tuple>
#include <vector>

using namespace penmath;

constexpr RotatedAxes kUpright{10000, 8000, 1000, 800};
constexpr RotatedAxes kTurned{8000, 10000, 800, 1000};

// 10000 x 8000 counts, 1000 x 800 hundredths; position (2000, 1000), tilt (10, 20).
TEST(PenMath, RotationOfPositionAxesAndTilt)
{
    using Turned = std::tuple<int64_t, int64_t, uint64_t, uint64_t, uint64_t, uint64_t, int, int>;
    const Turned expected[] = {
        {2000, 1000, 10000, 8000, 1000, 800, 10, 20},
        {8000 - 1000, 2000, 8000, 10000, 800, 1000, -20, 10},
        {10000 - 2000, 8000 - 1000, 10000, 8000, 1000, 800, -10, -20},
        {1000, 10000 - 2000, 8000, 10000, 800, 1000, 20, -10},
    };
    const DeviceExtent device{10000, 8000, 1000, 800};
    for (int orientation = 0; orientation < 4; ++orientation) {
        const Position p = rotatedPosition({2000, 1000}, device, orientation);
        const RotatedAxes a = rotatedAxes(device, orientation);
        const Tilt t = rotatedTilt({10, 20}, orientation);
        EXPECT_EQ(Turned(p.x, p.y, a.axisW, a.axisH, a.divW, a.divH, t.x, t.y),
                  expected[orientation])
            << orientation;
    }
}

// At 1000 lpi the origin (100, 100) hundredths is (1000, 1000) counts. The area's counts are
// scaled onto the axis and clamped at its far edge; an empty area holds nothing.
TEST(PenMath, WorkAreaHoldsAndNormalises)
{
    struct Case {
        int width, height;
        const RotatedAxes &axes;
        int64_t x, y;
        uint64_t areaW, areaH;
        bool held;
        uint64_t normalX, normalY;
    };
    const Case cases[] = {
        {500, 400, kUpright, 1000, 1000, 5000, 4000, true, 0, 0},
        {500, 400, kUpright, 5999, 4999, 5000, 4000, true, 9998, 7998},
        {500, 400, kUpright, 6000, 3000, 5000, 4000, false, 10000, 4000},
        {500, 400, kUpright, 3000, 5000, 5000, 4000, false, 4000, 8000},
        {500, 400, kUpright, 7000, 6000, 5000, 4000, false, 10000, 8000},
        // 400 * 8000 / 800 by 500 * 10000 / 1000 counts
        {400, 500, kTurned, 4999, 5999, 4000, 5000, true, 7998, 9998},
        {0, 400, kUpright, 1000, 1000, 0, 4000, false, 0, 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << " " << c.x << "," << c.y);
        const WorkArea area = workArea(100, 100, c.width, c.height, 1000, c.axes);
        EXPECT_EQ(std::tuple(area.left, area.top, area.width, area.height, holds(area, c.x, c.y)),
                  std::tuple(1000, 1000, c.areaW, c.areaH, c.held));
        if (area.width == 0)
            continue;
        EXPECT_EQ(normalised(c.x, area.left, area.width, c.axes.axisW), c.normalX);
        EXPECT_EQ(normalised(c.y, area.top, area.height, c.axes.axisH), c.normalY);
    }
}

// (position - area / 2) / scale + area * centre / 2, truncated towards zero.
TEST(PenMath, Calibration)
{
    const std::tuple<int64_t, uint64_t, float, float, int64_t> cases[] = {
        {1000, 10000, 1.25f, 0.75f, 550},  // -4000 / 1.25 + 3750
        {5000, 10000, 1.25f, 0.75f, 3750}, // the middle goes to the centre
        {9000, 10000, 1.25f, 0.75f, 6950}, // 4000 / 1.25 + 3750
        {2000, 8000, 2, 1.25f, 4000},      // -2000 / 2 + 5000
        {1, 10000, 3, 0, -1666},           // -4999 / 3
    };
    for (const auto &[position, area, scale, centre, expected] : cases)
        EXPECT_EQ(calibrated(position, area, scale, centre), expected) << position;
}

// Speed, divisor (10 - speed) * 7 of the speed clamped to 1 to 9, steps from the point 1000.
TEST(PenMath, MouseModeStepsCarryRemainders)
{
    const std::tuple<int, int, std::vector<std::pair<uint64_t, short>>> cases[] = {
        // 34 stays; +1 steps with remainder 0; 69 steps, remainder 34 carries; -100 is -2
        {5, 35, {{1034, 0}, {1035, 1}, {1104, 1}, {1105, 1}, {1005, -2}}},
        {1, 63, {{1100, 1}, {1126, 1}}}, // 100 is 1 remainder 37; 26 + 37 is one more step
        {9, 7, {{1020, 2}, {1021, 1}}},  // 20 is 2 remainder 6; 1 + 6 is one more step
        {10, 7, {{1020, 2}}},
        {-3, 63, {{1100, 1}}},
    };
    for (const auto &[speed, divisor, steps] : cases) {
        EXPECT_EQ(mouseDivisor(speed), divisor);
        int32_t oldPoint = 1000;
        int32_t carry = 0;
        for (const auto &[position, step] : steps)
            EXPECT_EQ(relativeStep(position, oldPoint, carry, divisor), step)
                << speed << " " << position;
    }
}

// The curves of the pressure slider, levels -3 to 3.
constexpr SPresslvPoints kSliderLevels[] = {
    {0, 0.04f, 0.04f, 1},     {0, 0.15f, 0.25f, 1},    {0, 0.3f, 0.4f, 1},       {0, 0.5f, 0.5f, 1},
    {0.05f, 0.56f, 0.65f, 1}, {0.09f, 0.75f, 0.8f, 1}, {0.14f, 0.93f, 0.93f, 1},
};

// Expected outputs from solving the Bezier for s by bisection (a separate model), times 8191
// for devices up to 8191 levels, times the maximum above that; the commented ones by hand.
TEST(PenMath, PressureCurve)
{
    const std::tuple<SPresslvPoints, int, int, bool, int> cases[] = {
        {kSliderLevels[0], 2047, 1024, false, 7291},
        {kSliderLevels[1], 2047, 1024, false, 6310},
        {kSliderLevels[2], 2047, 1024, false, 5280},
        {kSliderLevels[3], 2047, 1024, false, 4097}, // e = 0, s = t: 1024 * 8191 / 2047
        {kSliderLevels[4], 2047, 1024, false, 3122},
        {kSliderLevels[5], 2047, 1024, false, 1738},
        {kSliderLevels[6], 2047, 1024, false, 766},
        {kSliderLevels[0], 2047, 100, false, 2729},
        {kSliderLevels[4], 2047, 100, false, 0},    // t below P0 0.05: s < 0
        {{0, 0, 0.5f, 1}, 2047, 1024, false, 5793}, // e = 1: out = sqrt(t) = 0.70727
        {kSliderLevels[0], 16383, 8192, false, 14581},
        {kSliderLevels[6], 2047, 1, true, 2047}, // switched off: the device's maximum
        {kSliderLevels[3], 2047, 0, true, 0},
    };
    for (const auto &[curve, maxPressure, pressure, disabled, expected] : cases)
        EXPECT_EQ(curvePressure(pressure, curve, maxPressure, disabled), expected)
            << curve.P1X << " " << maxPressure << " " << pressure;
}
