#include "caction.h"

#include "cglobaldata.h"
#include "deviceattributes.h"
#include "localclock.h"
#include "myinput.h"
#include "mylrc.h"
#include "tabletdata.h"

#include <QDebug>
#include <QProcess>
#include <QRect>
#include <QThread>
#include <QTime>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <linux/input-event-codes.h>
#include <sys/stat.h>

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

// Library ids 1 to 26: keys pressed in this order and released in the same order.
struct ShortcutKeys {
    uint16_t keys[3];
};

constexpr ShortcutKeys kShortcutKeys[] = {
    {{KEY_B}},
    {{KEY_E}},
    {{KEY_LEFTALT}},
    {{KEY_SPACE}},
    {{KEY_LEFTCTRL, KEY_S}},
    {{KEY_LEFTCTRL, KEY_Z}},
    {{KEY_LEFTCTRL, KEY_LEFTALT, KEY_Z}},
    {{KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_Z}},
    {{KEY_V}},
    {{KEY_L}},
    {{KEY_LEFTCTRL, KEY_O}},
    {{KEY_LEFTCTRL, KEY_N}},
    {{KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_N}},
    {{KEY_LEFTCTRL, KEY_E}},
    {{KEY_F}},
    {{KEY_D}},
    {{KEY_X}},
    {{KEY_LEFTCTRL, KEY_DELETE}},
    {{KEY_LEFTCTRL, KEY_C}},
    {{KEY_LEFTCTRL, KEY_V}},
    {{KEY_LEFTCTRL, KEY_EQUAL}},
    {{KEY_LEFTCTRL, KEY_MINUS}},
    {{KEY_TAB}},
    {{KEY_F5}},
    {{KEY_LEFTBRACE}},
    {{KEY_RIGHTBRACE}},
};
constexpr int kShortcutCount = static_cast<int>(std::size(kShortcutKeys));

// Library ids 201 to 205.
constexpr uint16_t kModifierKeys[] = {KEY_LEFTSHIFT, KEY_LEFTALT, KEY_RIGHTALT, KEY_LEFTCTRL,
                                      KEY_SPACE};
constexpr int kFirstModifier = 201;
constexpr int kFirstMouseAction = 206;
constexpr int kLastMouseAction = 211;
constexpr int kMouseActionBase = 205;
// Custom forms 0 and 3 name library ids by their offset.
constexpr int kModifierBase = 200;
constexpr int kSystemBase = 100;

constexpr int kZoomIn = 21;
constexpr int kZoomOut = 22;
constexpr int kBrushSmaller = 25;
constexpr int kBrushBigger = 26;
constexpr int kWheelUp = 210;
constexpr int kWheelDown = 211;
constexpr int kMouseWheelUp = 5;
constexpr int kMouseWheelDown = 6;
constexpr short kCorrectorWheelUp = 10;
constexpr short kCorrectorWheelDown = 11;

constexpr int kActionPenEraser = 103;
constexpr int kActionRing1 = 105;
constexpr int kActionRing2 = 106;
constexpr int kActionKeyGroup = 110;
constexpr int kActionKeyPreview = 111;
constexpr short kSystemKeyGroup = 10;

// Wheel directions as the report's 16 bits carry them.
constexpr uint16_t kDirectionUp = 1;
constexpr uint16_t kDirectionDown = 0xFFFF;
constexpr int kRingCustom = 2;
constexpr int kRingDefault = 0;
constexpr int kRingSlow = 1;

constexpr int kCorrectorSleepMs = 10;
constexpr int kRingTapSleepMs = 5;
// An event code has 16 bits; a larger number would wrap onto another key.
constexpr unsigned long kMaxKeyCode = 0xFFFF;
// The X11 keycode of right Alt, which the second release of the canvas rotation carries.
constexpr unsigned kRightAltScan = 100;

