#include "caction.h"

#include "cinputglobals.h"
#include "deviceattributes.h"
#include "languagetexts.h"
#include "localclock.h"
#include "myinput.h"
#include "penmath.h"
#include "penstatus.h"
#include "tabletdata.h"

#include <QDebug>
#include <QRect>

namespace
{

constexpr int kPenDisplay = 2;

static_assert((kPenCount & (kPenCount - 1)) == 0, "pen ids are masked onto the pen records");

penmath::DeviceExtent deviceExtent(const _DEVICE_ATTRIBUTES &attributes)
{
    return {static_cast<uint64_t>(attributes.MaxX), static_cast<uint64_t>(attributes.MaxY),
            static_cast<uint64_t>(attributes.Width), static_cast<uint64_t>(attributes.Height)};
}

// Turns the report's position and tilt in place.
penmath::RotatedAxes rotateReport(TabletDataEX &data, const _DEVICE_ATTRIBUTES &attributes,
                                  int orientation)
{
    const penmath::DeviceExtent device = deviceExtent(attributes);
    const penmath::Position position =
        penmath::rotatedPosition({data.x, data.y}, device, orientation);
    data.x = position.x;
    data.y = position.y;
    const penmath::Tilt tilt = penmath::rotatedTilt(
        {static_cast<int8_t>(data.tiltX), static_cast<int8_t>(data.tiltY)}, orientation);
    data.tiltX = static_cast<uint8_t>(tilt.x);
    data.tiltY = static_cast<uint8_t>(tilt.y);
    return penmath::rotatedAxes(device, orientation);
}

void copyTilt(_MultiData &result, const TabletDataEX &data, const stTablet_XMLData &settings)
{
    const bool noTilt = settings.DisableSlope != 0;
    result.tiltX = noTilt ? 0 : static_cast<int8_t>(data.tiltX);
    result.tiltY = noTilt ? 0 : static_cast<int8_t>(data.tiltY);
}

// A pen outside the work area keeps the last position inside it, for all devices alike, and
// its frame is dropped.
void holdInsideWorkArea(TabletDataEX &data, int64_t &x, int64_t &y, const penmath::WorkArea &area)
{
    static int32_t old_X = 0;
    static int32_t old_Y = 0;
    if (penmath::holds(area, x, y)) {
        old_X = static_cast<int32_t>(x);
        old_Y = static_cast<int32_t>(y);
        return;
    }
    x = old_X;
    y = old_Y;
    data.penStatus = 0;
}

SPresslvPoints curve(const stPenConfig &pen)
{
    return {pen.P0, pen.P1X, pen.P1Y, pen.P2};
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
    if (data.eventFlags & kEventKeys)
        ParseKeyData(data, settings);
    if (data.eventFlags & kEventWheel)
        ParseRingData(data, settings);
    CInputGlobals::LastTabletActionTime = LocalClock::currentTime();
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
    const penmath::RotatedAxes axes = rotateReport(data, attributes, settings->Orientation);
    const penmath::WorkArea area = penmath::workArea(settings->TX, settings->TY, settings->TW,
                                                     settings->TH, attributes.LPI, axes);
    int64_t x = data.x;
    int64_t y = data.y;
    if (attributes.DeviceType == kPenDisplay) {
        y = penmath::calibrated(y, area.height, settings->fKY, settings->fYLC);
        x = penmath::calibrated(x, area.width, settings->fKX, settings->fXLC);
    }
    copyTilt(m_data, data, *settings);
    holdInsideWorkArea(data, x, y, area);
    // An empty work area holds no point, so the frame is already dropped; do not divide by it.
    if (area.width == 0 || area.height == 0)
        return;
    const uint64_t normalX = penmath::normalised(x, area.left, area.width, axes.axisW);
    const uint64_t normalY = penmath::normalised(y, area.top, area.height, axes.axisH);
    const stPenConfig &pen = currentPen(data);
    if (pen.bRelativeCoords && !stepMouseMode(normalX, normalY, data.penStatus, pen))
        return;
    m_inRange = data.penStatus != kPenStatusLeave;
    if (!mapToScreen(normalX, normalY, axes.axisW, axes.axisH, *settings))
        return;
    m_data.pressure = penmath::curvePressure(data.pressure, curve(pen), attributes.MaxPressure,
                                             settings->DisablePressure != 0);
}

void CAction::DoAction(TabletDataEX &data, stTablet_XMLData *settings)
{
    m_disableTip = settings->DisableInfo != 0;
    if (!m_pCurAppConfig)
        return;
    if (data.eventFlags & kEventPen)
        writePen(data);
    if (data.eventFlags & kEventPenButtons) {
        m_firstStroke = true;
        DoPenBtnAction(data.penId);
    }
    // Keys and wheels can be switched off; pen buttons cannot.
    if (settings->DisableQuickKey)
        return;
    if (data.eventFlags & kEventKeys) {
        m_firstStroke = true;
        DoKeyAction(data.penId, settings->SupportGroupKeys != 0);
    }
    if (data.eventFlags & kEventWheel) {
        m_firstStroke = true;
        DoRingAction();
    }
}

void CAction::ParseRingData(TabletDataEX &data, stTablet_XMLData *)
{
    m_data.ringRel1 = data.wheelIndex;
    m_data.ringRel2 = data.wheelDirection;
}

bool CAction::InitInput()
{
    if (CInputGlobals::MyInputDriver.absFd() == 0)
        CInputGlobals::MyInputDriver.Init();
    return CInputGlobals::MyInputDriver.absFd() != 0;
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
    if (status == kPenStatusLeave) {
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
    const int divisor = penmath::mouseDivisor(pen.Speed);
    m_data.relX = penmath::relativeStep(x, xOldPt, ModeX, divisor);
    m_data.relY = penmath::relativeStep(y, yOldPt, ModeY, divisor);
    return true;
}

bool CAction::mapToScreen(uint64_t x, uint64_t y, uint64_t axisW, uint64_t axisH,
                          const stTablet_XMLData &settings)
{
    if (settings.ScreenId < 0 || settings.ScreenId >= kScreenSlots)
        return false;
    if (CInputGlobals::ScreenArray[settings.ScreenId].width() == 0)
        return false;
    const QRect target = targetRect(settings);
    const float fx = static_cast<float>(int64_t{target.width()} * static_cast<int64_t>(x)) /
                         static_cast<float>(axisW) +
                     target.left();
    const float fy = static_cast<float>(int64_t{target.height()} * static_cast<int64_t>(y)) /
                         static_cast<float>(axisH) +
                     target.top();
    const QRect &desktop = CInputGlobals::ScreenArray[0];
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
    m_eraserEnd =
        data.penStatus == kPenStatusEraserHover || data.penStatus == kPenStatusEraserTouch;
    m_eraserReal = m_eraserEnd && pen.PenBtn[0].id == 0;
    MyInput &input = CInputGlobals::MyInputDriver;
    if (pen.bRelativeCoords) {
        qDebug() << "Relative:" << m_data.relX << m_data.relY;
        const bool buttonUp = m_eraserEnd && !m_eraserReal;
        const uint8_t status = buttonUp ? 0 : data.penStatus;
        input.UpdateRelMouse(status, m_data.relX, m_data.relY);
        m_mouseButtonHeld = (status & kPenStatusTip) != 0;
        return;
    }
    bool eraser = m_penAsEraser;
    if (m_eraserReal)
        eraser = true;
    else if (m_eraserEnd)
        m_data.pressure = 0;
    input.UpdateDigit(data.penStatus, static_cast<uint16_t>(m_data.digitX),
                      static_cast<uint16_t>(m_data.digitY), m_data.pressure, m_data.tiltX,
                      m_data.tiltY, eraser, this);
    m_penHeld = data.penStatus != 0 && data.penStatus != kPenStatusLeave;
    m_penHeldAsEraser = eraser;
}

void CAction::LeaveProximity()
{
    if (m_mouseButtonHeld)
        CInputGlobals::MyInputDriver.UpdateRelMouse(0, 0, 0);
    m_mouseButtonHeld = false;
    if (!m_penHeld)
        return;
    m_penHeld = false;
    CInputGlobals::MyInputDriver.UpdateDigit(kPenStatusLeave, static_cast<uint16_t>(m_data.digitX),
                                             static_cast<uint16_t>(m_data.digitY), 0, 0, 0,
                                             m_penHeldAsEraser, this);
}
