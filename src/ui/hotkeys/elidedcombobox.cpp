#include "elidedcombobox.h"

#include <QEvent>
#include <QStyleOptionComboBox>
#include <QStylePainter>

ElidedComboBox::ElidedComboBox(QWidget *parent) : QComboBox(parent)
{
    connect(this, &QComboBox::currentTextChanged, this, &ElidedComboBox::updateToolTip);
}

int ElidedComboBox::textRoom(const QStyleOptionComboBox &option) const
{
    return style()
        ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this)
        .width();
}

void ElidedComboBox::updateToolTip()
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const bool fits = fontMetrics().horizontalAdvance(currentText()) <= textRoom(option);
    setToolTip(fits ? QString() : currentText());
}

// QComboBox's own painting, with the label cut to the edit field.
void ElidedComboBox::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    option.currentText =
        fontMetrics().elidedText(option.currentText, Qt::ElideRight, textRoom(option));
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void ElidedComboBox::resizeEvent(QResizeEvent *event)
{
    QComboBox::resizeEvent(event);
    updateToolTip();
}

// A style sheet or a font can change the room left for the text.
void ElidedComboBox::changeEvent(QEvent *event)
{
    QComboBox::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        updateToolTip();
}