constexpr int kUsageMsg = 99;
constexpr int kMsgShowDriver = 1;
constexpr int kMsgScreenMapping = 2;
constexpr int kMsgPenEraser = 3;
constexpr int kMsgFineMode = 4;
constexpr int kMsgRingFunctions = 5;
constexpr int kMsgTrackPad = 7;
constexpr int kMsgKeyGroup = 10;
constexpr int kMsgKeyPreview = 11;

// A record field may lack its NUL; nothing past the field is read.
QString fieldText(const char *field)
{
    return QString::fromUtf8(field, static_cast<int>(strnlen(field, kFuncSize)));
}

// Tokens "L:S" joined by "+"; a token without exactly one colon is skipped.
QVector<_KeyCode> combinationKeys(const QString &combination)
{
    QVector<_KeyCode> keys;
    for (const QString &token : combination.split(QLatin1Char('+'))) {
        const QStringList parts = token.split(QLatin1Char(':'));
        if (parts.size() == 2)
            keys.append({parts[0].toUInt(), parts[1].toUShort()});
    }
    return keys;
}

QString groupSuffix(int group)
{
    return QStringLiteral("-I,-II,-III,-IV").split(QLatin1Char(',')).value(group);
}

QString actionTipKey(int id)
{
    return QStringLiteral("Actions.%1").arg(id);
}

// System functions whose operation shows a tip of its own, or none.
bool systemFunctionWithoutTip(int function)
{
    switch (function) {
    case 3:
    case 4:
    case 5:
    case 6:
    case 8:
    case 9:
    case 12:
        return true;
    default:
        return false;
    }
}

bool keyActionWithoutTip(int id)
{
    return id == kActionPenEraser || id == kActionRing1 || id == kActionRing2;
}

// A program is run itself; anything else goes to the desktop's opener.
bool isProgram(const QString &command)
{
    struct stat info {
    };
    const QByteArray path = command.toLocal8Bit();
    if (stat(path.constData(), &info) == 0 && (info.st_mode & S_IXGRP))
        return true;
    return command.indexOf(QLatin1String(".appimage"), 1) > 0 ||
           command.indexOf(QLatin1String(".sh"), 1) > 0;
}

// A key strip is mirrored as the tablet turns.
bool keysMirrored(const stTablet_XMLData &settings)
{
    const int orientation = settings.Orientation;
    if (settings.DeviceKeyDirection == 1)
        return orientation == 2 || orientation == 3;
    return orientation == 1 || orientation == 2;
}

// The wheels count their functions backwards, the pen roller ring starts after zoom.
long long ringKind(int ringType, int func)
{
    const long long function = func;
    switch (ringType) {
    case 1:
    case 2:
        return 3 - function;
    case 3:
        return function == 3 ? 0 : function + 1;
    default:
        return function;
    }
}

// The number of the tip text "TR.Item.%1", or 0 for no tip.
int ringTipNumber(int ringType, int func)
{
    switch (ringType) {
    case 0:
        return func + 1;
    case 1:
    case 2:
        return 4 - func;
    case 3:
        return func == 3 ? 1 : func + 2;
    default:
        return 0;
    }
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
        const uint8_t status = buttonUp ? 0 : data.penStatus;
        input.UpdateRelMouse(status, m_data.relX, m_data.relY);
        m_mouseButtonHeld = (status & 1) != 0;
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
    m_penHeld = data.penStatus != 0 && data.penStatus != kStatusLeave;
    m_penHeldAsEraser = eraser;
}

void CAction::LeaveProximity()
{
    if (m_mouseButtonHeld)
        CGlobalData::MyInputDriver.UpdateRelMouse(0, 0, 0);
    m_mouseButtonHeld = false;
    if (!m_penHeld)
        return;
    m_penHeld = false;
    CGlobalData::MyInputDriver.UpdateDigit(kStatusLeave, static_cast<uint16_t>(m_data.digitX),
                                           static_cast<uint16_t>(m_data.digitY), 0, 0, 0,
                                           m_penHeldAsEraser);
}

