#include "cpendrawwidget.h"

#include "cglobaldata.h"
#include "penstatus.h"

#include <QDebug>
#include <QPainter>

#include <cmath>

namespace
{
constexpr double kFullPressure = 8191.0;
const QColor kBorderColour(0xe2, 0xe8, 0xf0);

// Slot 0 is the whole desktop in one list and empty in the other; the screens follow it.
QRect screenHolding(const QRect *screens, QPoint point)
{
    for (int i = 1; i < kScreenSlots; ++i) {
        if (screens[i].contains(point))
            return screens[i];
    }
    return QRect();
}
} // namespace

bool CPenDrawWidget::bLeave = true;
bool CPenDrawWidget::bPenTipDown = false;

CPenDrawWidget::CPenDrawWidget(QWidget *parent)
    : QWidget(parent), m_PenColor(0x1e, 0x29, 0x3b), m_BackgroundColor(Qt::white)
{
    growPixmap();
}

void CPenDrawWidget::PenEvent(int status, double x, double y, int pressure)
{
    if (status == kPenStatusLeave) {
        bLeave = true;
        if (bPenTipDown) {
            qDebug() << "Pen button 1 up";
            bPenTipDown = false;
        }
        return;
    }
    QPointF point;
    if (!toPixmapPoint(x, y, point))
        return;
    // Where the pen left is no start for a line.
    const QPointF from = bLeave ? point : m_LastPoint;
    bLeave = false;
    m_LastPoint = point;
    if (pressure == 0)
        return;
    if (!bPenTipDown) {
        qDebug() << "Pen Tip down";
        bPenTipDown = true;
    }
    drawLine(from, point, pressure);
}

void CPenDrawWidget::clear()
{
    m_Pixmap.fill(Qt::transparent);
    update();
}

void CPenDrawWidget::SetPenColor(QString color)
{
    m_PenColor = QColor(color);
}

void CPenDrawWidget::SetBackgroundColor(QString color)
{
    m_BackgroundColor = QColor(color);
    update();
}

void CPenDrawWidget::SetBackgroundPic(QString file)
{
    m_BackgroundPic = QPixmap(file);
    update();
}

void CPenDrawWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), m_BackgroundColor);
    if (!m_BackgroundPic.isNull())
        painter.drawPixmap(rect(), m_BackgroundPic);
    painter.drawPixmap(0, 0, m_Pixmap);
    painter.setPen(kBorderColour);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void CPenDrawWidget::resizeEvent(QResizeEvent *)
{
    growPixmap();
}

// The strokes stay when the widget shrinks and grows again.
void CPenDrawWidget::growPixmap()
{
    const qreal ratio = devicePixelRatioF();
    const QSize needed = (QSizeF(size()) * ratio).toSize();
    if (m_Pixmap.width() >= needed.width() && m_Pixmap.height() >= needed.height())
        return;
    QPixmap grown(needed.expandedTo(m_Pixmap.size()));
    grown.setDevicePixelRatio(ratio);
    grown.fill(Qt::transparent);
    QPainter(&grown).drawPixmap(0, 0, m_Pixmap);
    m_Pixmap = grown;
}

// The point lands on the widget's screen where it lies on its own, so that the field takes the
// pen whichever screen it is mapped to. The pixmap's pixel ratio makes the rest of the scale.
bool CPenDrawWidget::toPixmapPoint(double x, double y, QPointF &point) const
{
    const QRect from =
        screenHolding(CGlobalData::ScreenArray,
                      QPoint(static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y))));
    const QRect own = screenHolding(CGlobalData::LogicScreenArray, mapToGlobal(rect().center()));
    if (from.isEmpty() || own.isEmpty())
        return false;
    const QPointF onOwn(own.x() + (x - from.x()) * own.width() / from.width(),
                        own.y() + (y - from.y()) * own.height() / from.height());
    point = onOwn - QPointF(mapToGlobal(QPoint(0, 0)));
    return true;
}

void CPenDrawWidget::drawLine(QPointF from, QPointF to, int pressure)
{
    QPainter painter(&m_Pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(m_PenColor, pressure * m_MaxWidth / kFullPressure, Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    // A line without length draws nothing; a tap leaves a dot.
    if (from == to)
        painter.drawPoint(to);
    else
        painter.drawLine(from, to);
    update();
}
