#include "penmath.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

using namespace penmath;

namespace
{

// What one line of penmath_cases.txt gives, in its words.
std::string evaluate(std::istringstream &in, int32_t &oldPoint, int32_t &carry, int &divisor)
{
    const DeviceExtent device{10000, 8000, 1000, 800};
    std::string kind, axes;
    in >> kind;
    std::ostringstream out;
    int64_t a = 0, b = 0, c = 0, d = 0;
    float e = 0, f = 0, g = 0, h = 0;
    if (kind == "rotate") {
        in >> a;
        const Position p = rotatedPosition({2000, 1000}, device, a);
        const RotatedAxes r = rotatedAxes(device, a);
        const Tilt t = rotatedTilt({10, 20}, a);
        out << p.x << " " << p.y << " " << r.axisW << " " << r.axisH << " " << r.divW << " "
            << r.divH << " " << int(t.x) << " " << int(t.y);
    } else if (kind == "area") {
        in >> a >> b >> axes >> c >> d;
        const RotatedAxes r = rotatedAxes(device, axes == "turned" ? 1 : 0);
        const WorkArea w = workArea(100, 100, a, b, 1000, r);
        out << w.left << " " << w.top << " " << w.width << " " << w.height << " " << holds(w, c, d);
        if (w.width != 0)
            out << " " << normalised(c, w.left, w.width, r.axisW) << " "
                << normalised(d, w.top, w.height, r.axisH);
    } else if (kind == "calibrate") {
        in >> a >> b >> e >> f;
        out << calibrated(a, b, e, f);
    } else if (kind == "speed") {
        in >> a;
        divisor = mouseDivisor(a);
        oldPoint = 1000;
        carry = 0;
        out << divisor;
    } else if (kind == "step") {
        in >> a;
        out << relativeStep(a, oldPoint, carry, divisor);
    } else if (kind == "pressure") {
        in >> e >> f >> g >> h >> a >> b >> c;
        out << curvePressure(b, {e, f, g, h}, a, c);
    } else {
        out << "unknown";
    }
    return out.str();
}

TEST(PenMath, Cases)
{
    std::ifstream in(PENMATH_CASES);
    ASSERT_TRUE(in) << PENMATH_CASES;
    int32_t oldPoint = 1000, carry = 0;
    int divisor = 0;
    for (std::string line; std::getline(in, line);) {
        const size_t equals = line.find(" = ");
        if (line.empty() || line[0] == '#' || equals == std::string::npos)
            continue;
        std::istringstream inputs(line.substr(0, equals));
        EXPECT_EQ(evaluate(inputs, oldPoint, carry, divisor), line.substr(equals + 3)) << line;
    }
}

} // namespace