void CAction::ParseKeyData(TabletDataEX &data, stTablet_XMLData *settings)
{
    m_keysDown.clear();
    m_keysUp.clear();
    if (!settings)
        return;
    for (short key = 1; key <= kTabletKeyCount; ++key) {
        const uint8_t current = data.keys.current[key - 1];
        if (current == data.keys.previous[key - 1])
            continue;
        const bool down = current != 0;
        qDebug() << (down ? "KeyDown:" : "KeyUp:") << key;
        short index = GetKeyIndex(settings, key);
        // Also a key without record is turned; it then names DeviceKeyNum.
        if (settings->SupportGroupKeys == 0 && keysMirrored(*settings))
            index = static_cast<short>(settings->DeviceKeyNum - 1 - index);
        qDebug() << (down ? "id down:" : "id Up:") << index;
        (down ? m_keysDown : m_keysUp).append(index);
        if (index >= 0) {
            m_data.keyIndex = index;
            m_data.keyState = down ? 1 : 0;
        }
    }
}

short CAction::GetKeyIndex(stTablet_XMLData *settings, short motid)
{
    if (!settings)
        return -1;
    _stAppConfigNode &common = settings->CommonAPP;
    const stKeyConfig *keys = common.Key;
    if (settings->SupportGroupKeys) {
        const int group = common.SelectID;
        if (group < 0 || group >= kKeyGroupCount)
            return -1;
        keys = common.KeyGroup[group].Key;
    }
    for (short index = 0; index < kKeyCount; ++index) {
        if (keys[index].Motid == motid)
            return index;
    }
    return -1;
}

void CAction::DoKeyAction(short pen, bool groupKeys)
{
    const bool pressed = m_data.keyState == 1;
    if (pressed)
        m_pLatchedConfig = m_pCurAppConfig;
    if (!m_pLatchedConfig)
        return;
    _stAppConfigNode &config = *m_pLatchedConfig;
    const short index = m_data.keyIndex;
    // A mirrored index of a device that claims more keys than records lands outside.
    if (index < 0 || index >= kKeyCount)
        return;
    const int group = config.SelectID;
    if (groupKeys && (group < 0 || group >= kKeyGroupCount || !config.KeyGroup[group].bEnable))
        return;
    stKeyConfig &key = groupKeys ? config.KeyGroup[group].Key[index] : config.Key[index];
    if (key.id != 0) {
        qDebug() << "DoKeyAction CustomFun";
        ParseCustomFunction(key.func, pressed, pen);
    } else {
        qDebug() << "KeyID:" << index << "DefAction:" << key.Actid
                 << "KeyState:" << m_data.keyState;
        ActionLibrary(key.Actid, pressed, pen);
        if (pressed && !m_disableTip) {
            if (key.Actid == kActionKeyPreview)
                return;
            if (!keyActionWithoutTip(key.Actid))
                showActionTip(key.Actid, key.Actid == kActionKeyGroup ? groupSuffix(config.SelectID)
                                                                      : QString());
        }
    }
    postUsage(QStringLiteral("DoKeyAction"),
              {GetJsonData(QStringLiteral("custom"), fieldText(key.func)),
               GetJsonData(QStringLiteral("id"), QString::number(key.id)),
               GetJsonData(QStringLiteral("curapp"), fieldText(config.path)),
               GetJsonData(QStringLiteral("KeyID"), QString::number(index)),
               GetJsonData(QStringLiteral("TabletKeyState"), QString::number(m_data.keyState))});
}

void CAction::DoPenBtnAction(short pen)
{
    for (int index = 0; index < kPenBtnCount; ++index) {
        if (!(m_data.penBtn1 & (1 << index)))
            continue;
        // Button 0 is the touch of the tip; it counts only while the eraser end is in use.
        if (index == 0 && !m_eraserEnd)
            continue;
        qDebug() << "PenBtnID:" << index << m_eraserEnd;
        const bool pressed = m_data.penBtn2 != 0;
        if (pressed)
            m_pLatchedConfig = m_pCurAppConfig;
        if (!m_pLatchedConfig)
            return;
        stPenBtn &button = m_pLatchedConfig->Pen[pen & (kPenCount - 1)].PenBtn[index];
        runPenButton(button, pressed, pen);
    }
}

