#include "caction.h"

#include "actionids.h"
#include "cactiontext.h"
#include "cinputglobals.h"
#include "myinput.h"
#include "ringtipnumber.h"

#include <QDebug>
#include <QProcess>
#include <iterator>
#include <linux/input-event-codes.h>
#include <sys/stat.h>

namespace
{

using actiontext::groupSuffix;

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
// Custom forms 0 and 3 name library ids by their offset.
constexpr short kCorrectorWheelUp = kActionWheelUp - kActionModifierBase;
constexpr short kCorrectorWheelDown = kActionWheelDown - kActionModifierBase;
constexpr short kSystemKeyGroup = kActionKeyGroup - kActionSystemBase;

// Wheel directions as the report's 16 bits carry them.
constexpr uint16_t kDirectionUp = 1;
constexpr uint16_t kDirectionDown = 0xFFFF;

constexpr int kCorrectorSleepMs = 10;
constexpr int kRingTapSleepMs = 5;
// An event code has 16 bits; a larger number would wrap onto another key.
constexpr unsigned long kMaxKeyCode = 0xFFFF;
// The X11 keycode of right Alt, which the second release of the canvas rotation carries.
constexpr unsigned kRightAltScan = 100;

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

// System functions whose operation shows a tip of its own, or none.
bool systemFunctionWithoutTip(int function)
{
    switch (function + kActionSystemBase) {
    case kActionPenEraser:
    case kActionFineMode:
    case kActionRing1:
    case kActionRing2:
    case kActionPressBE:
    // 108 and 112 name no action, yet stay silent too.
    case kActionSystemBase + 8:
    case kActionSystemBase + 12:
        return true;
    default:
        return false;
    }
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

} // namespace

void CAction::ParseCustomFunction(char *str, bool pressed, short pen)
{
    if (!str)
        return;
    const QStringList fields = fieldText(str, kFuncSize).split(QLatin1Char('|'));
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
    ActionLibrary(function + kActionSystemBase, pressed, 0);
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
    const QStringList fields = fieldText(str, kFuncSize).split(QLatin1Char('|'));
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
    if (id >= kActionShift && id < kActionLeftClick) {
        const uint16_t key = kModifierKeys[id - kActionShift];
        KeyEvent(key, key, pressed);
        return;
    }
    if (id >= kActionLeftClick && id <= kActionWheelDown) {
        MouserActionLibrary(id - kActionMouseBase, pressed, 0);
        return;
    }
    switch (id) {
    case kActionShowDriver:
        ShowDriver(pressed, true);
        break;
    case kActionScreenMapping:
        ChangeScreenMapping(pressed);
        break;
    case kActionPenEraser:
        ChangeBEKey(pressed, false);
        break;
    case kActionFineMode:
        OpenFineMode(pressed, 0);
        break;
    case kActionRing1:
        ChangeKLRFunctions(pressed, 0);
        break;
    case kActionRing2:
        ChangeKLRFunctions(pressed, 1);
        break;
    case kActionTrackPad:
        ChangeTrackPadMode(pressed);
        break;
    case kActionPressBE:
        PressBEKey(pressed);
        break;
    case kActionKeyGroup:
        ChangeKeyFunctions(pressed);
        break;
    case kActionKeyPreview:
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
    switch (ringFunctionKind(ringType, func)) {
    case 0:
        tapLibrary(up ? kActionZoomIn : kActionZoomOut);
        break;
    case 1:
        tapLibrary(up ? kActionWheelUp : kActionWheelDown);
        break;
    case 2:
        tapLibrary(up ? kActionBrushSmaller : kActionBrushBigger);
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
    CInputGlobals::MyInputDriver.DoMouseFunc(id, pressed, false);
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
            ActionLibrary(*id + kActionModifierBase, false, pen);
            SleepFuctions(kCorrectorSleepMs);
        }
        return;
    }
    for (short id : ids) {
        ActionLibrary(id + kActionModifierBase, true, pen);
        SleepFuctions(kCorrectorSleepMs);
        // The first id of a dispatch turns a wheel twice.
        if (!m_firstStroke)
            continue;
        if (id == kCorrectorWheelUp)
            CInputGlobals::MyInputDriver.DoMouseFunc(kMouseWheelUp, true, false);
        else if (id == kCorrectorWheelDown)
            CInputGlobals::MyInputDriver.DoMouseFunc(kMouseWheelDown, true, false);
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
    CInputGlobals::MyInputDriver.KeyEvent(static_cast<int>(code), pressed);
}

void CAction::tapKey(unsigned code)
{
    KeyEvent(code, code, true);
    KeyEvent(code, code, false);
}
