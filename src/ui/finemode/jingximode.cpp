#include "jingximode.h"

#include <QFont>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>

namespace
{

constexpr int kHoleWidth = 320;
// The hole's bottom row is hy + kHoleHeight: it spans one row more than its nominal height.
constexpr int kHoleHeight = 224;
constexpr int kHalfWidth = 160;
constexpr int kHalfHeight = 112;
constexpr int kTitleHeight = 14;
constexpr int kTitleBaseline = 12;
constexpr int kBodyTop = 15;
constexpr int kShadeAlpha = 125;

QColor shade()
{
    return QColor(0, 0, 0, kShadeAlpha);
}

} // namespace

JingXiMode::JingXiMode(QRect screen, QPoint centre, QWidget *parent)
    : QWidget(parent), m_ScreenRect(screen), m_Centre(centre)
{
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                   Qt::WindowTransparentForInput);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_TranslucentBackground);
    setGeometry(screen);
    setFixedSize(screen.size());
}

// The Y rule ends the hole one pixel higher than the X rule would; kept so.
QPoint JingXiMode::HoleOrigin(QPoint p, QSize window)
{
    int hx = 0;
    if (p.x() > kHalfWidth)
        hx = p.x() + kHalfWidth > window.width() ? window.width() - kHoleWidth : p.x() - kHalfWidth;
    int hy = 0;
    if (p.y() > kHalfHeight)
        hy = p.y() + kHalfHeight > window.height() ? window.height() - kHoleHeight - 1
                                                   : p.y() - kHalfHeight;
    return QPoint(hx, hy);
}

QRect JingXiMode::ModeRect(QPoint hole, QPoint windowOrigin)
{
    const int left = hole.x() + windowOrigin.x();
    const int top = hole.y() + windowOrigin.y();
    return QRect(QPoint(left, top + kBodyTop), QPoint(left + kHoleWidth - 1, top + kHoleHeight));
}

void JingXiMode::paintEvent(QPaintEvent *)
{
    const int w = m_ScreenRect.width();
    const int h = m_ScreenRect.height();
    const QPoint hole = HoleOrigin(m_Centre - m_ScreenRect.topLeft(), m_ScreenRect.size());
    const int hx = hole.x();
    const int hy = hole.y();
    m_HoleRect = QRect(hole, QPoint(hx + kHoleWidth - 1, hy + kHoleHeight));
    const int rows = kHoleHeight + 1;

    QPainter painter(this);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shade());
    painter.drawRect(0, 0, w, hy);
    painter.drawRect(0, hy + rows, w, h - hy - rows);
    painter.drawRect(0, hy, hx, rows);
    painter.drawRect(hx + kHoleWidth, hy, w - hx - kHoleWidth, rows);
    paintTitle(painter);

    emit GetModeRect(ModeRect(hole, m_ScreenRect.topLeft()));
}

void JingXiMode::paintTitle(QPainter &painter)
{
    const QString title = QStringLiteral("Fine Detail Mode");
    const QFont font("Times New Roman", 12, QFont::Bold);
    const int hx = m_HoleRect.left();
    const int hy = m_HoleRect.top();
    const int textWidth = QFontMetrics(font).horizontalAdvance(title);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(hx, hy + kTitleBaseline, title);

    painter.setPen(Qt::NoPen);
    painter.setBrush(shade());
    painter.drawRect(hx + textWidth, hy, kHoleWidth - textWidth, kTitleHeight);

    painter.setPen(QPen(shade(), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRect(QPoint(hx, hy + kBodyTop), m_HoleRect.bottomRight()));
}

void JingXiMode::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        emit CloseJingxiMode();
        return;
    }
    QWidget::keyPressEvent(event);
}