void CAction::runPenButton(stPenBtn &button, bool pressed, short pen)
{
    if (button.id != 0) {
        qDebug() << "DoPenBtnAction CustomFun";
        ParseCustomFunction(button.func, pressed, pen);
    } else {
        ActionLibrary(button.Actid, pressed, pen);
        // Any id with "27" in it, the eraser's own among them, shows nothing.
        if (pressed && !m_disableTip && button.Actid != kActionPenEraser &&
            !actionTipKey(button.Actid).contains(QLatin1String("27"), Qt::CaseInsensitive))
            showActionTip(button.Actid);
    }
    postUsage(QStringLiteral("DoPenBtnAction"),
              {GetJsonData(QStringLiteral("custom"), fieldText(button.func)),
               GetJsonData(QStringLiteral("id"), QString::number(button.id)),
               GetJsonData(QStringLiteral("curapp"), fieldText(m_pLatchedConfig->path)),
               GetJsonData(QStringLiteral("PenID"), QString::number(pen)),
               GetJsonData(QStringLiteral("PenKeyState"), QString::number(m_data.penBtn2))});
}

void CAction::DoRingAction()
{
    // Shared by both wheels and by all devices: the slow setting halves the rate of all.
    static bool bRingAction = false;
    m_pLatchedConfig = m_pCurAppConfig;
    if (!m_pLatchedConfig)
        return;
    const short wheel = m_data.ringRel1;
    if (wheel < 0 || wheel >= kRingCount)
        return;
    stRingConfig &ring = m_pLatchedConfig->Ring[wheel];
    const int function = ring.id;
    if (function < 0 || function >= kRingItemCount)
        return;
    stRingItem &item = ring.Item[function];
    if (ring.Speed == kRingSlow) {
        bRingAction = !bRingAction;
        if (!bRingAction)
            return;
    } else {
        bRingAction = true;
    }
    if (item.id == kRingCustom) {
        qDebug() << "DoRingAction CustomFun";
        ParseRingCustomFunction(item.func, m_data.ringRel2, true);
        ParseRingCustomFunction(item.func, m_data.ringRel2, false);
    } else if (item.id == kRingDefault) {
        const int ringType = wheel + ring.type;
        RingActionLibrary(ringType, function, m_data.ringRel2);
        const int tip = ringTipNumber(ringType, function);
        if (!m_disableTip && ring.mode == 0 && tip != 0)
            showTip(languageText(QStringLiteral("TR.Item.%1").arg(tip).toLatin1().constData()));
    }
    postUsage(QStringLiteral("DoRingAction"),
              {GetJsonData(QStringLiteral("custom"), fieldText(item.func)),
               GetJsonData(QStringLiteral("id"), QString::number(item.id)),
               GetJsonData(QStringLiteral("curapp"), fieldText(m_pLatchedConfig->path)),
               GetJsonData(QStringLiteral("RingID"), QString::number(m_data.ringRel1)),
               GetJsonData(QStringLiteral("RingDirection"), QString::number(m_data.ringRel2))});
}

void CAction::ParseCustomFunction(char *str, bool pressed, short pen)
{
    if (!str)
        return;
    const QStringList fields = fieldText(str).split(QLatin1Char('|'));
    const int nfId = fields.first().toInt();
    const QString name = fields.value(1);
    const QString data = fields.last();
    qDebug() << "ParseCustomFunction nfId " << nfId << "sFName" << name << "sFData" << data
             << pressed;
    if (fields.size() != 3 && fields.size() != 4)
        return;
    if (data.isEmpty())
        return;
    const bool threeFields = fields.size() == 3;
    if (threeFields && nfId == 3) {
        runSystemFunction(name, data.toShort(), pressed);
        return;
    }
    if (threeFields && nfId == 0) {
        QVector<short> ids;
        for (const QString &id : data.split(QLatin1Char('+')))
            ids.append(id.toShort());
        qDebug() << "QVector" << ids;
        ActionCorrectorData(ids, pressed, pen);
    } else if (threeFields && nfId == 2) {
        if (pressed)
            startProgram(data);
    } else if (!threeFields && nfId == 1) {
        playKeySequence(data, pressed);
    }
    if (pressed && !m_disableTip)
        showTip(name);
}

