#include "areasettingwidget.h"

#include "mappingmath.h"
#include "qrubber.h"

#include <QDebug>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

#include <algorithm>

namespace
{
constexpr int kColumnWidth = 148;
constexpr int kRowTop = 25;
constexpr int kRowStep = 32;
constexpr int kRowHeight = 28;
const QRect kPictureBox(160, 25, 360, 190);
const QSize kWidgetSize(520, 250);
const QColor kAreaColour(255, 0, 0, 255);
const QColor kOutlineColour(0x94, 0xa3, 0xb8);

enum Box { X, Y, W, H };
} // namespace

AreaSettingWidget::AreaSettingWidget(char letter, QWidget *parent)
    : QWidget(parent), m_Pick(new QPushButton(this)), m_Rubber(new QRubber(this))
{
    setMinimumSize(kWidgetSize);
    buildControls(letter);
    m_Rubber->setGeometry(kPictureBox);
}

void AreaSettingWidget::buildControls(char letter)
{
    const char *names[] = {"X", "Y", "W", "H"};
    for (int i = 0; i < 4; ++i) {
        const int top = kRowTop + i * kRowStep;
        auto *label = new QLabel(QString::fromLatin1(names[i]), this);
        label->setGeometry(0, top, 20, kRowHeight);
        m_Boxes[i] = new QSpinBox(this);
        m_Boxes[i]->setObjectName(QStringLiteral("spinBox_%1%2").arg(letter).arg(names[i]));
        m_Boxes[i]->setGeometry(22, top, kColumnWidth - 22, kRowHeight);
        // Typed, wheeled or picked: the style sheet has no arrows for spin boxes.
        m_Boxes[i]->setButtonSymbols(QAbstractSpinBox::NoButtons);
        connect(m_Boxes[i], qOverload<int>(&QSpinBox::valueChanged), this,
                &AreaSettingWidget::spinBox_valueChanged);
    }
    const int columnBottom = kRowTop + 3 * kRowStep + kRowHeight + 4;
    const int buttonTop = kWidgetSize.height() - 32;
    const QRect tipRects[] = {
        QRect(0, 0, kWidgetSize.width(), 20),
        QRect(0, columnBottom, kColumnWidth, buttonTop - columnBottom),
        QRect(kPictureBox.left(), kPictureBox.bottom() + 6, kPictureBox.width(), 20)};
    for (int i = 0; i < 3; ++i) {
        m_Tips[i] = new QLabel(this);
        m_Tips[i]->setObjectName(QStringLiteral("label_tips%1").arg(i + 1));
        m_Tips[i]->setGeometry(tipRects[i]);
        m_Tips[i]->setWordWrap(true);
    }
    m_Tips[1]->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_Tips[2]->setAlignment(Qt::AlignCenter);
    m_Pick->setGeometry(0, buttonTop, kColumnWidth, 30);
}

QRect AreaSettingWidget::pictureBox()
{
    return kPictureBox;
}

QRect AreaSettingWidget::area() const
{
    return QRect(m_Boxes[X]->value(), m_Boxes[Y]->value(), m_Boxes[W]->value(),
                 m_Boxes[H]->value());
}

void AreaSettingWidget::setFull(const QRect &full, const QSize &shape, const QRect &box)
{
    m_Full = full;
    const QSignalBlocker blockers[] = {QSignalBlocker(m_Boxes[X]), QSignalBlocker(m_Boxes[Y]),
                                       QSignalBlocker(m_Boxes[W]), QSignalBlocker(m_Boxes[H])};
    m_Boxes[X]->setRange(full.left(), full.left() + full.width());
    m_Boxes[Y]->setRange(full.top(), full.top() + full.height());
    m_Boxes[W]->setRange(1, full.width());
    m_Boxes[H]->setRange(1, full.height());
    m_Rubber->setGeometry(MappingMath::fitInto(shape, box));
    placeBand();
}

void AreaSettingWidget::setArea(const QRect &area)
{
    const QSignalBlocker blockers[] = {QSignalBlocker(m_Boxes[X]), QSignalBlocker(m_Boxes[Y]),
                                       QSignalBlocker(m_Boxes[W]), QSignalBlocker(m_Boxes[H])};
    m_Boxes[X]->setValue(area.x());
    m_Boxes[Y]->setValue(area.y());
    m_Boxes[W]->setValue(MappingMath::shortenedSize(m_Boxes[X]->value(), area.width(),
                                                    m_Full.left(), m_Full.width()));
    m_Boxes[H]->setValue(MappingMath::shortenedSize(m_Boxes[Y]->value(), area.height(),
                                                    m_Full.top(), m_Full.height()));
    placeBand();
}

QRect AreaSettingWidget::unitsOf(const QRect &band, const QRect &widget) const
{
    return MappingMath::rescale(band, QRect(QPoint(0, 0), widget.size()), m_Full);
}

// A moved start shortens the span; a grown span pulls its start back.
void AreaSettingWidget::spinBox_valueChanged(int)
{
    const auto found = std::find(m_Boxes.begin(), m_Boxes.end(), sender());
    if (found == m_Boxes.end())
        return;
    const int index = int(found - m_Boxes.begin());
    qDebug().noquote() << "ui->" + (*found)->objectName();
    const bool horizontal = index == X || index == W;
    QSpinBox *start = m_Boxes[horizontal ? X : Y];
    QSpinBox *size = m_Boxes[horizontal ? W : H];
    const int base = horizontal ? m_Full.left() : m_Full.top();
    const int whole = horizontal ? m_Full.width() : m_Full.height();
    if (index == X || index == Y) {
        const QSignalBlocker blocker(size);
        size->setValue(MappingMath::shortenedSize(start->value(), size->value(), base, whole));
    } else {
        const QSignalBlocker blocker(start);
        start->setValue(MappingMath::pulledBackStart(start->value(), size->value(), base, whole));
    }
    placeBand();
}

void AreaSettingWidget::placeBand()
{
    m_Rubber->SetRubberRect(
        MappingMath::rescale(area(), m_Full, QRect(QPoint(0, 0), m_Rubber->size())));
}

void AreaSettingWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect target = m_Rubber->geometry();
    paintPicture(painter, target);
    painter.setPen(QPen(kOutlineColour, 1.0, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(target.adjusted(-1, -1, 0, 0));
    const QRect chosen = m_Rubber->GetRubberRect().translated(target.topLeft());
    if (chosen.isEmpty())
        return;
    painter.drawPixmap(chosen, QPixmap(QStringLiteral(":/image/Res/screenArea.png")));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kAreaColour, 1.2));
    painter.drawRect(QRectF(chosen).adjusted(0.5, 0.5, -0.5, -0.5));
}
