#include "screencalibrate.h"

#include "cglobaldata.h"

#include <QDebug>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace
{

constexpr int kMargin = 50;
constexpr int kCrossArm = 20;
const QColor kCrossColour(255, 0, 2);
const QColor kBackground(0xF5, 0xF6, 0xF8);
const QColor kTitleColour(0x1F, 0x23, 0x29);
const QColor kTextColour(0x5F, 0x6B, 0x7A);
const QColor kPendingColour(0xD0, 0xD5, 0xDC);

// Out of range, infinity included, means uncalibrated; NaN passes through as intended.
float clampTerm(float term)
{
    return term < 0.0f || term > 2.0f ? 1.0f : term;
}

float ratio(int numerator, int denominator)
{
    return static_cast<float>(numerator) / static_cast<float>(denominator);
}

} // namespace

ScreenCalibrate::ScreenCalibrate(QWidget *parent) : QWidget(parent)
{
    resize(400, 300);
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    setWindowOpacity(1.0);
}

void ScreenCalibrate::SetScreenArea(const QRect &rect)
{
    const int w = rect.width();
    const int h = rect.height();
    m_Targets = {QPoint(kMargin, kMargin), QPoint(kMargin, h - kMargin),
                 QPoint(w - kMargin, h - kMargin), QPoint(w - kMargin, kMargin),
                 QPoint(w / 2, h / 2)};
    // Reaching from 50 ahead of the target to twice its offset, so the rectangles
    // grow towards the lower right; intended.
    for (int i = 0; i < kPointCount; ++i) {
        const QPoint &t = m_Targets[i];
        m_HitRects[i] = QRect(QPoint(t.x() + rect.left() - kMargin, t.y() + rect.top() - kMargin),
                              QPoint(2 * t.x() + rect.left() - 1, 2 * t.y() + rect.top() - 1));
    }
    setFixedSize(rect.size());
    move(rect.topLeft());
    show();
    // Escape only reaches an active window.
    activateWindow();
    m_Counter = 0;
    update();
}

ScreenCalibrate::Terms ScreenCalibrate::calculateTerms(const Points &measured,
                                                       const Points &targets)
{
    const Points &m = measured;
    const Points &t = targets;
    const float fkx =
        ratio((m[3].x() - m[0].x()) + (m[2].x() - m[1].x()), 2 * (t[3].x() - t[0].x()));
    const float fky =
        ratio((m[1].y() - m[0].y()) + (m[2].y() - m[3].y()), 2 * (t[1].y() - t[0].y()));
    const float fxlc = ratio(t[4].x(), m[4].x());
    const float fylc = ratio(t[4].y(), m[4].y());
    return {clampTerm(fkx), clampTerm(fky), clampTerm(fxlc), clampTerm(fylc)};
}

void ScreenCalibrate::CalculationFun()
{
    const Terms terms = calculateTerms(m_Measured, m_Targets);
    emit sign_ScreenCalibrate(terms.fkx, terms.fky, terms.fxlc, terms.fylc);
}

void ScreenCalibrate::mousePressEvent(QMouseEvent *event)
{
    const QPoint global = event->screenPos().toPoint();
    const QPoint local = event->localPos().toPoint();
    qDebug() << "ScreenCalibrate press global" << global << "local" << local;
    if (m_Counter >= kPointCount || !m_HitRects[m_Counter].contains(global))
        return;
    m_Measured[m_Counter] = local;
    ++m_Counter;
    if (m_Counter >= kPointCount) {
        CalculationFun();
        close();
    }
    update();
}

void ScreenCalibrate::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Escape) {
        QWidget::keyPressEvent(event);
        return;
    }
    close();
}

void ScreenCalibrate::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), kBackground);
    if (m_Counter >= kPointCount)
        return;
    drawInstructions(painter);
    drawProgress(painter);
    drawCross(painter, m_Targets[m_Counter]);
}

void ScreenCalibrate::drawCross(QPainter &painter, const QPoint &centre) const
{
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(kCrossColour, 2.0));
    painter.setBrush(QColor(0, 0, 0, 0));
    painter.drawLine(centre.x() - kCrossArm, centre.y(), centre.x() + kCrossArm, centre.y());
    painter.drawLine(centre.x(), centre.y() - kCrossArm, centre.x(), centre.y() + kCrossArm);
}

// The text sits above the centre cross, clear of all five targets.
void ScreenCalibrate::drawInstructions(QPainter &painter) const
{
    const int centreY = height() / 2;
    QFont titleFont = font();
    titleFont.setPixelSize(28);
    titleFont.setBold(true);
    painter.setFont(titleFont);
    painter.setPen(kTitleColour);
    painter.drawText(QRect(0, centreY - 150, width(), 40), Qt::AlignCenter,
                     languageText("Device.Calibrate", "Calibrate"));

    QFont textFont = font();
    textFont.setPixelSize(16);
    painter.setFont(textFont);
    painter.setPen(kTextColour);
    painter.drawText(
        QRect(0, centreY - 100, width(), 48), Qt::AlignCenter,
        QStringLiteral("Tap the centre of the red cross with the pen.\nPress Esc to cancel."));
}

// One dot per target below the centre cross: done, current and still to come.
void ScreenCalibrate::drawProgress(QPainter &painter) const
{
    constexpr int kSpacing = 22;
    constexpr int kRadius = 5;
    painter.setRenderHint(QPainter::Antialiasing, true);
    const int firstX = width() / 2 - kSpacing * (kPointCount - 1) / 2;
    const int y = height() / 2 + 70;
    for (int i = 0; i < kPointCount; ++i) {
        const QPoint centre(firstX + i * kSpacing, y);
        painter.setPen(i == m_Counter ? QPen(kCrossColour, 2.0) : QPen(Qt::NoPen));
        painter.setBrush(i < m_Counter    ? QBrush(kCrossColour)
                         : i == m_Counter ? QBrush(Qt::NoBrush)
                                          : QBrush(kPendingColour));
        painter.drawEllipse(centre, kRadius, kRadius);
    }
}