void CAction::runSystemFunction(const QString &name, short function, bool pressed)
{
    ActionLibrary(function + kSystemBase, pressed, 0);
    // The key group shows where it went, also on release and with tips off.
    if (function == kSystemKeyGroup) {
        showTip(name + groupSuffix(m_pCurAppConfig ? m_pCurAppConfig->SelectID : -1));
        return;
    }
    if (pressed && !m_disableTip && !systemFunctionWithoutTip(function))
        showTip(name);
}

void CAction::ParseRingCustomFunction(char *str, short direction, bool pressed)
{
    if (!str)
        return;
    const QStringList fields = fieldText(str).split(QLatin1Char('|'));
    if (fields.size() != 6 || fields.first().toInt() != 4)
        return;
    const uint16_t way = static_cast<uint16_t>(direction);
    if (way != kDirectionUp && way != kDirectionDown)
        return;
    const QString &tokens = way == kDirectionUp ? fields[5] : fields[4];
    if (tokens.isEmpty())
        return;
    playKeySequence(tokens, pressed);
    if (pressed && !m_disableTip)
        showTip(fields[1]);
}

void CAction::playKeySequence(const QString &tokens, bool pressed)
{
    const QStringList combinations = tokens.split(QLatin1Char(','));
    if (combinations.size() == 1) {
        for (const _KeyCode &key : combinationKeys(combinations.first()))
            KeyEvent(key.code, key.scan, pressed);
        return;
    }
    if (!pressed)
        return;
    for (const QString &combination : combinations) {
        const QVector<_KeyCode> keys = combinationKeys(combination);
        KeyEvents(keys, true);
        KeyEvents(keys, false);
    }
}

// The process is left to run on its own; it has no parent and is never deleted.
void CAction::startProgram(const QString &command)
{
    qDebug() << "run app" << command;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("LD_LIBRARY_PATH"));
    auto *process = new QProcess;
    process->setProcessEnvironment(environment);
    if (!isProgram(command)) {
        process->start(QStringLiteral("xdg-open"), {command}, QIODevice::ReadWrite);
        return;
    }
    const QStringList words = QProcess::splitCommand(command);
    process->start(words.value(0), words.mid(1), QIODevice::ReadWrite);
}

void CAction::ActionLibrary(int id, bool pressed, short pen)
{
    Q_UNUSED(pen)
    if (id >= 1 && id <= kShortcutCount) {
        for (uint16_t key : kShortcutKeys[id - 1].keys) {
            if (key != 0)
                KeyEvent(key, key, pressed);
        }
        return;
    }
    if (id >= kFirstModifier && id < kFirstMouseAction) {
        const uint16_t key = kModifierKeys[id - kFirstModifier];
        KeyEvent(key, key, pressed);
        return;
    }
    if (id >= kFirstMouseAction && id <= kLastMouseAction) {
        MouserActionLibrary(id - kMouseActionBase, pressed, 0);
        return;
    }
    switch (id) {
    case 101:
        ShowDriver(pressed, true);
        break;
    case 102:
        ChangeScreenMapping(pressed);
        break;
    case 103:
        ChangeBEKey(pressed, false);
        break;
    case 104:
        OpenFineMode(pressed, 0);
        break;
    case 105:
        ChangeKLRFunctions(pressed, 0);
        break;
    case 106:
        ChangeKLRFunctions(pressed, 1);
        break;
    case 107:
        ChangeTrackPadMode(pressed);
        break;
    case 109:
        PressBEKey(pressed);
        break;
    case 110:
        ChangeKeyFunctions(pressed);
        break;
    case 111:
        KeypadPreviewMode(pressed);
        break;
    default:
        break;
    }
}

