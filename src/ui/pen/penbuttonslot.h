#pragma once

#include "settingsrecords.h"

#include <QString>

#include <functional>

class QComboBox;

// One pen button's choice box. Entry 0 is the button's own action, 1 a custom function, 2 no
// action; the entry chosen is what the button's `id` stores.
class PenButtonSlot
{
public:
    static constexpr int kActionEntry = 0;
    static constexpr int kCustomEntry = 1;
    static constexpr int kNoneEntry = 2;

    // Opens the key function editor on the string given; true with the new string when accepted.
    using CustomEditor = std::function<bool(QString &func)>;

    PenButtonSlot() = default;
    explicit PenButtonSlot(QComboBox *box) : m_Box(box) {}

    // Shows the button as stored, the custom function by its name.
    void Show(const stPenBtn &button) const;
    // Stores the entry the user chose; a custom function only when the editor accepts it, and
    // any other choice clears the function. False when the editor was cancelled.
    bool Activate(stPenBtn &button, const CustomEditor &edit) const;

private:
    void fill(const stPenBtn &button) const;

    QComboBox *m_Box = nullptr;
};
