#pragma once

#include <QMap>
#include <QString>

// A captured key in the form the function strings store: "L:S", the Linux key
// code and the X11 keycode, and the name the editors show for it.
struct CapturedKey {
    QString token;
    QString name;
};

// The conversion from Qt key values to Linux key codes, and the key token rules
// that every key capture dialog follows.
class cvtKeyCode
{
public:
    cvtKeyCode() = delete;

    static void init();
    static void release();
    // 0 for a key that is not in the table.
    static int getInputKeyCode(int qtKey);
    static const QMap<int, int> &getInputKeyMap();

    // The token and name of a key pressed while `combination` is being built.
    static CapturedKey captureKey(int qtKey, quint32 scanCode, quint32 virtualKey,
                                  const QString &combination);

private:
    static void loadKeyboardCode();
    static void releaseKeyboardCode();
    static QString visibleName(int qtKey, quint32 virtualKey);

    static QMap<int, int> s_KeyMap;
};