void CAction::RingActionLibrary(int ringType, int func, short direction)
{
    const uint16_t way = static_cast<uint16_t>(direction);
    if (way != kDirectionUp && way != kDirectionDown)
        return;
    const bool up = way == kDirectionUp;
    switch (ringKind(ringType, func)) {
    case 0:
        tapLibrary(up ? kZoomIn : kZoomOut);
        break;
    case 1:
        tapLibrary(up ? kWheelUp : kWheelDown);
        break;
    case 2:
        tapLibrary(up ? kBrushSmaller : kBrushBigger);
        break;
    case 3:
        rotateCanvas(up);
        break;
    default:
        break;
    }
}

void CAction::tapLibrary(int id)
{
    ActionLibrary(id, true, 0);
    SleepFuctions(kRingTapSleepMs);
    ActionLibrary(id, false, 0);
}

// Up never releases F13 and releases Alt twice instead: fixed behaviour, kept on purpose.
void CAction::rotateCanvas(bool up)
{
    KeyEvent(KEY_LEFTALT, KEY_LEFTALT, true);
    if (up) {
        KeyEvent(KEY_F13, KEY_F13, true);
        KeyEvent(KEY_LEFTALT, KEY_LEFTALT, false);
        KeyEvent(KEY_LEFTALT, kRightAltScan, false);
        return;
    }
    KeyEvent(KEY_F14, KEY_F14, true);
    KeyEvent(KEY_LEFTALT, KEY_LEFTALT, false);
    KeyEvent(KEY_F14, KEY_F14, false);
}

void CAction::MouserActionLibrary(int id, bool pressed, short pen)
{
    Q_UNUSED(pen)
    CGlobalData::MyInputDriver.DoMouseFunc(id, pressed, false);
}

void CAction::PenBtnActionLibrary(int id, bool pressed)
{
    Q_UNUSED(id)
    Q_UNUSED(pressed)
}

void CAction::ActionCorrectorData(QVector<short> &ids, bool pressed, short pen)
{
    if (!pressed) {
        for (auto id = ids.crbegin(); id != ids.crend(); ++id) {
            ActionLibrary(*id + kModifierBase, false, pen);
            SleepFuctions(kCorrectorSleepMs);
        }
        return;
    }
    for (short id : ids) {
        ActionLibrary(id + kModifierBase, true, pen);
        SleepFuctions(kCorrectorSleepMs);
        // The first id of a dispatch turns a wheel twice.
        if (!m_firstStroke)
            continue;
        if (id == kCorrectorWheelUp)
            CGlobalData::MyInputDriver.DoMouseFunc(kMouseWheelUp, true, false);
        else if (id == kCorrectorWheelDown)
            CGlobalData::MyInputDriver.DoMouseFunc(kMouseWheelDown, true, false);
        m_firstStroke = false;
    }
}

void CAction::KeyEvent(unsigned code, unsigned scan, bool pressed)
{
    Q_UNUSED(scan)
    sendKey(code, pressed);
}

void CAction::KeyEvents(QVector<_KeyCode> keys, bool pressed)
{
    for (const _KeyCode &key : keys)
        sendKey(key.code, pressed);
}

void CAction::sendKey(unsigned long code, bool pressed)
{
    if (code > kMaxKeyCode)
        return;
    CGlobalData::MyInputDriver.KeyEvent(static_cast<int>(code), pressed);
}

void CAction::tapKey(unsigned code)
{
    KeyEvent(code, code, true);
    KeyEvent(code, code, false);
}

void CAction::ShowDriver(bool pressed, bool flag)
{
    qDebug() << "ShowDriver No Implement" << flag;
    if (pressed)
        emit PostActionMsg(m_deviceIndex, kMsgShowDriver, 1);
}

