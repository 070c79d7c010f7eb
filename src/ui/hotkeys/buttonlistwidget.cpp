#include "buttonlistwidget.h"

#include "hotkeywidget.h"

#include <QComboBox>
#include <QHBoxLayout>

namespace
{
const QSize kCellSize(180, 110);
const char *const kPlaceholder = "nameList.at(%1)";
} // namespace

buttonListWidget::buttonListWidget(QWidget *parent)
    : QWidget(parent), m_Layout(new QHBoxLayout(this))
{
    m_Layout->setContentsMargins(0, 0, 0, 0);
    m_Layout->setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void buttonListWidget::clearItemWidget()
{
    qDeleteAll(m_Cells);
    m_Cells.clear();
    m_Slots.clear();
}

void buttonListWidget::setHotkeyCount(int count)
{
    clearItemWidget();
    count = qBound(0, count, kMaxKeys);
    for (int i = 0; i < count; i += 2) {
        auto *cell = new HotKeyWidget(this);
        cell->setFixedSize(kCellSize);
        cell->setHotKeyItem1(i + 1, QString(kPlaceholder).arg(i));
        cell->setHotKeyItem2(i + 2, QString(kPlaceholder).arg(i + 1));
        const bool beyondShown = i >= kShownKeys;
        cell->setHiddenItem1(beyondShown);
        cell->setHiddenItem2(beyondShown || i + 1 == count);
        m_Layout->addWidget(cell);
        m_Cells.append(cell);
        addSlot(cell->slot1());
        if (i + 1 < count)
            addSlot(cell->slot2());
    }
}

void buttonListWidget::addSlot(const KeySlot &slot)
{
    const int key = m_Slots.size();
    connect(slot.box(), QOverload<int>::of(&QComboBox::activated), this,
            [this, key] { emit onComboBoxHotkeySignal(key); });
    m_Slots.append(slot);
}
