#include "iconset.h"

#include "artpalette.h"

#include <QLinearGradient>
#include <QPainter>
#include <QtMath>

namespace
{
constexpr double kPi = 3.14159265358979323846;

QPen roundPen(const QColor &colour, double width)
{
    return QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

// Arrow head at the end of an arc, pointing along the direction of travel.
QPolygonF arrowHead(const QPointF &tip, double angle, double size)
{
    const QPointF back(-std::cos(angle) * size, -std::sin(angle) * size);
    const QPointF side(-std::sin(angle) * size * 0.7, std::cos(angle) * size * 0.7);
    return QPolygonF({tip, tip + back + side, tip + back - side});
}
} // namespace

QImage IconSet::canvas(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QPainterPath IconSet::gear(const QPointF &centre, double radius)
{
    QPainterPath body;
    body.addEllipse(centre, radius * 0.74, radius * 0.74);
    for (int tooth = 0; tooth < 8; ++tooth) {
        QPainterPath t;
        t.addRoundedRect(QRectF(-radius * 0.19, -radius, radius * 0.38, radius * 0.5), 1, 1);
        QTransform turn;
        turn.translate(centre.x(), centre.y());
        turn.rotate(tooth * 45.0);
        body = body.united(turn.map(t));
    }
    QPainterPath hole;
    hole.addEllipse(centre, radius * 0.3, radius * 0.3);
    return body.subtracted(hole);
}

// A fountain-pen nib, point down: the mark of the logo and the window icon.
QPainterPath IconSet::nib(const QPointF &centre, double height)
{
    const double w = height * 0.62;
    const double top = centre.y() - height / 2;
    QPainterPath path;
    path.moveTo(centre.x(), top + height);
    path.cubicTo(centre.x() + w * 0.2, top + height * 0.7, centre.x() + w / 2, top + height * 0.45,
                 centre.x() + w / 2, top + height * 0.3);
    path.lineTo(centre.x() + w * 0.32, top);
    path.lineTo(centre.x() - w * 0.32, top);
    path.lineTo(centre.x() - w / 2, top + height * 0.3);
    path.cubicTo(centre.x() - w / 2, top + height * 0.45, centre.x() - w * 0.2, top + height * 0.7,
                 centre.x(), top + height);
    path.closeSubpath();
    QPainterPath slit;
    slit.addRect(
        QRectF(centre.x() - height * 0.025, top + height * 0.42, height * 0.05, height * 0.5));
    QPainterPath hole;
    hole.addEllipse(QPointF(centre.x(), top + height * 0.4), height * 0.08, height * 0.08);
    return path.subtracted(slit).subtracted(hole);
}

QImage IconSet::logo()
{
    QImage image = canvas(140, 40);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(ArtPalette::accent());
    p.drawRoundedRect(QRectF(2, 6, 28, 28), 7, 7);
    p.setBrush(Qt::white);
    p.drawPath(nib(QPointF(16, 20), 19));
    p.setPen(Qt::white);
    p.setFont(ArtPalette::font(19, true));
    p.drawText(QRectF(38, 0, 102, 40), Qt::AlignVCenter | Qt::AlignLeft,
               QStringLiteral("Scribora"));
    return image;
}

QImage IconSet::appIcon(int size)
{
    QImage image = canvas(size, size);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF box(size * 0.04, size * 0.04, size * 0.92, size * 0.92);
    QLinearGradient fill(box.topLeft(), box.bottomRight());
    fill.setColorAt(0, QColor(0x14, 0xb8, 0xa6));
    fill.setColorAt(1, ArtPalette::accentDark());
    p.setPen(Qt::NoPen);
    p.setBrush(fill);
    p.drawRoundedRect(box, size * 0.22, size * 0.22);
    p.setBrush(Qt::white);
    p.drawPath(nib(box.center() + QPointF(0, -size * 0.04), size * 0.58));
    p.setBrush(QColor(255, 255, 255, 170));
    p.drawRoundedRect(QRectF(size * 0.26, size * 0.8, size * 0.48, size * 0.05), size * 0.025,
                      size * 0.025);
    return image;
}

void IconSet::paintGlyph(QPainter &p, TrayGlyph glyph, const QRectF &box)
{
    const QPointF c = box.center();
    const double r = box.width() / 2;
    switch (glyph) {
    case TrayGlyph::Show:
        p.drawRoundedRect(box.adjusted(0, r * 0.15, 0, -r * 0.15), r * 0.2, r * 0.2);
        p.drawLine(QPointF(box.left(), box.top() + r * 0.6),
                   QPointF(box.right(), box.top() + r * 0.6));
        return;
    case TrayGlyph::Setting:
        p.drawPath(gear(c, r));
        return;
    case TrayGlyph::Update: {
        const QRectF arc = box.adjusted(r * 0.1, r * 0.1, -r * 0.1, -r * 0.1);
        p.drawArc(arc, 60 * 16, 280 * 16);
        const double a = -60 * kPi / 180;
        const QPointF tip =
            c + QPointF(std::cos(a) * arc.width() / 2, std::sin(a) * arc.height() / 2);
        const QBrush old = p.brush();
        p.setBrush(p.pen().color());
        p.drawPolygon(arrowHead(tip + QPointF(r * 0.05, r * 0.1), a + kPi / 2 + 0.3, r * 0.45));
        p.setBrush(old);
        return;
    }
    case TrayGlyph::Exit:
        p.drawArc(box.adjusted(r * 0.1, r * 0.2, -r * 0.1, 0), 120 * 16, 300 * 16);
        p.drawLine(QPointF(c.x(), box.top()), QPointF(c.x(), c.y()));
        return;
    }
}

QImage IconSet::trayIcon(TrayGlyph glyph)
{
    QImage image = canvas(32, 32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(roundPen(ArtPalette::slate(700), 2.4));
    p.setBrush(Qt::NoBrush);
    paintGlyph(p, glyph, QRectF(6, 6, 20, 20));
    return image;
}

void IconSet::paintTitleGlyph(QPainter &p, TitleGlyph glyph, const QRectF &box)
{
    switch (glyph) {
    case TitleGlyph::Setting:
        p.drawPath(gear(box.center(), box.width() / 2));
        return;
    case TitleGlyph::Minimise:
        p.drawLine(QPointF(box.left(), box.center().y()), QPointF(box.right(), box.center().y()));
        return;
    case TitleGlyph::Close:
        p.drawLine(box.topLeft(), box.bottomRight());
        p.drawLine(box.topRight(), box.bottomLeft());
        return;
    }
}

QImage IconSet::titleButton(TitleGlyph glyph)
{
    QImage image = canvas(28, 28);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(roundPen(QColor(255, 255, 255, 235), 1.7));
    p.setBrush(Qt::NoBrush);
    const double inset = glyph == TitleGlyph::Setting ? 7 : 9;
    paintTitleGlyph(p, glyph, QRectF(inset, inset, 28 - 2 * inset, 28 - 2 * inset));
    return image;
}

QImage IconSet::settingWithRedPoint(ButtonState state)
{
    QImage image = canvas(28, 28);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    if (state != ButtonState::Normal) {
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(255, 255, 255, state == ButtonState::Hover ? 38 : 20));
        p.drawRoundedRect(QRectF(0, 0, 28, 28), 6, 6);
    }
    p.setPen(roundPen(QColor(255, 255, 255, 235), 1.7));
    p.setBrush(Qt::NoBrush);
    paintTitleGlyph(p, TitleGlyph::Setting, QRectF(7, 7, 14, 14));
    p.setPen(QPen(ArtPalette::slate(800), 1.5));
    p.setBrush(ArtPalette::danger());
    p.drawEllipse(QPointF(22, 6), 3.5, 3.5);
    return image;
}

QImage IconSet::otherApp()
{
    QImage image = canvas(52, 52);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(ArtPalette::slate(100));
    p.drawRoundedRect(QRectF(2, 2, 48, 48), 11, 11);
    for (int i = 0; i < 4; ++i) {
        p.setBrush(i == 0 ? ArtPalette::accent() : ArtPalette::slate(400));
        p.drawRoundedRect(QRectF(12 + (i % 2) * 16, 12 + (i / 2) * 16, 12, 12), 3, 3);
    }
    return image;
}

QImage IconSet::importResult(bool success)
{
    QImage image = canvas(72, 72);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor colour = success ? ArtPalette::accent() : ArtPalette::danger();
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(colour.red(), colour.green(), colour.blue(), 36));
    p.drawEllipse(QPointF(36, 36), 34, 34);
    p.setBrush(colour);
    p.drawEllipse(QPointF(36, 36), 26, 26);
    p.setPen(roundPen(Qt::white, 5));
    if (success) {
        p.drawPolyline(QPolygonF({QPointF(24, 37), QPointF(32, 45), QPointF(48, 28)}));
        return image;
    }
    p.drawLine(QPointF(27, 27), QPointF(45, 45));
    p.drawLine(QPointF(45, 27), QPointF(27, 45));
    return image;
}

// Cross hair with its hot spot at 32,32 and a corner that opens towards the area to pick.
QImage IconSet::cornerCursor(bool topLeft)
{
    QImage image = canvas(64, 64);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QPointF hot(32, 32);
    const QLineF lines[] = {{hot + QPointF(-14, 0), hot + QPointF(-4, 0)},
                            {hot + QPointF(4, 0), hot + QPointF(14, 0)},
                            {hot + QPointF(0, -14), hot + QPointF(0, -4)},
                            {hot + QPointF(0, 4), hot + QPointF(0, 14)}};
    p.setPen(roundPen(Qt::white, 4));
    for (const QLineF &line : lines)
        p.drawLine(line);
    p.setPen(roundPen(ArtPalette::slate(900), 1.8));
    for (const QLineF &line : lines)
        p.drawLine(line);
    const double s = topLeft ? 1 : -1;
    const QPolygonF corner(
        {hot + QPointF(s * 6, s * 24), hot + QPointF(s * 6, s * 6), hot + QPointF(s * 24, s * 6)});
    p.setPen(roundPen(Qt::white, 6));
    p.drawPolyline(corner);
    p.setPen(roundPen(ArtPalette::accent(), 3));
    p.drawPolyline(corner);
    return image;
}

QImage IconSet::screenArea()
{
    QImage image = canvas(160, 100);
    QPainter p(&image);
    p.setPen(QPen(ArtPalette::accent(), 2));
    p.setBrush(QColor(0x0d, 0x94, 0x88, 56));
    p.drawRect(QRectF(1, 1, 158, 98));
    return image;
}

QImage IconSet::disconnected()
{
    QImage image = canvas(200, 150);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF body(30, 22, 140, 88);
    p.setPen(Qt::NoPen);
    p.setBrush(ArtPalette::slate(200));
    p.drawRoundedRect(body, 10, 10);
    p.setBrush(ArtPalette::slate(100));
    p.drawRoundedRect(body.adjusted(30, 10, -10, -10), 5, 5);
    p.setBrush(ArtPalette::slate(300));
    for (int key = 0; key < 4; ++key)
        p.drawRoundedRect(QRectF(42, 38 + key * 14, 14, 9), 2.5, 2.5);
    // Cable from the tablet with its plug pulled away.
    p.setPen(roundPen(ArtPalette::slate(400), 3));
    p.setBrush(Qt::NoBrush);
    QPainterPath cable;
    cable.moveTo(body.center().x(), body.top());
    cable.cubicTo(100, 6, 140, 4, 150, 12);
    p.drawPath(cable);
    p.setPen(Qt::NoPen);
    p.setBrush(ArtPalette::slate(400));
    p.drawRoundedRect(QRectF(150, 6, 14, 12), 2, 2);
    p.setBrush(ArtPalette::slate(300));
    p.drawRect(QRectF(164, 9, 6, 6));
    const QPointF badge(148, 112);
    p.setBrush(Qt::white);
    p.drawEllipse(badge, 17, 17);
    p.setBrush(ArtPalette::slate(400));
    p.drawEllipse(badge, 14, 14);
    p.setPen(roundPen(Qt::white, 3));
    p.drawLine(badge + QPointF(-5, -5), badge + QPointF(5, 5));
    p.drawLine(badge + QPointF(5, -5), badge + QPointF(-5, 5));
    return image;
}

QImage IconSet::checkBox(bool checked)
{
    QImage image = canvas(16, 16);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(checked ? ArtPalette::accent() : ArtPalette::slate(400), 1.2));
    p.setBrush(checked ? ArtPalette::accent() : QColor(Qt::white));
    p.drawRoundedRect(QRectF(1, 1, 14, 14), 3.5, 3.5);
    if (!checked)
        return image;
    p.setPen(roundPen(Qt::white, 2));
    p.drawPolyline(QPolygonF({QPointF(4.5, 8.2), QPointF(7, 10.7), QPointF(11.5, 5.5)}));
    return image;
}

QImage IconSet::radioButton(bool checked)
{
    QImage image = canvas(16, 16);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(checked ? ArtPalette::accent() : ArtPalette::slate(400), 1.2));
    p.setBrush(Qt::white);
    p.drawEllipse(QPointF(8, 8), 6.8, 6.8);
    if (!checked)
        return image;
    p.setPen(Qt::NoPen);
    p.setBrush(ArtPalette::accent());
    p.drawEllipse(QPointF(8, 8), 3.8, 3.8);
    return image;
}

QImage IconSet::arrowDown()
{
    QImage image = canvas(12, 8);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(roundPen(ArtPalette::slate(500), 1.6));
    p.drawPolyline(QPolygonF({QPointF(2, 2), QPointF(6, 6), QPointF(10, 2)}));
    return image;
}