void CAction::ChangeScreenMapping(bool pressed)
{
    if (pressed)
        emit PostActionMsg(m_deviceIndex, kMsgScreenMapping, 0);
}

void CAction::ChangeBEKey(bool value, bool forced)
{
    if (forced) {
        m_penAsEraser = value;
        m_beChanged = true;
    } else {
        if (!value)
            return;
        m_penAsEraser = !m_penAsEraser;
        m_beChanged = true;
        emit PostActionMsg(m_deviceIndex, kMsgPenEraser, m_penAsEraser ? 1 : 0);
        if (!m_disableTip)
            showTip(m_penAsEraser ? m_labelErase : m_labelPen);
    }
    if (m_beNotify != 1)
        return;
    tapKey(m_penAsEraser ? KEY_E : KEY_B);
}

// The letter tapped is the one of the state before a press, so a release repeats the next one.
void CAction::PressBEKey(bool pressed)
{
    const bool eraser = m_penTipActive != 0;
    tapKey(eraser ? KEY_E : KEY_B);
    if (pressed)
        m_penTipActive = !m_penTipActive;
    showTip(eraser ? QStringLiteral("[E]") : QStringLiteral("[B]"));
}

void CAction::OpenFineMode(bool pressed, short pen)
{
    Q_UNUSED(pen)
    if (!pressed)
        return;
    qDebug() << "Fine Mode";
    emit PostActionMsg(m_deviceIndex, kMsgFineMode, 0);
}

void CAction::ChangeKLRFunctions(bool pressed, int ring)
{
    qDebug() << "ChangeKLRFunctions No Implement";
    if (pressed)
        emit PostActionMsg(m_deviceIndex, kMsgRingFunctions + ring, currentAppName());
}

void CAction::ChangeTrackPadMode(bool pressed)
{
    if (pressed)
        emit PostActionMsg(m_deviceIndex, kMsgTrackPad, 0);
}

// Moves to the next enabled group, wrapping; with none enabled the group stays.
void CAction::ChangeKeyFunctions(bool pressed)
{
    if (!pressed)
        return;
    if (m_pCurAppConfig) {
        int group = m_pCurAppConfig->SelectID;
        for (int tries = 0; tries < kKeyGroupCount; ++tries) {
            group = group < 0 || group + 1 >= kKeyGroupCount ? 0 : group + 1;
            if (m_pCurAppConfig->KeyGroup[group].bEnable) {
                m_pCurAppConfig->SelectID = static_cast<int16_t>(group);
                break;
            }
        }
    }
    emit PostActionMsg(m_deviceIndex, kMsgKeyGroup, currentAppName());
}

void CAction::KeypadPreviewMode(bool pressed)
{
    if (pressed)
        emit PostActionMsg(m_deviceIndex, kMsgKeyPreview, currentAppName());
}

void CAction::showTip(const QString &text)
{
    if (CGlobalData::Show_Info)
        CGlobalData::Show_Info->EmitInfo(text);
}

void CAction::showActionTip(int id, const QString &suffix)
{
    showTip(languageText(actionTipKey(id).toLatin1().constData()) + suffix);
}

QString CAction::currentAppName() const
{
    return m_pCurAppConfig ? fieldText(m_pCurAppConfig->path) : QString();
}

void CAction::postUsage(const QString &event, const QStringList &fields)
{
    emit PostActionMsg(m_deviceIndex, kUsageMsg,
                       GetJsonDataSon(event, fields.join(QLatin1Char(','))));
}

void CAction::SleepFuctions(int ms)
{
    QThread::msleep(static_cast<unsigned long>(ms));
}

QString CAction::GetJsonData(QString key, QString value)
{
    return QStringLiteral("\"%1\":\"%2\"").arg(key, value);
}

QString CAction::GetJsonDataSon(QString key, QString value)
{
    return QStringLiteral("\"%1\":{%2}").arg(key, value);
}
