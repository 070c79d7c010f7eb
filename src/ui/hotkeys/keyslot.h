#pragma once

#include "settingsrecords.h"

#include <QString>

#include <functional>

class QComboBox;
class QLabel;

// One express key's choice box and the label under it. Entry 0 of the box is the key's own
// action, entry 1 a custom function; the entry chosen is what the key's `id` stores.
class KeySlot
{
public:
    static constexpr int kActionEntry = 0;
    static constexpr int kCustomEntry = 1;

    // Opens the key function editor on the string given; true with the new string when accepted.
    using CustomEditor = std::function<bool(QString &func)>;

    KeySlot() = default;
    KeySlot(QComboBox *box, QLabel *label) : m_Box(box), m_Label(label) {}

    QComboBox *box() const { return m_Box; }
    QLabel *label() const { return m_Label; }

    // Shows the key as stored: its two entries, the one chosen, the custom function's name.
    // An action key keeps the text of its entry in `func`.
    void Show(stKeyConfig &key) const;
    // Back to the key's own action.
    void Reset(stKeyConfig &key) const;
    // Stores the entry the user chose; a custom function only when the editor accepts it.
    void Activate(stKeyConfig &key, const CustomEditor &edit) const;

    static QString ActionText(int actid);
    static QString CustomText();
    // The name field of a custom function string, or nothing for a string without one.
    static QString LabelOf(const QString &func);

private:
    void fill(const stKeyConfig &key) const;
    void showAction(stKeyConfig &key) const;

    QComboBox *m_Box = nullptr;
    QLabel *m_Label = nullptr;
};

// The usage event of a key's choice.
QString keyActivatedEvent(const stKeyConfig &key, const QString &app, const QString &tablet);
