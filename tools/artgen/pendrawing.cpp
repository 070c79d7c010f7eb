#include "pendrawing.h"

#include "artpalette.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace
{
constexpr int kWidth = 80;
constexpr int kHeight = 320;
constexpr double kCentre = kWidth / 2.0;
constexpr double kGripTop = 196;
constexpr double kConeTop = 262;
constexpr double kTip = 312;

// Pens 1 to 4 are drawn apart (4 carries the roller); the plain digital pens look like 1.
int designOf(int number)
{
    return number >= 1 && number <= 4 ? number : 1;
}

double halfWidth(int design)
{
    return design == 2 ? 9 : 11;
}

QLinearGradient cylinder(double half, const QColor &light, const QColor &dark)
{
    QLinearGradient g(kCentre - half, 0, kCentre + half, 0);
    g.setColorAt(0, dark);
    g.setColorAt(0.35, light);
    g.setColorAt(1, dark);
    return g;
}
} // namespace

QImage PenDrawing::render(int number)
{
    QImage image(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const int design = designOf(number);
    paintTip(p, kTip);
    paintBarrel(p, design);
    paintButtons(p, design);
    if (number > 4) {
        p.setPen(Qt::white);
        p.setFont(ArtPalette::font(11, true));
        p.drawText(QRectF(kCentre - 10, 84, 20, 16), Qt::AlignCenter, QString::number(number));
    }
    return image;
}

void PenDrawing::paintTip(QPainter &p, double bottom)
{
    QPainterPath cone;
    cone.moveTo(kCentre - 10, kConeTop);
    cone.lineTo(kCentre + 10, kConeTop);
    cone.lineTo(kCentre + 3, bottom - 8);
    cone.lineTo(kCentre - 3, bottom - 8);
    cone.closeSubpath();
    p.setPen(Qt::NoPen);
    p.setBrush(cylinder(10, ArtPalette::slate(200), ArtPalette::slate(400)));
    p.drawPath(cone);
    p.setBrush(ArtPalette::slate(900));
    p.drawRoundedRect(QRectF(kCentre - 1.6, bottom - 9, 3.2, 9), 1.5, 1.5);
}

void PenDrawing::paintBarrel(QPainter &p, int design)
{
    const double half = halfWidth(design);
    const double top = design >= 3 ? 40 : 14;
    p.setPen(Qt::NoPen);
    p.setBrush(cylinder(half, ArtPalette::slate(600), ArtPalette::slate(900)));
    p.drawRoundedRect(QRectF(kCentre - half, top, 2 * half, kConeTop - top + 2), half, half);
    if (design >= 3) {
        // Eraser end with a band of the accent colour.
        p.setBrush(cylinder(half - 1, ArtPalette::slate(700), ArtPalette::slate(900)));
        p.drawRoundedRect(QRectF(kCentre - half + 1, 10, 2 * half - 2, 34), half - 1, half - 1);
        p.setBrush(ArtPalette::accent());
        p.drawRect(QRectF(kCentre - half, 44, 2 * half, 3));
    } else {
        p.setBrush(ArtPalette::accent());
        p.drawRect(QRectF(kCentre - half, 56, 2 * half, 2.5));
    }
    if (design == 1)
        return;
    // A soft grip with ribs above the tip.
    p.setBrush(cylinder(half + 1, ArtPalette::slate(800), ArtPalette::slate(900)));
    p.drawRoundedRect(QRectF(kCentre - half - 1, kGripTop, 2 * half + 2, kConeTop - kGripTop), 4,
                      4);
    p.setPen(QPen(ArtPalette::slate(700), 1));
    for (double y = kGripTop + 8; y < kConeTop - 4; y += 7)
        p.drawLine(QPointF(kCentre - half, y), QPointF(kCentre + half, y));
}

void PenDrawing::paintButtons(QPainter &p, int design)
{
    const int count = design >= 3 ? 3 : 2;
    const double width = 8;
    double y = design == 1 ? 150 : 128;
    p.setPen(QPen(ArtPalette::slate(500), 1));
    for (int button = 0; button < count; ++button) {
        p.setBrush(ArtPalette::slate(600));
        p.drawRoundedRect(QRectF(kCentre - width / 2, y, width, 16), 4, 4);
        y += 20;
        if (design == 4 && button == 0) {
            // Roller between the first two buttons.
            p.setBrush(ArtPalette::accent());
            p.drawRoundedRect(QRectF(kCentre - 5, y, 10, 14), 3, 3);
            p.setPen(QPen(ArtPalette::accentDark(), 1));
            for (double rib = y + 3; rib < y + 13; rib += 3)
                p.drawLine(QPointF(kCentre - 4, rib), QPointF(kCentre + 4, rib));
            p.setPen(QPen(ArtPalette::slate(500), 1));
            y += 18;
        }
    }
}
