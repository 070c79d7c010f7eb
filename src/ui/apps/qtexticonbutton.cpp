#include "qtexticonbutton.h"

#include <QFontMetrics>

namespace
{
constexpr int kTitleGap = 4;
} // namespace

QTextIconButton::QTextIconButton(QWidget *parent) : QToolButton(parent)
{
    fitTitle();
}

void QTextIconButton::setButtonTitle(const QString &title)
{
    m_Title = title;
    setText(title);
    setToolTip(title);
    fitTitle();
}

void QTextIconButton::resizeEvent(QResizeEvent *event)
{
    QToolButton::resizeEvent(event);
    fitTitle();
}

// A button only as tall as its icon would draw the title across the icon's lower edge.
void QTextIconButton::fitTitle()
{
    const int needed = iconSize().height() + fontMetrics().height() + kTitleGap;
    setToolButtonStyle(height() >= needed ? Qt::ToolButtonTextUnderIcon : Qt::ToolButtonIconOnly);
}
