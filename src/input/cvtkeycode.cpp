#include "cvtkeycode.h"

#include <QKeySequence>
#include <linux/input-event-codes.h>

namespace
{

struct KeyRow {
    int qtKey;
    int linuxCode;
};

// Order matters: for Shift, Control and Alt the first row wins.
constexpr KeyRow kKeyRows[] = {
    {Qt::Key_Space, KEY_SPACE},
    {Qt::Key_Apostrophe, KEY_APOSTROPHE},
    {Qt::Key_Asterisk, KEY_KPASTERISK},
    {Qt::Key_Plus, KEY_KPPLUS},
    {Qt::Key_Comma, KEY_COMMA},
    {Qt::Key_Minus, KEY_MINUS},
    {Qt::Key_Period, KEY_DOT},
    {Qt::Key_Slash, KEY_SLASH},
    {Qt::Key_0, KEY_0},
    {Qt::Key_1, KEY_1},
    {Qt::Key_2, KEY_2},
    {Qt::Key_3, KEY_3},
    {Qt::Key_4, KEY_4},
    {Qt::Key_5, KEY_5},
    {Qt::Key_6, KEY_6},
    {Qt::Key_7, KEY_7},
    {Qt::Key_8, KEY_8},
    {Qt::Key_9, KEY_9},
    {Qt::Key_Semicolon, KEY_SEMICOLON},
    {Qt::Key_Equal, KEY_EQUAL},
    {Qt::Key_A, KEY_A},
    {Qt::Key_B, KEY_B},
    {Qt::Key_C, KEY_C},
    {Qt::Key_D, KEY_D},
    {Qt::Key_E, KEY_E},
    {Qt::Key_F, KEY_F},
    {Qt::Key_G, KEY_G},
    {Qt::Key_H, KEY_H},
    {Qt::Key_I, KEY_I},
    {Qt::Key_J, KEY_J},
    {Qt::Key_K, KEY_K},
    {Qt::Key_L, KEY_L},
    {Qt::Key_M, KEY_M},
    {Qt::Key_N, KEY_N},
    {Qt::Key_O, KEY_O},
    {Qt::Key_P, KEY_P},
    {Qt::Key_Q, KEY_Q},
    {Qt::Key_R, KEY_R},
    {Qt::Key_S, KEY_S},
    {Qt::Key_T, KEY_T},
    {Qt::Key_U, KEY_U},
    {Qt::Key_V, KEY_V},
    {Qt::Key_W, KEY_W},
    {Qt::Key_X, KEY_X},
    {Qt::Key_Y, KEY_Y},
    {Qt::Key_Z, KEY_Z},
    {Qt::Key_BracketLeft, KEY_LEFTBRACE},
    {Qt::Key_Backslash, KEY_BACKSLASH},
    {Qt::Key_BracketRight, KEY_RIGHTBRACE},
    {Qt::Key_QuoteLeft, KEY_GRAVE},
    {Qt::Key_Escape, KEY_ESC},
    {Qt::Key_Tab, KEY_TAB},
    {Qt::Key_Backspace, KEY_BACKSPACE},
    {Qt::Key_Return, KEY_ENTER},
    {Qt::Key_Enter, KEY_ENTER},
    {Qt::Key_Insert, KEY_INSERT},
    {Qt::Key_Delete, KEY_DELETE},
    {Qt::Key_Pause, KEY_PAUSE},
    {Qt::Key_Home, KEY_HOME},
    {Qt::Key_End, KEY_END},
    {Qt::Key_Left, KEY_LEFT},
    {Qt::Key_Up, KEY_UP},
    {Qt::Key_Right, KEY_RIGHT},
    {Qt::Key_Down, KEY_DOWN},
    {Qt::Key_PageUp, KEY_PAGEUP},
    {Qt::Key_PageDown, KEY_PAGEDOWN},
    {Qt::Key_Shift, KEY_LEFTSHIFT},
    {Qt::Key_Shift, KEY_RIGHTSHIFT},
    {Qt::Key_Control, KEY_LEFTCTRL},
    {Qt::Key_Control, KEY_RIGHTCTRL},
    {Qt::Key_Alt, KEY_LEFTALT},
    {Qt::Key_Alt, KEY_RIGHTALT},
    {Qt::Key_CapsLock, KEY_CAPSLOCK},
    {Qt::Key_NumLock, KEY_NUMLOCK},
    {Qt::Key_ScrollLock, KEY_SCROLLLOCK},
    {Qt::Key_F1, KEY_F1},
    {Qt::Key_F2, KEY_F2},
    {Qt::Key_F3, KEY_F3},
    {Qt::Key_F4, KEY_F4},
    {Qt::Key_F5, KEY_F5},
    {Qt::Key_F6, KEY_F6},
    {Qt::Key_F7, KEY_F7},
    {Qt::Key_F8, KEY_F8},
    {Qt::Key_F9, KEY_F9},
    {Qt::Key_F10, KEY_F10},
    {Qt::Key_F11, KEY_F11},
    {Qt::Key_F12, KEY_F12},
    {Qt::Key_F13, KEY_F13},
    {Qt::Key_F14, KEY_F14},
    {Qt::Key_F15, KEY_F15},
    {Qt::Key_F16, KEY_F16},
    {Qt::Key_F17, KEY_F17},
    {Qt::Key_F18, KEY_F18},
    {Qt::Key_F19, KEY_F19},
    {Qt::Key_F20, KEY_F20},
    {Qt::Key_F21, KEY_F21},
    {Qt::Key_F22, KEY_F22},
    {Qt::Key_F23, KEY_F23},
    {Qt::Key_F24, KEY_F24},
    {Qt::Key_Menu, KEY_COMPOSE},
};

// X11 keycodes are the Linux code plus 8.
constexpr quint32 kX11Offset = 8;
constexpr quint32 kUnknownVirtualKey = 0x1FFFFFF;

// Keys whose shifted Qt key is not in the table: the digit row and punctuation.
bool shiftedKeyOutsideTable(quint32 scanCode)
{
    return (scanCode >= 10 && scanCode <= 21) || scanCode == 34 || scanCode == 35 ||
           (scanCode >= 47 && scanCode <= 49) || scanCode == 51 ||
           (scanCode >= 59 && scanCode <= 61);
}

QString tokenFromScanCode(quint32 scanCode)
{
    return QString::number(scanCode - kX11Offset) + ':' + QString::number(scanCode);
}

} // namespace

