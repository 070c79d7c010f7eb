#include "batterysprite.h"

#include "artpalette.h"

#include <QPainter>
#include <QPainterPath>

namespace
{
constexpr int kWidth = 44;
constexpr int kRowHeight = 13;
constexpr int kRows = 7;

QColor levelColour(int row, bool charging)
{
    if (charging || row <= 3)
        return ArtPalette::accent();
    return row == 4 ? ArtPalette::warning() : ArtPalette::danger();
}
} // namespace

QImage BatterySprite::render(bool charging)
{
    QImage image(kWidth, kRowHeight * kRows, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    for (int row = 0; row < kRows; ++row)
        paintRow(p, row, charging);
    return image;
}

void BatterySprite::paintRow(QPainter &p, int row, bool charging)
{
    const double top = row * kRowHeight;
    const QRectF shell(1.5, top + 1.5, kWidth - 7, kRowHeight - 3);
    const bool empty = row == kRows - 1;
    p.setPen(QPen(empty && !charging ? ArtPalette::danger() : ArtPalette::slate(500), 1.2));
    p.setBrush(Qt::white);
    p.drawRoundedRect(shell, 2.5, 2.5);
    p.setPen(Qt::NoPen);
    p.setBrush(ArtPalette::slate(500));
    p.drawRoundedRect(QRectF(shell.right() + 1, top + 4, 3, kRowHeight - 8), 1, 1);
    const double level = (kRows - 1 - row) / double(kRows - 1);
    const QRectF inner = shell.adjusted(2, 2, -2, -2);
    if (level > 0) {
        p.setBrush(levelColour(row, charging));
        p.drawRoundedRect(QRectF(inner.topLeft(), QSizeF(inner.width() * level, inner.height())),
                          1.2, 1.2);
    }
    if (!charging)
        return;
    // Lightning bolt over the level, outlined so it reads on any fill.
    const QPointF c = shell.center();
    QPainterPath bolt;
    bolt.moveTo(c + QPointF(1.5, -5));
    bolt.lineTo(c + QPointF(-3.5, 0.8));
    bolt.lineTo(c + QPointF(-0.2, 0.8));
    bolt.lineTo(c + QPointF(-1.5, 5));
    bolt.lineTo(c + QPointF(3.5, -0.8));
    bolt.lineTo(c + QPointF(0.2, -0.8));
    bolt.closeSubpath();
    p.setPen(QPen(ArtPalette::slate(800), 0.8));
    p.setBrush(ArtPalette::warning());
    p.drawPath(bolt);
}
