#include "cparsetabletdata.h"

#include "penstatus.h"
#include "reportprotocol.h"

#include <QDebug>

#include <cstring>

namespace
{

constexpr int kKeyboardRemotePid = 0x3E1;
constexpr int kM07RemotePid = 0x3E2;
constexpr int kInvertedWheelPid = 0x0A1;
constexpr int kWheelByte = 7;
constexpr int kKeyboardFirstByte = 3;
constexpr int kKeyboardKeyCount = 12;
constexpr int kKeyboardWheelUp = 9;
constexpr int kKeyboardWheelDown = 10;

// No read depends on length: the keyboard remote's last key is the highest byte read.
static_assert(kKeyboardFirstByte + kKeyboardKeyCount <= kReportBufferSize,
              "reads stay inside the report buffer");

struct PenIdentity {
    int code;
    uint8_t penId;
};

constexpr PenIdentity kPenIdentities[] = {{0x501, 2}, {0x801, 3}, {0x301, 1}};

struct WheelLevel {
    int state;
    short index;
    short direction;
};

constexpr WheelLevel kWheelLevels[] = {
    {0x01, 0, 1},  {0x02, 0, -1}, {0x04, 1, 1},  {0x08, 1, -1}, {0x10, 1, 1},
    {0x20, 1, -1}, {0x40, 0, 1},  {0x80, 0, -1}, {0xFF, 0, -1},
};

CParseTabletData::WheelHistory &sharedWheel()
{
    // One history for all tablets, unlocked: interleaved wheels cost a step at worst.
    static CParseTabletData::WheelHistory history{-1, 0, 0};
    return history;
}

void setWheel(TabletDataEX *out, short index, short direction)
{
    out->eventFlags |= kEventWheel;
    out->wheelIndex = index;
    out->wheelDirection = direction;
}

// A step read from the edge between the last wheel state and this one.
void wheelTransition(int state, TabletDataEX *out)
{
    CParseTabletData::WheelHistory &history = sharedWheel();
    const bool left =
        (history.lastWhell == 0x80 && state == 0xC0) || (history.lastWhell == 0x40 && state == 0);
    const bool right =
        (history.lastWhell == 0x80 && state == 0) || (history.lastWhell == 0x40 && state == 0xC0);
    const short sign = out->productId == kInvertedWheelPid ? -1 : 1;
    if (left) {
        if (history.rnum > 0)
            history.rnum = 0;
        ++history.lnum;
        setWheel(out, 0, -sign);
        return;
    }
    if (!right)
        return;
    if (history.lnum > 0)
        history.lnum = 0;
    ++history.rnum;
    setWheel(out, 0, sign);
}

void wheelLevel(int state, TabletDataEX *out)
{
    for (const WheelLevel &level : kWheelLevels) {
        if (level.state != state)
            continue;
        setWheel(out, level.index, level.direction);
        return;
    }
}

int hexDigit(wchar_t c)
{
    if (c >= L'0' && c <= L'9')
        return c - L'0';
    if (c >= L'a' && c <= L'f')
        return c - L'a' + 10;
    if (c >= L'A' && c <= L'F')
        return c - L'A' + 10;
    return -1;
}

} // namespace

int CParseTabletData::ParseData(unsigned char *report, int length, TabletDataEX *out)
{
    if (!out || !report)
        return 0;
    out->eventFlags = 0;
    if (report[0] == kReportIdKeyBits && ChangeDataToKeyState(report, out->keys))
        out->eventFlags |= kEventKeys;
    const uint8_t kind = report[1];
    if (kind == kKindPenIdentity) {
        parsePenIdentity(report);
        return 1;
    }
    if (kind == kKindKeys)
        return parseKeysAndWheels(report, out);
    if (kind == kPenStatusLeave || (kind & kPenStatusInRangeMask) == kPenStatusInRange)
        return parsePen(report, length, out);
    if (out->productId == kKeyboardRemotePid)
        return parseKeyboardRemote(report, out);
    // Drops the key flag of a report id 6 as well; intended.
    out->eventFlags = kEventUnknown;
    return 0;
}

void CParseTabletData::parsePenIdentity(const unsigned char *report)
{
    const int code = ((report[2] & 0xF0) + report[3] * 256) >> 4;
    for (const PenIdentity &identity : kPenIdentities) {
        if (identity.code != code)
            continue;
        m_ForcedPenId = identity.penId;
        return;
    }
}

int CParseTabletData::parsePen(const unsigned char *report, int length, TabletDataEX *out)
{
    decodePenButtons(report[1] & kPenStatusButtons, out);
    out->eventFlags |= kEventPen;
    out->x = report[2] | report[3] << 8;
    out->y = report[4] | report[5] << 8;
    if (length > 11) {
        out->x |= int64_t(report[10]) << 16;
        out->y |= int64_t(report[11]) << 16;
    }
    out->penId = m_ForcedPenId ? m_ForcedPenId : report[7] >> 5;
    out->pressure = report[6] + (report[7] & 0x1F) * 256;
    if (length >= 14)
        out->pressure += (report[13] & 7) * 8192;
    out->tiltX = 0;
    out->tiltY = 0;
    if (length > 9) {
        out->tiltX = report[8];
        out->tiltY = report[9];
    }
    out->penStatus = report[1];
    return 1;
}

