#include "caction.h"

#include "cglobaldata.h"
#include "deviceattributes.h"
#include "localclock.h"
#include "myinput.h"
#include "tabletdata.h"

#include <QDebug>
#include <QRect>
#include <QTime>
#include <algorithm>
#include <cmath>

namespace
{

constexpr uint8_t kStatusLeave = 0xC0;
constexpr uint8_t kStatusEraserHover = 0xA8;
constexpr uint8_t kStatusEraserTouch = 0xA9;
constexpr int kPenDisplay = 2;

static_assert((kPenCount & (kPenCount - 1)) == 0, "pen ids are masked onto the pen records");

// Extents of the device as the orientation in force turns it: counts and hundredths of an inch.
struct RotatedAxes {
    uint64_t axisW;
    uint64_t axisH;
    uint64_t divW;
    uint64_t divH;
};

// The work area in counts.
struct WorkArea {
    int left;
    int top;
    uint64_t width;
    uint64_t height;
};

uint8_t negated(uint8_t tilt)
{
    return static_cast<uint8_t>(-static_cast<int8_t>(tilt));
}

void rotateTilt(TabletDataEX &data, int orientation)
{
    // Zero tilt stays untouched: a device without tilt never sees a turned one.
    if (data.tiltX == 0 && data.tiltY == 0)
        return;
    const uint8_t tiltX = data.tiltX;
    const uint8_t tiltY = data.tiltY;
    switch (orientation) {
    case 1:
        data.tiltX = negated(tiltY);
        data.tiltY = tiltX;
        break;
    case 2:
        data.tiltX = negated(tiltX);
        data.tiltY = negated(tiltY);
        break;
    case 3:
        data.tiltX = tiltY;
        data.tiltY = negated(tiltX);
        break;
    default:
        break;
    }
}

// Turns the report's position and tilt in place.
RotatedAxes rotateReport(TabletDataEX &data, const _DEVICE_ATTRIBUTES &attributes, int orientation)
{
    const uint64_t x = data.x;
    const uint64_t y = data.y;
    const uint64_t maxX = attributes.MaxX;
    const uint64_t maxY = attributes.MaxY;
    const uint64_t width = attributes.Width;
    const uint64_t height = attributes.Height;
    rotateTilt(data, orientation);
    switch (orientation) {
    case 1:
        data.x = static_cast<int64_t>(maxY - y);
        data.y = static_cast<int64_t>(x);
        return {maxY, maxX, height, width};
    case 2:
        data.x = static_cast<int64_t>(maxX - x);
        data.y = static_cast<int64_t>(maxY - y);
        return {maxX, maxY, width, height};
    case 3:
        data.x = static_cast<int64_t>(y);
        data.y = static_cast<int64_t>(maxX - x);
        return {maxY, maxX, height, width};
    default:
        return {maxX, maxY, width, height};
    }
}

void copyTilt(_MultiData &result, const TabletDataEX &data, const stTablet_XMLData &settings)
{
    const bool noTilt = settings.DisableSlope != 0;
    result.tiltX = noTilt ? 0 : static_cast<int8_t>(data.tiltX);
    result.tiltY = noTilt ? 0 : static_cast<int8_t>(data.tiltY);
}

// The offset from the middle of the work area is negative in its upper and left half.
int64_t calibrated(int64_t position, uint64_t area, float scale, float centre)
{
    const float offset = static_cast<float>(position - static_cast<int64_t>(area >> 1));
    return static_cast<int64_t>(offset / scale + static_cast<float>(area) * centre * 0.5f);
}

// A pen outside the work area keeps the last position inside it, for all devices alike, and
// its frame is dropped.
void holdInsideWorkArea(TabletDataEX &data, int64_t &x, int64_t &y, const WorkArea &area)
{
    static int32_t old_X = 0;
    static int32_t old_Y = 0;
    const int64_t right = area.left + static_cast<int64_t>(area.width) - 1;
    const int64_t bottom = area.top + static_cast<int64_t>(area.height) - 1;
    if (x >= area.left && x <= right && y >= area.top && y <= bottom) {
        old_X = static_cast<int32_t>(x);
        old_Y = static_cast<int32_t>(y);
        return;
    }
    x = old_X;
    y = old_Y;
    data.penStatus = 0;
}

uint64_t normalised(int64_t position, int origin, uint64_t area, uint64_t axis)
{
    const uint64_t offset = static_cast<uint64_t>(position - origin);
    const double scale = static_cast<double>(axis) / static_cast<double>(area);
    return static_cast<uint64_t>(scale * static_cast<double>(std::min(offset, area)));
}

// Steps below the divisor add up against the old point; the remainder of a step carries on.
short relativeStep(uint64_t position, int32_t &oldPoint, int32_t &carry, int divisor)
{
    const int32_t delta = static_cast<int32_t>(position) - oldPoint + carry;
    const int32_t step = delta / divisor;
    if (step != 0) {
        oldPoint = static_cast<int32_t>(position);
        carry = delta % divisor;
    }
    return static_cast<short>(step);
}

QRect targetRect(const stTablet_XMLData &settings)
{
    if (settings.bBERectOn)
        return QRect(settings.BERect.x, settings.BERect.y, settings.BERect.w, settings.BERect.h);
    return QRect(settings.SX, settings.SY, settings.SW, settings.SH);
}

double clamped(double value, int low, int high)
{
    if (value < low)
        return low;
    if (value > high)
        return high;
    return value;
}

double curveOutput(const stPenConfig &pen, double t)
{
    const double a = pen.P0;
    const double b = pen.P1X;
    const double c = pen.P2;
    const double d = 1.0 - pen.P1Y;
    const double q = std::max(0.0, t * a - 2 * t * b + t * c - a * c + b * b);
    const double e = a - 2 * b + c;
    const double s = e == 0 ? (a - t) / (2 * (a - b)) : (std::sqrt(q) + a - b) / e;
    if (s < 0)
        return 0.0;
    if (s > 1)
        return 1.0;
    return std::min(1.0, 2 * s * (1 - s) * d + s * s);
}

// Devices of up to 8191 levels are scaled to the virtual axis; finer ones keep their own range.
uint16_t curvePressure(int pressure, const stPenConfig &pen, int maxPressure, bool disabled)
{
    if (pressure == 0)
        return 0;
    if (disabled)
        return static_cast<uint16_t>(maxPressure);
    const double out = curveOutput(pen, static_cast<double>(pressure) / maxPressure);
    const double scale = maxPressure > kAbsMaxPressure ? maxPressure : double(kAbsMaxPressure);
    return static_cast<uint16_t>(static_cast<int>(out * scale));
}

} // namespace

