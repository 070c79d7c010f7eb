#pragma once

#include "settingsrecords.h"

#include <QString>

#include <functional>

class QComboBox;
class QWidget;

// One function slot of a wheel: its choice box of the slot's own function, no action, or a
// custom function. The entry chosen is what the slot's `id` stores.
class WheelSlot
{
public:
    static constexpr int kDefaultEntry = 0;
    static constexpr int kNullEntry = 1;
    static constexpr int kCustomEntry = 2;

    // Opens the wheel function editor on the string given; true with the new string when
    // accepted.
    using CustomEditor = std::function<bool(QString &func)>;

    WheelSlot() = default;
    explicit WheelSlot(QComboBox *box) : m_Box(box) {}

    QComboBox *box() const { return m_Box; }

    // Shows the slot as stored; `number` names its own function as "TR.Item.%1".
    void Show(const stRingItem &item, int number) const;
    // Stores the entry the user chose; a custom function only when the editor accepts it.
    void Activate(stRingItem &item, const CustomEditor &edit) const;

    // Opens RollerKey on `func`; true, with the new string in `func`, when the user confirms.
    static bool EditWheelFunction(QWidget *parent, QString &func);

private:
    void showCustomName(const stRingItem &item) const;

    QComboBox *m_Box = nullptr;
};

// The name field of a stored function string.
QString GetUserFuncShowName(const QString &func);

// The usage event of a slot's choice: the ring's `mode`, the slot, and the slot as stored.
QString wheelActivatedEvent(int ringMode, int slot, const stRingItem &item, const QString &app,
                            const QString &tablet);