void CParseTabletData::decodePenButtons(uint8_t bits, TabletDataEX *out)
{
    PenBtnData buttons;
    if (!ChangeToPenBtnState(bits, buttons))
        return;
    out->eventFlags |= kEventPenButtons;
    out->penButtonMask = 0;
    for (int i = 0; i < kPenButtonCount; ++i) {
        if (buttons.current[i] == buttons.previous[i])
            continue;
        // Of two changes in one report the higher button's state is kept; intended.
        out->penButtonState = buttons.current[i];
        out->penButtonMask |= 1 << i;
        qDebug("PenKey %d%s", i + 1, buttons.current[i] ? " down" : " up");
    }
}

int CParseTabletData::parseKeysAndWheels(const unsigned char *report, TabletDataEX *out)
{
    const int state = report[kWheelByte];
    wheelTransition(state, out);
    sharedWheel().lastWhell = state;
    wheelLevel(state, out);
    const bool wheelStep = out->eventFlags & kEventWheel;
    const int changed = out->productId == kM07RemotePid
                            ? ChangeM07DataToKeyState(report, out->keys, wheelStep)
                            : ChangeDataToKeyState(report, out->keys);
    if (!changed)
        return 1;
    out->eventFlags |= kEventKeys;
    return changed;
}

int CParseTabletData::parseKeyboardRemote(const unsigned char *report, TabletDataEX *out)
{
    if (report[1] == kKindKeyboardIdle)
        return 0;
    if (!ChangeToKeyBoard(report, out->keys))
        return 1;
    if (out->keys.current[kKeyboardWheelUp]) {
        setWheel(out, 0, 1);
        return 1;
    }
    if (out->keys.current[kKeyboardWheelDown]) {
        setWheel(out, 0, -1);
        return 1;
    }
    out->eventFlags |= kEventKeys;
    return 1;
}

int CParseTabletData::ChangeDataToKeyState(const unsigned char *report, TabletKeyData &keys)
{
    if (!report)
        return 0;
    keys = TabletKeyData{};
    std::memcpy(keys.previous, m_KeyState, sizeof m_KeyState);
    const bool anyDown = report[0] == kReportIdKeyBits
                             ? readKeyBits(report, 1, 32, keys)
                             : readKeyBits(report, 2, kTabletKeyCount, keys);
    if (!anyDown && !clearKeyActive())
        return 0;
    storeKeys(keys);
    return 1;
}

int CParseTabletData::ChangeM07DataToKeyState(const unsigned char *report, TabletKeyData &keys,
                                              bool wheelStep)
{
    if (!report)
        return 0;
    keys = TabletKeyData{};
    const bool any = readKeyBits(report, 2, kTabletKeyCount, keys) || clearKeyActive();
    const bool changed = std::memcmp(keys.current, m_KeyState, sizeof m_KeyState) != 0;
    // Left zeroed, a key held through an unchanged report reads as a new press: the repeat.
    if (changed || wheelStep)
        std::memcpy(keys.previous, m_KeyState, sizeof m_KeyState);
    if (!any)
        return 0;
    storeKeys(keys);
    return 1;
}

int CParseTabletData::ChangeToKeyBoard(const unsigned char *report, TabletKeyData &keys)
{
    if (!report)
        return 0;
    keys = TabletKeyData{};
    std::memcpy(keys.previous, m_KeyState, sizeof m_KeyState);
    bool anyDown = false;
    for (int i = 0; i < kKeyboardKeyCount; ++i) {
        if (report[kKeyboardFirstByte + i] != 1)
            continue;
        keys.current[i] = 1;
        m_KeyActive = 1;
        anyDown = true;
    }
    // These two keys are the remote's wheel, which sends no release.
    if (keys.current[kKeyboardWheelUp] || keys.current[kKeyboardWheelDown])
        m_KeyActive = 0;
    if (!anyDown && !clearKeyActive())
        return 0;
    storeKeys(keys);
    return 1;
}

bool CParseTabletData::ChangeToPenBtnState(uint8_t bits, PenBtnData &out)
{
    out = PenBtnData{};
    std::memcpy(out.previous, m_PenButtonState, sizeof m_PenButtonState);
    bool anyDown = false;
    for (int i = 0; i < kPenButtonCount; ++i) {
        if (!(bits & (1 << i)))
            continue;
        out.current[i] = 1;
        m_PenButtonActive = 1;
        anyDown = true;
    }
    if (!anyDown) {
        if (!m_PenButtonActive)
            return false;
        m_PenButtonActive = 0;
    }
    std::memcpy(m_PenButtonState, out.current, sizeof m_PenButtonState);
    return true;
}

int CParseTabletData::str_to_int(const wchar_t *text)
{
    if (!text)
        return -1;
    int value = 0;
    for (int i = 0; i < 4 && text[i]; ++i) {
        const int digit = hexDigit(text[i]);
        if (digit < 0)
            return -1;
        value = value * 16 + digit;
    }
    return value;
}

CParseTabletData::WheelHistory CParseTabletData::wheelHistory()
{
    return sharedWheel();
}

void CParseTabletData::resetWheelState()
{
    sharedWheel() = WheelHistory{-1, 0, 0};
}

bool CParseTabletData::readKeyBits(const unsigned char *report, int firstByte, int count,
                                   TabletKeyData &keys)
{
    bool anyDown = false;
    for (int i = 0; i < count; ++i) {
        if (!(report[firstByte + i / 8] & (1 << (i % 8))))
            continue;
        keys.current[i] = 1;
        m_KeyActive = 1;
        anyDown = true;
    }
    return anyDown;
}

bool CParseTabletData::clearKeyActive()
{
    if (!m_KeyActive)
        return false;
    m_KeyActive = 0;
    return true;
}

void CParseTabletData::storeKeys(const TabletKeyData &keys)
{
    std::memcpy(m_KeyState, keys.current, sizeof m_KeyState);
}