CAction::CAction(QObject *parent) : QObject(parent)
{
    m_labelErase = languageText("Pen.LabelErase", "Eraser");
    m_labelPen = languageText("Pen.LabelPen", "Pen");
}

_MultiData CAction::ActionTabletData(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                                     stTablet_XMLData *settings,
                                     QMap<QString, _stAppConfigNode *> &appConfigs)
{
    FindForeAppConfig(settings, appConfigs);
    m_data = {};
    if (!m_pCurAppConfig) {
        qDebug() << "m_pCurAppConfig is nullptr";
        return m_data;
    }
    m_pXmlData = settings;
    m_data.flags = data.eventFlags;
    if (data.eventFlags & kEventPen) {
        ParsePenData(data, attributes, settings);
        if (data.eventFlags & kEventPenButtons) {
            m_data.penBtn1 = data.penButtonMask;
            m_data.penBtn2 = data.penButtonState;
        }
    }
    if (data.eventFlags & kEventWheel)
        ParseRingData(data, settings);
    CGlobalData::LastTabletActionTime = LocalClock::currentTime();
    DoAction(data, settings);
    return m_data;
}

// Application profiles are kept and edited, but input always follows the common one.
void CAction::FindForeAppConfig(stTablet_XMLData *settings, QMap<QString, _stAppConfigNode *> &)
{
    m_pCurAppConfig = settings ? &settings->CommonAPP : nullptr;
}

void CAction::ParsePenData(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                           stTablet_XMLData *settings)
{
    ParsePenDataLinuxV1(data, attributes, settings);
}

void CAction::ParsePenDataLinuxV1(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                                  stTablet_XMLData *settings)
{
    ParsePenDataLinux(data, attributes, settings);
    // The second turn is intended: orientations 1 and 3 emit the tilt turned by 180 degrees,
    // orientation 2 the raw tilt.
    rotateReport(data, attributes, settings->Orientation);
    copyTilt(m_data, data, *settings);
}

void CAction::ParsePenDataLinux(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                                stTablet_XMLData *settings)
{
    if (attributes.Width == 0 || attributes.Height == 0)
        return;
    const RotatedAxes axes = rotateReport(data, attributes, settings->Orientation);
    const WorkArea area{settings->TX * attributes.LPI / 100, settings->TY * attributes.LPI / 100,
                        static_cast<uint64_t>(settings->TW) * axes.axisW / axes.divW,
                        static_cast<uint64_t>(settings->TH) * axes.axisH / axes.divH};
    int64_t x = data.x;
    int64_t y = data.y;
    if (attributes.DeviceType == kPenDisplay) {
        y = calibrated(y, area.height, settings->fKY, settings->fYLC);
        x = calibrated(x, area.width, settings->fKX, settings->fXLC);
    }
    copyTilt(m_data, data, *settings);
    holdInsideWorkArea(data, x, y, area);
    // An empty work area holds no point, so the frame is already dropped; do not divide by it.
    if (area.width == 0 || area.height == 0)
        return;
    const uint64_t normalX = normalised(x, area.left, area.width, axes.axisW);
    const uint64_t normalY = normalised(y, area.top, area.height, axes.axisH);
    const stPenConfig &pen = currentPen(data);
    if (pen.bRelativeCoords && !stepMouseMode(normalX, normalY, data.penStatus, pen))
        return;
    m_inRange = data.penStatus != kStatusLeave;
    if (!mapToScreen(normalX, normalY, axes.axisW, axes.axisH, *settings))
        return;
    m_data.pressure =
        curvePressure(data.pressure, pen, attributes.MaxPressure, settings->DisablePressure != 0);
}