QMap<int, int> cvtKeyCode::s_KeyMap;

void cvtKeyCode::init()
{
    loadKeyboardCode();
}

void cvtKeyCode::release()
{
    releaseKeyboardCode();
}

int cvtKeyCode::getInputKeyCode(int qtKey)
{
    return s_KeyMap.value(qtKey, 0);
}

const QMap<int, int> &cvtKeyCode::getInputKeyMap()
{
    return s_KeyMap;
}

void cvtKeyCode::loadKeyboardCode()
{
    for (const KeyRow &row : kKeyRows) {
        if (!s_KeyMap.contains(row.qtKey))
            s_KeyMap.insert(row.qtKey, row.linuxCode);
    }
}

void cvtKeyCode::releaseKeyboardCode()
{
    s_KeyMap.clear();
}

CapturedKey cvtKeyCode::captureKey(int qtKey, quint32 scanCode, quint32 virtualKey,
                                   const QString &combination)
{
    CapturedKey key;
    key.token = QString::number(getInputKeyCode(qtKey)) + ':' + QString::number(scanCode);
    key.name = visibleName(qtKey, virtualKey);
    // "42" anywhere in the combination counts as Shift held.
    const bool shiftHeld = !combination.isEmpty() && combination.contains(QLatin1String("42"));
    if (shiftHeld && shiftedKeyOutsideTable(scanCode))
        key.token = tokenFromScanCode(scanCode);
    if (key.token == QLatin1String("12:82"))
        key.token = tokenFromScanCode(scanCode);
    return key;
}

// Modifiers show their own names; the Super key's text depends on the dialog.
QString cvtKeyCode::visibleName(int qtKey, quint32 virtualKey)
{
    switch (qtKey) {
    case Qt::Key_Shift:
        return QStringLiteral("Shift");
    case Qt::Key_Control:
        return QStringLiteral("Ctrl");
    case Qt::Key_Alt:
        return QStringLiteral("Alt");
    case Qt::Key_Meta:
        return QString();
    default:
        break;
    }
    if (virtualKey == kUnknownVirtualKey)
        return QStringLiteral("UN");
    const QString name = QKeySequence(qtKey).toString();
    // "|" separates the fields of a function string.
    return name == QLatin1String("|") ? QStringLiteral("\\") : name;
}
