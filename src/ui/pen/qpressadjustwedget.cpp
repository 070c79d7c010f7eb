#include "qpressadjustwedget.h"

#include "languagetexts.h"

#include <QDebug>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QSignalBlocker>
#include <QSlider>

namespace
{
constexpr QSize kWidgetSize(150, 180);
// The frame leaves room left of the square for the axis label and a handle's half round it.
constexpr QRect kCurveFrame(14, 20, 136, 136);
// The square, in the frame's coordinates. The handle's top-left and both sliders run over its
// side.
constexpr int kSide = 116;
constexpr QRect kArea(10, 10, kSide, kSide);
constexpr int kHandleSize = 20;
constexpr int kSliderHeight = 20;
constexpr int kTopSliderY = 0;
constexpr int kBottomSliderY = 158;

const QColor kAreaColour(0xf8, 0xfa, 0xfc);
const QColor kGridColour(0xe2, 0xe8, 0xf0);
const QColor kBorderColour(0xcb, 0xd5, 0xe1);
const QColor kGuideColour(0x94, 0xa3, 0xb8);
const QColor kCurveColour(0x0d, 0x94, 0x88);
const QColor kFillColour(0x0d, 0x94, 0x88, 28);
const QColor kLabelColour(0x64, 0x74, 0x8b);

// By level, -3 to 3.
constexpr SPresslvPoints kLevels[] = {
    {0, 0.04f, 0.04f, 1},     {0, 0.15f, 0.25f, 1},    {0, 0.3f, 0.4f, 1},      {0, 0.5f, 0.5f, 1},
    {0.05f, 0.56f, 0.65f, 1}, {0.09f, 0.75f, 0.8f, 1}, {0.14f, 0.93f, 0.93f, 1}};
constexpr int kLowestLevel = -3;
constexpr int kHighestLevel = 3;

// The round handle; the editor takes its mouse events.
class CurveHandle : public QWidget
{
public:
    explicit CurveHandle(QWidget *parent) : QWidget(parent)
    {
        setObjectName("pressHandle");
        setAttribute(Qt::WA_TransparentForMouseEvents);
        resize(kHandleSize, kHandleSize);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(kCurveColour, 2));
        painter.setBrush(Qt::white);
        painter.drawEllipse(QRectF(rect()).adjusted(2, 2, -2, -2));
    }
};
} // namespace

QPressAdjustWedget::QPressAdjustWedget(QWidget *parent)
    : QWidget(parent), m_CurveArea(new QWidget(this)), m_Handle(new CurveHandle(m_CurveArea)),
      m_SliderP0(makeSlider("pressSliderP0", kBottomSliderY)),
      m_SliderP2(makeSlider("pressSliderP2", kTopSliderY))
{
    setFixedSize(kWidgetSize);
    m_CurveArea->setObjectName("pressCurveArea");
    m_CurveArea->setGeometry(kCurveFrame);
    m_CurveArea->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_CurveArea->installEventFilter(this);
    // The end's slider counts from the right, so that its handle sits under the curve's end.
    m_SliderP2->setInvertedAppearance(true);
    connect(m_SliderP0, &QSlider::valueChanged, this, &QPressAdjustWedget::on_p0slidervaulechanged);
    connect(m_SliderP2, &QSlider::valueChanged, this, &QPressAdjustWedget::on_p2slidervaulechanged);
    InitLanguageUI();
    UpdatePressureLine();
}

QSlider *QPressAdjustWedget::makeSlider(const char *name, int y)
{
    auto *slider = new QSlider(Qt::Horizontal, this);
    slider->setObjectName(name);
    slider->setRange(0, kSide);
    slider->setGeometry(kCurveFrame.x() + kArea.x(), y, kArea.width(), kSliderHeight);
    return slider;
}

void QPressAdjustWedget::InitLanguageUI()
{
    m_OutputText = languageText("Pen.Sensitivity.Out", "Output");
}

void QPressAdjustWedget::SetPoints(SPresslvPoints points)
{
    P0 = points.P0;
    P1X = points.P1X;
    P1Y = points.P1Y;
    P2 = points.P2;
    UpdatePressureLine();
}

SPresslvPoints QPressAdjustWedget::GetPoints() const
{
    return SPresslvPoints{P0, P1X, P1Y, P2};
}

void QPressAdjustWedget::SetPressSensitivityLv(short level)
{
    if (level < kLowestLevel || level > kHighestLevel) {
        update();
        return;
    }
    SetPoints(kLevels[level - kLowestLevel]);
}

void QPressAdjustWedget::Reset()
{
    SetPressSensitivityLv(0);
}

// The sliders are set quietly: their slots would round the floats to whole steps.
void QPressAdjustWedget::UpdatePressureLine()
{
    const double ax = kArea.x();
    const double ay = kArea.y();
    const double w = kArea.width();
    const double h = kArea.height();
    m_Start = QPointF(ax + w * P0, ay + h);
    m_Control = QPointF(ax + w * P1X, ay + h * P1Y);
    m_End = QPointF(ax + w * P2, ay);
    {
        const QSignalBlocker blockP0(m_SliderP0);
        const QSignalBlocker blockP2(m_SliderP2);
        m_SliderP0->setValue(qRound(w * P0));
        m_SliderP2->setValue(qRound((1 - P2) * w));
    }
    m_Handle->move(m_Control.toPoint() - QPoint(kHandleSize / 2, kHandleSize / 2));
    update();
}

