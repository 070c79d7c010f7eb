#include "selectscreenarea.h"

#include "tipwindow.h"

#include <QMouseEvent>
#include <QPainter>

namespace
{
constexpr int kHotSpot = 32;
} // namespace

SelectScreenArea::SelectScreenArea(QWidget *parent) : QWidget(parent)
{
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowOpacity(0.5);
    TipWindow::show("Device.ScreenHelpInfo1");
    setCornerCursor(":/image/Res/leftTop.png");
}

void SelectScreenArea::SetScreenArea(QRect rect, double scaleX, double scaleY)
{
    m_Origin = rect.topLeft();
    m_ScaleX = scaleX;
    m_ScaleY = scaleY;
    setGeometry(rect);
}

void SelectScreenArea::setCornerCursor(const char *picture)
{
    setCursor(QCursor(QPixmap(QString::fromLatin1(picture)), kHotSpot, kHotSpot));
}

QPoint SelectScreenArea::desktopPoint(const QPoint &global) const
{
    if (m_ScaleX == 1.0 && m_ScaleY == 1.0)
        return global;
    return QPoint(m_Origin.x() + static_cast<int>((global.x() - m_Origin.x()) * m_ScaleX),
                  m_Origin.y() + static_cast<int>((global.y() - m_Origin.y()) * m_ScaleY));
}

void SelectScreenArea::mousePressEvent(QMouseEvent *event)
{
    const QPoint point = desktopPoint(event->globalPos());
    if (m_FirstClick) {
        TipWindow::show("Device.ScreenHelpInfo2");
        m_First = point;
        m_FirstClick = false;
        setCornerCursor(":/image/Res/rightbottom.png");
        return;
    }
    m_FirstClick = true;
    TipWindow::close();
    emit SetScreenRect(QRect(m_First, point).normalized());
    m_Done = true;
}

void SelectScreenArea::mouseReleaseEvent(QMouseEvent *)
{
    if (m_Done)
        close();
}

void SelectScreenArea::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
}
