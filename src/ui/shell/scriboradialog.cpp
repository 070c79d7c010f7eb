#include "scriboradialog.h"

#include <QGraphicsDropShadowEffect>
#include <QMouseEvent>

namespace
{
// Presses below the head strip belong to the dialog's controls.
constexpr int kDragStripBottom = 79;
constexpr int kShadowBlur = 12;
} // namespace

ScriboraDialog::ScriboraDialog(QWidget *parent) : QDialog(nullptr), m_Parent(parent)
{
    setWindowTitle("Scribora");
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowFlags(Qt::CustomizeWindowHint | Qt::WindowStaysOnTopHint | Qt::FramelessWindowHint);
}

void ScriboraDialog::ShowDialogInCenter()
{
    if (!m_Parent)
        return;
    const QPoint origin = m_Parent->mapToGlobal(QPoint(0, 0));
    move(origin.x() + (m_Parent->width() - width()) / 2,
         origin.y() + (m_Parent->height() - height()) / 2);
}

void ScriboraDialog::SetQGraphicsDropShadowEffect(QWidget *widget)
{
    if (!widget)
        return;
    auto *shadow = new QGraphicsDropShadowEffect(widget);
    shadow->setOffset(0, 0);
    shadow->setColor(Qt::black);
    shadow->setBlurRadius(kShadowBlur);
    widget->setGraphicsEffect(shadow);
}

void ScriboraDialog::mousePressEvent(QMouseEvent *event)
{
    if (qRound(event->localPos().y()) > kDragStripBottom) {
        m_Dragging = false;
        setFocus(Qt::OtherFocusReason);
        QDialog::mousePressEvent(event);
        return;
    }
    m_Dragging = true;
    m_DragOffset = event->globalPos() - pos();
}

void ScriboraDialog::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_Dragging) {
        QDialog::mouseMoveEvent(event);
        return;
    }
    dragTo(event->globalPos());
}

void ScriboraDialog::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_Dragging) {
        QDialog::mouseReleaseEvent(event);
        return;
    }
    dragTo(event->globalPos());
    m_Dragging = false;
}

void ScriboraDialog::dragTo(const QPoint &globalPos)
{
    move(globalPos - m_DragOffset);
}