void QPressAdjustWedget::on_p0slidervaulechanged(int value)
{
    const double limit = m_Control.x() - kArea.x();
    if (value > limit) {
        value = static_cast<int>(limit);
        const QSignalBlocker block(m_SliderP0);
        m_SliderP0->setValue(value);
    }
    P0 = static_cast<float>(value) / m_SliderP0->maximum();
    qDebug() << "fp0" << P0;
    UpdatePressureLine();
    emit PressSensitivityChange(GetPoints());
}

void QPressAdjustWedget::on_p2slidervaulechanged(int value)
{
    const int maximum = m_SliderP2->maximum();
    const double limit = maximum + kArea.x() - m_Control.x();
    if (value > limit) {
        value = static_cast<int>(limit);
        const QSignalBlocker block(m_SliderP2);
        m_SliderP2->setValue(value);
    }
    P2 = static_cast<float>(maximum - value) / maximum;
    qDebug() << "fP2" << P2;
    UpdatePressureLine();
    emit PressSensitivityChange(GetPoints());
}

void QPressAdjustWedget::mousePressEvent(QMouseEvent *event)
{
    m_Dragging = m_Handle->geometry().translated(m_CurveArea->pos()).contains(event->pos());
    m_LastPos = event->localPos().toPoint();
}

void QPressAdjustWedget::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_Dragging)
        return;
    const QPoint pos = event->localPos().toPoint();
    const QPoint topLeft = boundHandle(m_Handle->pos() + pos - m_LastPos);
    m_Handle->move(topLeft);
    m_LastPos = pos;
    const QPoint centre = topLeft + QPoint(m_Handle->width() / 2, m_Handle->height() / 2);
    m_Control = centre;
    P1X = static_cast<float>(centre.x() - kArea.x()) / kArea.width();
    P1Y = static_cast<float>(centre.y() - kArea.y()) / kArea.height();
    qDebug() << "event->pos()" << pos << P1X << P1Y;
    update();
}

void QPressAdjustWedget::mouseReleaseEvent(QMouseEvent *)
{
    if (!m_Dragging)
        return;
    m_Dragging = false;
    emit PressSensitivityChange(GetPoints());
}

// The handle keeps right of the curve's start and, a few pixels' play allowed, left of its end.
QPoint QPressAdjustWedget::boundHandle(QPoint topLeft) const
{
    const int a = kArea.x();
    int x = topLeft.x();
    if (x < 0) {
        x = 0;
    } else if (x >= kSide + 1) {
        x = kSide;
    } else if (x < m_SliderP0->value() + a - kHandleSize / 2) {
        x = m_SliderP0->value() + a - kHandleSize / 2;
    } else {
        const int u = m_SliderP2->maximum() - m_SliderP2->value() + a;
        if (x >= u - 3)
            x = u - 4;
    }
    return QPoint(x, qBound(0, topLeft.y(), kSide));
}

// The curve is painted on its frame, above any background a style sheet gives the frame.
bool QPressAdjustWedget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_CurveArea || event->type() != QEvent::Paint)
        return QWidget::eventFilter(watched, event);
    QPainter painter(m_CurveArea);
    paintGrid(painter);
    paintCurve(painter);
    return true;
}

// The output axis's label, read upwards along the square's left side.
void QPressAdjustWedget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QFont font = painter.font();
    font.setPixelSize(11);
    painter.setFont(font);
    painter.setPen(kLabelColour);
    const QRect area = kArea.translated(m_CurveArea->pos());
    painter.translate(0, area.bottom() + 1);
    painter.rotate(-90);
    painter.drawText(QRect(0, 0, area.height(), m_CurveArea->x()), Qt::AlignCenter, m_OutputText);
}

void QPressAdjustWedget::paintGrid(QPainter &painter) const
{
    painter.fillRect(kArea, kAreaColour);
    painter.setPen(kGridColour);
    constexpr int kCells = 4;
    for (int i = 1; i < kCells; ++i) {
        const int x = kArea.x() + kArea.width() * i / kCells;
        const int y = kArea.y() + kArea.height() * i / kCells;
        painter.drawLine(x, kArea.top(), x, kArea.bottom());
        painter.drawLine(kArea.left(), y, kArea.right(), y);
    }
    painter.setPen(kBorderColour);
    painter.drawRect(kArea.adjusted(0, 0, -1, -1));
}

// The engine's curve is a quadratic Bezier; as a cubic, its two control points lie two thirds of
// the way from either end to the control point. Left of the start the output is 0, right of
// the end 1.
void QPressAdjustWedget::paintCurve(QPainter &painter) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath curve(QPointF(kArea.left(), m_Start.y()));
    curve.lineTo(m_Start);
    curve.cubicTo(m_Start + (m_Control - m_Start) * 2 / 3, m_End + (m_Control - m_End) * 2 / 3,
                  m_End);
    curve.lineTo(kArea.x() + kArea.width(), m_End.y());

    QPainterPath below = curve;
    below.lineTo(kArea.x() + kArea.width(), kArea.y() + kArea.height());
    below.closeSubpath();
    painter.fillPath(below, kFillColour);

    painter.setPen(QPen(kGuideColour, 1, Qt::DashLine));
    painter.drawPolyline(QPolygonF({m_Start, m_Control, m_End}));
    painter.setPen(QPen(kCurveColour, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(curve);
}
