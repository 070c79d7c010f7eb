#include "qrubber.h"

#include <QMouseEvent>
#include <QRubberBand>

#include <algorithm>

QRubber::QRubber(QWidget *parent)
    : QWidget(parent), m_Band(new QRubberBand(QRubberBand::Rectangle, this))
{
    m_Band->hide();
}

void QRubber::SetRubberRect(QRect rect)
{
    m_Rect = rect;
    m_Band->setGeometry(rect);
    if (parentWidget())
        parentWidget()->update();
}

void QRubber::mousePressEvent(QMouseEvent *event)
{
    m_Start = event->pos();
    m_Moved = false;
}

// The high side is clamped without a minimum: a band of one pixel is a valid choice.
void QRubber::mouseMoveEvent(QMouseEvent *event)
{
    m_Moved = true;
    if (m_Band->isHidden())
        m_Band->show();
    const QPoint current(std::clamp(event->pos().x(), 0, width() - 1),
                         std::clamp(event->pos().y(), 0, height() - 1));
    m_Rect = QRect(m_Start, current).normalized();
    m_Band->setGeometry(m_Rect);
}

void QRubber::mouseReleaseEvent(QMouseEvent *)
{
    if (!m_Moved)
        return;
    emit RubberRectChange(m_Rect, geometry());
    m_Band->hide();
}
