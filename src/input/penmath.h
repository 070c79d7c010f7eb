#pragma once

#include "myinput.h"
#include "settingsrecords.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

// The arithmetic of the pen path: from tablet counts through rotation, calibration and work
// area to a normalised position, the relative steps of mouse mode and the pressure curve.
// Defined here so that the report path inlines them: as calls they cost a tenth of a report.
namespace penmath
{

// Extents of the device: counts, and the active area in hundredths of an inch.
struct DeviceExtent {
    uint64_t maxX;
    uint64_t maxY;
    uint64_t width;
    uint64_t height;
};

// The same extents as the orientation in force turns them.
struct RotatedAxes {
    uint64_t axisW;
    uint64_t axisH;
    uint64_t divW;
    uint64_t divH;
};

struct Position {
    int64_t x;
    int64_t y;
};

struct Tilt {
    int8_t x;
    int8_t y;
};

// The work area in counts.
struct WorkArea {
    int left;
    int top;
    uint64_t width;
    uint64_t height;
};

// Orientations 0 to 3 turn the device in steps of 90 degrees.
inline RotatedAxes rotatedAxes(const DeviceExtent &device, int orientation)
{
    if (orientation == 1 || orientation == 3)
        return {device.maxY, device.maxX, device.height, device.width};
    return {device.maxX, device.maxY, device.width, device.height};
}

// The arithmetic is unsigned, as the counts of the device are.
inline Position rotatedPosition(Position position, const DeviceExtent &device, int orientation)
{
    const uint64_t x = static_cast<uint64_t>(position.x);
    const uint64_t y = static_cast<uint64_t>(position.y);
    switch (orientation) {
    case 1:
        return {static_cast<int64_t>(device.maxY - y), static_cast<int64_t>(x)};
    case 2:
        return {static_cast<int64_t>(device.maxX - x), static_cast<int64_t>(device.maxY - y)};
    case 3:
        return {static_cast<int64_t>(y), static_cast<int64_t>(device.maxX - x)};
    default:
        return position;
    }
}

inline Tilt rotatedTilt(Tilt tilt, int orientation)
{
    // Zero tilt stays untouched: a device without tilt never sees a turned one.
    if (tilt.x == 0 && tilt.y == 0)
        return tilt;
    const auto negated = [](int8_t value) { return static_cast<int8_t>(-value); };
    switch (orientation) {
    case 1:
        return {negated(tilt.y), tilt.x};
    case 2:
        return {negated(tilt.x), negated(tilt.y)};
    case 3:
        return {tilt.y, negated(tilt.x)};
    default:
        return tilt;
    }
}

// Origin and size in hundredths of an inch of the orientation in force.
inline WorkArea workArea(int x, int y, int width, int height, int lpi, const RotatedAxes &axes)
{
    return {x * lpi / 100, y * lpi / 100, static_cast<uint64_t>(width) * axes.axisW / axes.divW,
            static_cast<uint64_t>(height) * axes.axisH / axes.divH};
}

inline bool holds(const WorkArea &area, int64_t x, int64_t y)
{
    const int64_t right = area.left + static_cast<int64_t>(area.width) - 1;
    const int64_t bottom = area.top + static_cast<int64_t>(area.height) - 1;
    return x >= area.left && x <= right && y >= area.top && y <= bottom;
}

// Runs 0 to axis over the area; the area must not be empty.
inline uint64_t normalised(int64_t position, int origin, uint64_t area, uint64_t axis)
{
    const uint64_t offset = static_cast<uint64_t>(position - origin);
    const double scale = static_cast<double>(axis) / static_cast<double>(area);
    return static_cast<uint64_t>(scale * static_cast<double>(std::min(offset, area)));
}

// Pen displays scale and shift the position about the middle of the work area; the offset is
// negative in its upper and left half.
inline int64_t calibrated(int64_t position, uint64_t area, float scale, float centre)
{
    const float offset = static_cast<float>(position - static_cast<int64_t>(area >> 1));
    return static_cast<int64_t>(offset / scale + static_cast<float>(area) * centre * 0.5f);
}

// Counts per step of mouse mode. A profile may hold any speed; outside 1 to 9 the divisor
// would reach 0 or turn negative.
inline int mouseDivisor(int speed)
{
    return (10 - std::clamp(speed, 1, 9)) * 7;
}

// Steps below the divisor add up against the old point; the remainder of a step carries on.
inline short relativeStep(uint64_t position, int32_t &oldPoint, int32_t &carry, int divisor)
{
    const int32_t delta = static_cast<int32_t>(position) - oldPoint + carry;
    const int32_t step = delta / divisor;
    if (step != 0) {
        oldPoint = static_cast<int32_t>(position);
        carry = delta % divisor;
    }
    return static_cast<short>(step);
}

// The curve's output, 0 to 1, for an input t of 0 to 1: solves the Bezier's x for its
// parameter s, then gives its y.
inline double curveOutput(const SPresslvPoints &curve, double t)
{
    const double a = curve.P0;
    const double b = curve.P1X;
    const double c = curve.P2;
    const double d = 1.0 - curve.P1Y;
    const double q = std::max(0.0, t * a - 2 * t * b + t * c - a * c + b * b);
    const double e = a - 2 * b + c;
    const double s = e == 0 ? (a - t) / (2 * (a - b)) : (std::sqrt(q) + a - b) / e;
    if (s < 0)
        return 0.0;
    if (s > 1)
        return 1.0;
    return std::min(1.0, 2 * s * (1 - s) * d + s * s);
}

// The pressure written for a report's pressure. Devices of up to 8191 levels are scaled to the
// virtual axis; finer ones keep their own range.
inline uint16_t curvePressure(int pressure, const SPresslvPoints &curve, int maxPressure,
                              bool disabled)
{
    if (pressure == 0)
        return 0;
    if (disabled)
        return static_cast<uint16_t>(maxPressure);
    const double out = curveOutput(curve, static_cast<double>(pressure) / maxPressure);
    const double scale = maxPressure > kAbsMaxPressure ? maxPressure : double(kAbsMaxPressure);
    return static_cast<uint16_t>(static_cast<int>(out * scale));
}

} // namespace penmath
