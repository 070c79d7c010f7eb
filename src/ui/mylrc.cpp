#include "mylrc.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QDesktopWidget>
#include <QFont>
#include <QFontMetrics>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

namespace
{

constexpr int kTipTime = 800;
constexpr int kListTime = 1200;
constexpr int kListWidth = 200;
constexpr int kLineHeight = 20;
constexpr int kListMargin = 10;
constexpr int kTextX = 20;

} // namespace

MyLrc::MyLrc(QWidget *parent) : QWidget(parent)
{
    // The list travels by pointer through a queued connection.
    qRegisterMetaType<QStringList *>("QStringList*");
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    setAttribute(Qt::WA_TranslucentBackground);
    QFont font("Arial");
    font.setWeight(QFont::Bold);
    setFont(font);
    setStyleSheet("font-size:16px;");
    resize(20, 10);
    move(100, 100);
    connect(&m_Timer, &QTimer::timeout, this, &MyLrc::handleTimeout);
}

void MyLrc::EmitInfo(QString text)
{
    emit EmitAction(text);
}

void MyLrc::EmitRingLrcInfo(QStringList names, int selected)
{
    emit EmitRingLrc(new QStringList(std::move(names)), selected);
}

void MyLrc::ShowInfoText(QString text, bool timed)
{
    if (text.isEmpty())
        return;
    m_ListMode = false;
    SetInfoText(tr(text.toUtf8().constData()));
    ShowLrcOnScreenBottom();
    show();
    if (timed)
        SetLrcShowTime(kTipTime);
    update();
}

// The window is sized to the text with the same proportions at every font size.
void MyLrc::SetInfoText(QString text)
{
    m_Timer.stop();
    ensurePolished();
    const QFontMetrics metrics(font());
    const int w = metrics.horizontalAdvance(text) * 50 / 28 + metrics.lineSpacing();
    const int h = metrics.height() * 50 / 28;
    m_Lines = QStringList{text};
    setMinimumSize(w, h);
    setMaximumSize(w, h);
}

void MyLrc::DrawTips(QStringList *names, int selected)
{
    if (!names || names->isEmpty())
        return;
    m_ListMode = true;
    m_Lines = *names;
    m_Selected = selected;
    setFixedSize(kListWidth, kLineHeight * m_Lines.size() + kListMargin);
    ShowLrcOnScreenBottom();
    show();
    SetLrcShowTime(kListTime);
    update();
}

// Centred at the bottom of the screen under the cursor.
void MyLrc::ShowLrcOnScreenBottom()
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    const QDesktopWidget *desktop = QApplication::desktop();
    const QRect screen = desktop->screenGeometry(desktop->screenNumber(QCursor::pos()));
    const int desktopHeight = desktop->height();
    QT_WARNING_POP
    SetRecRange(QPoint(screen.x() + (screen.width() - width()) / 2, desktopHeight - height()));
}

void MyLrc::SetLrcShowTime(qint64 ms)
{
    m_Timer.start(static_cast<int>(ms));
}

void MyLrc::SetBackColor(QColor color)
{
    m_BackColor = color;
    update();
}

void MyLrc::SetTextColor(QColor color)
{
    m_TextColor = color;
    update();
}

void MyLrc::SetRecRange(QPoint position)
{
    move(position);
}

void MyLrc::handleTimeout()
{
    m_Timer.stop();
    m_Lines.clear();
    hide();
}

void MyLrc::CloseInfoText()
{
    handleTimeout();
}

void MyLrc::paintEvent(QPaintEvent *)
{
    if (m_Lines.isEmpty()) {
        hide();
        return;
    }
    QPainter painter(this);
    painter.fillRect(rect(), m_BackColor);
    painter.setFont(font());
    if (m_ListMode) {
        paintList(painter);
        return;
    }
    painter.setPen(m_TextColor);
    painter.drawText(rect().translated(1, 1), Qt::AlignCenter, m_Lines.first());
}

void MyLrc::paintList(QPainter &painter)
{
    for (int i = 0; i < m_Lines.size(); ++i) {
        if (i == m_Selected)
            continue;
        painter.setPen(m_TextColor);
        painter.drawText(kTextX, kLineHeight * (i + 1), m_Lines.at(i));
    }
    if (m_Selected < 0 || m_Selected >= m_Lines.size())
        return;
    painter.setPen(m_HighlightColor);
    painter.drawText(kTextX, (m_Selected * 5 + 5) * 4, m_Lines.at(m_Selected));
}

void MyLrc::mousePressEvent(QMouseEvent *event)
{
    m_DragOffset = event->globalPos() - frameGeometry().topLeft();
}

void MyLrc::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        move(event->globalPos() - m_DragOffset);
}

void MyLrc::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu menu(this);
    menu.addAction("Hide", this, &QWidget::hide);
    menu.exec(event->globalPos());
}
