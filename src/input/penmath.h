#pragma once

#include "settingsrecords.h"

#include <cstdint>

// The arithmetic of the pen path: from tablet counts through rotation, calibration and work
// area to a normalised position, the relative steps of mouse mode and the pressure curve.
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
RotatedAxes rotatedAxes(const DeviceExtent &device, int orientation);
Position rotatedPosition(Position position, const DeviceExtent &device, int orientation);
Tilt rotatedTilt(Tilt tilt, int orientation);

// Origin and size in hundredths of an inch of the orientation in force.
WorkArea workArea(int x, int y, int width, int height, int lpi, const RotatedAxes &axes);
bool holds(const WorkArea &area, int64_t x, int64_t y);
// Runs 0 to axis over the area; the area must not be empty.
uint64_t normalised(int64_t position, int origin, uint64_t area, uint64_t axis);

// Pen displays scale and shift the position about the middle of the work area.
int64_t calibrated(int64_t position, uint64_t area, float scale, float centre);

// Counts per step of mouse mode for a pen speed.
int mouseDivisor(int speed);
// Steps below the divisor add up against the old point; the remainder of a step carries on.
short relativeStep(uint64_t position, int32_t &oldPoint, int32_t &carry, int divisor);

// The curve's output, 0 to 1, for an input t of 0 to 1.
double curveOutput(const SPresslvPoints &curve, double t);
// The pressure written for a report's pressure.
uint16_t curvePressure(int pressure, const SPresslvPoints &curve, int maxPressure, bool disabled);

} // namespace penmath
