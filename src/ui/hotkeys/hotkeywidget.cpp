#include "hotkeywidget.h"

#include "elidedcombobox.h"
#include "fixlengtextlabel.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace
{
constexpr int kNumberSize = 22;
constexpr int kBoxHeight = 26;
constexpr int kLabelHeight = 16;
} // namespace

HotKeyWidget::HotKeyWidget(QWidget *parent) : QWidget(parent), m_Items{makeItem(1), makeItem(2)}
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (const Item &item : m_Items)
        layout->addWidget(item.row, 0, Qt::AlignTop);
    layout->addStretch();
}

HotKeyWidget::Item HotKeyWidget::makeItem(int index)
{
    auto *row = new QWidget(this);
    row->setObjectName(QStringLiteral("HotKeyItem%1").arg(index));
    auto *number = new QLabel(row);
    number->setObjectName(QStringLiteral("HotKeyNumber"));
    number->setFixedSize(kNumberSize, kNumberSize);
    number->setAlignment(Qt::AlignCenter);
    auto *box = new ElidedComboBox(row);
    box->setObjectName(QStringLiteral("HotKeyComboBox%1").arg(index));
    box->setFixedHeight(kBoxHeight);
    auto *label = new FixLengTextLabel(row);
    label->setObjectName(QStringLiteral("HotKeyLabel%1").arg(index));
    label->setFixedHeight(kLabelHeight);
    auto *grid = new QGridLayout(row);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(2);
    grid->addWidget(number, 0, 0);
    grid->addWidget(box, 0, 1);
    grid->addWidget(label, 1, 1);
    return {row, number, box, label};
}

void HotKeyWidget::setItem(const Item &item, int number, const QString &name)
{
    item.number->setText(QString::number(number));
    item.label->setText(name);
}

void HotKeyWidget::setHotKeyItem1(int number, QString name)
{
    setItem(m_Items[0], number, name);
}

void HotKeyWidget::setHotKeyItem2(int number, QString name)
{
    setItem(m_Items[1], number, name);
}

void HotKeyWidget::setHiddenItem1(bool hidden)
{
    m_Items[0].row->setHidden(hidden);
}

void HotKeyWidget::setHiddenItem2(bool hidden)
{
    m_Items[1].row->setHidden(hidden);
}

KeySlot HotKeyWidget::slot1() const
{
    return KeySlot(m_Items[0].box, m_Items[0].label);
}

KeySlot HotKeyWidget::slot2() const
{
    return KeySlot(m_Items[1].box, m_Items[1].label);
}
