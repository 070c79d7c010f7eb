#include "fixlengtextlabel.h"

#include <QPainter>
#include <QStyle>

FixLengTextLabel::FixLengTextLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void FixLengTextLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect area = contentsRect();
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, area.width());
    style()->drawItemText(&painter, area, int(alignment()), palette(), isEnabled(), shown,
                          foregroundRole());
}