void CAction::DoAction(TabletDataEX &data, stTablet_XMLData *settings)
{
    m_disableTip = settings->DisableInfo != 0;
    if (!m_pCurAppConfig)
        return;
    if (data.eventFlags & kEventPen)
        writePen(data);
}

void CAction::ParseRingData(TabletDataEX &data, stTablet_XMLData *)
{
    m_data.ringRel1 = data.wheelIndex;
    m_data.ringRel2 = data.wheelDirection;
}

bool CAction::InitInput()
{
    if (CGlobalData::MyInputDriver.absFd() == 0)
        CGlobalData::MyInputDriver.Init();
    return CGlobalData::MyInputDriver.absFd() != 0;
}

// The pen id of a report has three bits; the mask keeps any other value on the eight records.
const stPenConfig &CAction::currentPen(const TabletDataEX &data) const
{
    return m_pCurAppConfig->Pen[data.penId & (kPenCount - 1)];
}

bool CAction::stepMouseMode(uint64_t x, uint64_t y, uint8_t status, const stPenConfig &pen)
{
    static int penStatus = -1;
    static int32_t xOldPt = 0;
    static int32_t yOldPt = 0;
    static int32_t ModeX = 0;
    static int32_t ModeY = 0;
    if (penStatus == 2 || penStatus == -1) {
        penStatus = 0;
    } else if (penStatus == 0) {
        penStatus = 1;
        m_inRange = true;
    }
    if (status == kStatusLeave) {
        penStatus = 2;
        m_inRange = false;
    } else if (penStatus == 0) {
        xOldPt = static_cast<int32_t>(x);
        yOldPt = static_cast<int32_t>(y);
        ModeX = 0;
        ModeY = 0;
        qDebug() << "penStatus == 0)  第一次进入";
        return false;
    }
    // A profile may hold any speed; outside 1 to 9 the divisor would reach 0 or turn negative.
    const int divisor = (10 - std::clamp<int>(pen.Speed, 1, 9)) * 7;
    m_data.relX = relativeStep(x, xOldPt, ModeX, divisor);
    m_data.relY = relativeStep(y, yOldPt, ModeY, divisor);
    return true;
}

bool CAction::mapToScreen(uint64_t x, uint64_t y, uint64_t axisW, uint64_t axisH,
                          const stTablet_XMLData &settings)
{
    if (settings.ScreenId < 0 || settings.ScreenId >= kScreenSlots)
        return false;
    if (CGlobalData::ScreenArray[settings.ScreenId].width() == 0)
        return false;
    const QRect target = targetRect(settings);
    const float fx = static_cast<float>(int64_t{target.width()} * static_cast<int64_t>(x)) /
                         static_cast<float>(axisW) +
                     target.left();
    const float fy = static_cast<float>(int64_t{target.height()} * static_cast<int64_t>(y)) /
                         static_cast<float>(axisH) +
                     target.top();
    const QRect &desktop = CGlobalData::ScreenArray[0];
    m_data.digitX = static_cast<int64_t>((fx - desktop.left()) * double(kAbsMaxX) /
                                         static_cast<double>(desktop.width()));
    m_data.digitY = static_cast<int64_t>((fy - desktop.top()) * double(kAbsMaxY) /
                                         static_cast<double>(desktop.height()));
    m_data.screenPosX = clamped(fx, target.left(), target.right());
    m_data.screenPosY = clamped(fy, target.top(), target.bottom());
    m_screenX = static_cast<int>(m_data.screenPosX);
    m_screenY = static_cast<int>(m_data.screenPosY);
    return true;
}

void CAction::writePen(const TabletDataEX &data)
{
    const stPenConfig &pen = currentPen(data);
    m_eraserEnd = data.penStatus == kStatusEraserHover || data.penStatus == kStatusEraserTouch;
    m_eraserReal = m_eraserEnd && pen.PenBtn[0].id == 0;
    MyInput &input = CGlobalData::MyInputDriver;
    if (pen.bRelativeCoords) {
        qDebug() << "Relative:" << m_data.relX << m_data.relY;
        const bool buttonUp = m_eraserEnd && !m_eraserReal;
        input.UpdateRelMouse(buttonUp ? 0 : data.penStatus, m_data.relX, m_data.relY);
        return;
    }
    bool eraser = m_penAsEraser;
    if (m_eraserReal)
        eraser = true;
    else if (m_eraserEnd)
        m_data.pressure = 0;
    input.UpdateDigit(data.penStatus, static_cast<uint16_t>(m_data.digitX),
                      static_cast<uint16_t>(m_data.digitY), m_data.pressure, m_data.tiltX,
                      m_data.tiltY, eraser);
}
