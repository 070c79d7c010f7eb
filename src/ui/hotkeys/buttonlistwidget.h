#pragma once

#include "keyslot.h"

#include <QVector>
#include <QWidget>

class HotKeyWidget;
class QHBoxLayout;

// The key boxes of a key page: cells of two keys side by side, of which the first two cells
// show; the key dialog holds the rest.
class buttonListWidget : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kMaxKeys = 20;
    static constexpr int kShownKeys = 4;

    explicit buttonListWidget(QWidget *parent = nullptr);

    void clearItemWidget();
    // Builds the cells of `count` keys, at most kMaxKeys.
    void setHotkeyCount(int count);
    // The boxes in key order.
    const QVector<KeySlot> &keySlots() const { return m_Slots; }

signals:
    // A key's box was chosen; `key` counts from 0.
    void onComboBoxHotkeySignal(int key);

private:
    void addSlot(const KeySlot &slot);

    QHBoxLayout *m_Layout;
    QVector<HotKeyWidget *> m_Cells;
    QVector<KeySlot> m_Slots;
};
