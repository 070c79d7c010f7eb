#include "devicedrawing.h"

#include "artpalette.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>

#include <algorithm>

namespace
{
constexpr int kRemote = 4;
constexpr int kPenDisplay = 2;
constexpr double kPad = 16;
constexpr double kGap = 6;
constexpr double kRingGap = 10;
constexpr double kBezel = 14;

int rowCount(int keys, int lanes)
{
    return (keys + lanes - 1) / lanes;
}
} // namespace

DeviceDrawing::DeviceDrawing(const ModelTraits &model) : m_model(model)
{
    if (model.deviceType == kRemote)
        layOutKeypad();
    else
        layOutTablet();
}

// Keys run along one strip in the order the device counts them; a ring splits the strip.
QVector<DeviceDrawing::Slot> DeviceDrawing::stripSlots(double keyLength, double ringSize) const
{
    const int rows = rowCount(m_model.keyNum, m_lanes);
    const int firstRows = m_model.ringNum > 0 ? (rows + 1) / 2 : rows;
    QVector<Slot> cells;
    double along = 0;
    auto addRows = [&](int from, int to) {
        for (int row = from; row < to; ++row) {
            if (!cells.isEmpty())
                along += kGap;
            cells.append({along, keyLength, row});
            along += keyLength;
        }
    };
    addRows(0, firstRows);
    for (int ring = 0; ring < m_model.ringNum; ++ring) {
        along += cells.isEmpty() ? 0 : kRingGap;
        cells.append({along, ringSize, -1});
        along += ringSize;
    }
    if (m_model.ringNum > 0 && firstRows < rows)
        along += kRingGap - kGap;
    addRows(firstRows, rows);
    return cells;
}

void DeviceDrawing::layOutTablet()
{
    const bool vertical = m_model.keyDirection != 1;
    const bool hasStrip = m_model.keyNum > 0 || m_model.ringNum > 0;
    m_lanes = m_model.keyNum > 8 ? 2 : 1;
    const double thickness = hasStrip ? (vertical ? 60 : 48) : 0;
    const double keyLength = vertical ? 15 : 24;
    const QVector<Slot> cells = stripSlots(keyLength, thickness - 18);
    const double stripLength = cells.isEmpty() ? 0 : cells.last().along + cells.last().length;
    double width = m_model.deviceType == kPenDisplay ? 340 : 320;
    double height = 200;
    if (vertical)
        height = std::max(height, stripLength + 2 * kPad);
    else
        width = std::max(width, stripLength + 2 * kPad);
    m_body = QRectF(0, 0, width, height);
    if (!hasStrip) {
        m_surface = m_body.adjusted(kBezel, kBezel, -kBezel, -kBezel);
        return;
    }
    m_surface = vertical
                    ? QRectF(thickness, kBezel, width - thickness - kBezel, height - 2 * kBezel)
                    : QRectF(kBezel, thickness, width - 2 * kBezel, height - thickness - kBezel);
    const double start = ((vertical ? height : width) - stripLength) / 2;
    placeStrip(cells, start, thickness, vertical);
}

void DeviceDrawing::placeStrip(const QVector<Slot> &cells, double start, double thickness,
                               bool vertical)
{
    const double across = m_lanes == 1 ? thickness * 0.58 : thickness * 0.36;
    const double centre = thickness / 2;
    auto place = [vertical](double along, double acrossPos, double length, double size) {
        return vertical ? QRectF(acrossPos, along, size, length)
                        : QRectF(along, acrossPos, length, size);
    };
    m_keys.resize(m_model.keyNum);
    const int rows = rowCount(m_model.keyNum, m_lanes);
    const int firstRows = m_model.ringNum > 0 ? (rows + 1) / 2 : rows;
    for (const Slot &slot : cells) {
        const double along = start + slot.along;
        if (slot.row < 0) {
            m_rings.append(place(along, centre - slot.length / 2, slot.length, slot.length));
            continue;
        }
        for (int lane = 0; lane < m_lanes; ++lane) {
            const int index = keyIndex(slot.row, lane, vertical, firstRows, rows);
            if (index >= m_model.keyNum)
                break;
            const double offset = m_lanes == 1 ? -across / 2 : (lane == 0 ? -across - 3 : 3);
            m_keys[index] = place(along, centre + offset, slot.length, across);
        }
    }
}

// Two lanes count across each row on an upright strip, and lane by lane within each half of a
// lying one, so that both read like the rows of a keypad.
int DeviceDrawing::keyIndex(int row, int lane, bool vertical, int firstRows, int rows) const
{
    if (vertical || m_lanes == 1)
        return row * m_lanes + lane;
    const int halfStart = row < firstRows ? 0 : firstRows;
    const int halfRows = row < firstRows ? firstRows : rows - firstRows;
    return halfStart * m_lanes + lane * halfRows + row - halfStart;
}

void DeviceDrawing::layOutKeypad()
{
    const int keys = m_model.keyNum;
    const int rows = std::min(3, std::max(1, keys));
    const int columns = rowCount(keys, rows);
    const double keyWidth = 34;
    const double keyHeight = 26;
    const double ringSize = m_model.ringNum > 1 ? 56 : 78;
    const double ringColumn = m_model.ringNum > 0 ? ringSize + 24 : 0;
    const double gridWidth = columns * keyWidth + std::max(0, columns - 1) * 8;
    const double gridHeight = rows * keyHeight + (rows - 1) * 8;
    const double ringsHeight = m_model.ringNum * ringSize + std::max(0, m_model.ringNum - 1) * 8;
    const double height = std::max(gridHeight, ringsHeight) + 2 * 20;
    m_body = QRectF(0, 0, 20 + ringColumn + gridWidth + 20, height);
    double ringTop = (height - ringsHeight) / 2;
    for (int ring = 0; ring < m_model.ringNum; ++ring) {
        m_rings.append(QRectF(20, ringTop, ringSize, ringSize));
        ringTop += ringSize + 8;
    }
    const double left = 20 + ringColumn;
    const double top = (height - gridHeight) / 2;
    for (int key = 0; key < keys; ++key) {
        const int row = key / columns;
        const int column = key % columns;
        m_keys.append(QRectF(left + column * (keyWidth + 8), top + row * (keyHeight + 8), keyWidth,
                             keyHeight));
    }
}

// Turning the tablet mirrors the order of a key strip; numbers follow what the driver does.
bool DeviceDrawing::keyMirrored(int orientation) const
{
    if (m_model.groupKeys != 0)
        return false;
    if (m_model.keyDirection == 1)
        return orientation == 2 || orientation == 3;
    return orientation == 1 || orientation == 2;
}

QTransform DeviceDrawing::placement(const QRectF &frame, int orientation) const
{
    const bool turned = orientation % 2 != 0;
    const QSizeF shown = turned ? m_body.size().transposed() : m_body.size();
    const double scale = std::min(frame.width() / shown.width(), frame.height() / shown.height());
    QTransform t;
    t.translate(frame.center().x(), frame.center().y());
    t.rotate(90.0 * orientation);
    t.scale(scale, scale);
    t.translate(-m_body.width() / 2, -m_body.height() / 2);
    return t;
}

QImage DeviceDrawing::render(const QSize &canvas, const DeviceView &view) const
{
    QImage image(canvas, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    const double margin = std::max(3.0, std::min(canvas.width(), canvas.height()) * 0.05);
    paint(p, QRectF(QPointF(0, 0), QSizeF(canvas)).adjusted(margin, margin, -margin, -margin),
          view);
    return image;
}

void DeviceDrawing::paint(QPainter &p, const QRectF &frame, const DeviceView &view) const
{
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    const QTransform t = placement(frame, view.orientation);
    p.setTransform(t);
    paintBody(p);
    paintSurface(p);
    paintKeys(p, view.ringFocus);
    paintRings(p, view.ringFocus);
    p.resetTransform();
    if (view.numbered)
        paintNumbers(p, t, view.orientation);
    p.restore();
}

void DeviceDrawing::paintBody(QPainter &p) const
{
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(15, 23, 42, 40));
    p.drawRoundedRect(m_body.translated(0, 3), 16, 16);
    p.setBrush(ArtPalette::slate(800));
    p.setPen(QPen(ArtPalette::slate(700), 1.5));
    p.drawRoundedRect(m_body.adjusted(0.75, 0.75, -0.75, -0.75), 16, 16);
}

void DeviceDrawing::paintSurface(QPainter &p) const
{
    if (m_surface.isEmpty())
        return;
    p.setPen(Qt::NoPen);
    if (m_model.deviceType == kPenDisplay) {
        QLinearGradient screen(m_surface.topLeft(), m_surface.bottomRight());
        screen.setColorAt(0, QColor(0x1b, 0x3a, 0x4b));
        screen.setColorAt(1, ArtPalette::slate(900));
        p.setBrush(screen);
        p.drawRoundedRect(m_surface, 4, 4);
        QPainterPath sheen;
        sheen.moveTo(m_surface.topLeft());
        sheen.lineTo(m_surface.left() + m_surface.width() * 0.45, m_surface.top());
        sheen.lineTo(m_surface.left() + m_surface.width() * 0.2, m_surface.bottom());
        sheen.lineTo(m_surface.bottomLeft());
        sheen.closeSubpath();
        p.setBrush(QColor(255, 255, 255, 14));
        p.drawPath(sheen);
        return;
    }
    p.setBrush(ArtPalette::slate(700));
    p.drawRoundedRect(m_surface, 6, 6);
    const QRectF marks = m_surface.adjusted(7, 7, -7, -7);
    const double arm = std::min(14.0, marks.height() / 4);
    p.setPen(QPen(ArtPalette::accentLight(), 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    const QPointF corners[] = {marks.topLeft(), marks.topRight(), marks.bottomRight(),
                               marks.bottomLeft()};
    for (int i = 0; i < 4; ++i) {
        const QPointF c = corners[i];
        const double dx = (i == 0 || i == 3) ? arm : -arm;
        const double dy = (i < 2) ? arm : -arm;
        p.drawPolyline(QPolygonF({c + QPointF(dx, 0), c, c + QPointF(0, dy)}));
    }
    p.setPen(Qt::NoPen);
    p.setBrush(ArtPalette::accentLight());
    p.drawEllipse(QPointF(m_body.right() - kBezel / 2, m_body.top() + kBezel / 2), 2.2, 2.2);
}

void DeviceDrawing::paintKeys(QPainter &p, bool dimmed) const
{
    p.setPen(QPen(dimmed ? ArtPalette::slate(700) : ArtPalette::slate(500), 1));
    p.setBrush(dimmed ? ArtPalette::slate(700) : ArtPalette::slate(600));
    for (const QRectF &key : m_keys)
        p.drawRoundedRect(key, 4, 4);
}

void DeviceDrawing::paintRings(QPainter &p, bool focus) const
{
    for (const QRectF &ring : m_rings) {
        const double stroke = ring.width() * 0.13;
        const QRectF track = ring.adjusted(stroke / 2, stroke / 2, -stroke / 2, -stroke / 2);
        p.setPen(QPen(focus ? ArtPalette::accentLight() : ArtPalette::slate(600), stroke));
        p.setBrush(focus ? QColor(0x0d, 0x94, 0x88, 90) : ArtPalette::slate(700));
        p.drawEllipse(track);
        const double hub = ring.width() * 0.4;
        p.setPen(Qt::NoPen);
        p.setBrush(focus ? ArtPalette::accent() : ArtPalette::slate(600));
        p.drawEllipse(ring.center(), hub / 2, hub / 2);
        if (!focus)
            continue;
        // Two arrow heads on the track say that it turns.
        p.setBrush(Qt::white);
        const double r = track.width() / 2;
        const QPointF c = ring.center();
        const double size = stroke * 0.9;
        p.drawPolygon(QPolygonF(
            {c + QPointF(-size, -r), c + QPointF(size, -r - size), c + QPointF(size, -r + size)}));
        p.drawPolygon(QPolygonF(
            {c + QPointF(size, r), c + QPointF(-size, r - size), c + QPointF(-size, r + size)}));
    }
}

void DeviceDrawing::paintNumbers(QPainter &p, const QTransform &t, int orientation) const
{
    const bool mirrored = keyMirrored(orientation);
    const int count = m_keys.size();
    for (int key = 0; key < count; ++key) {
        const QRectF shown = t.mapRect(m_keys.at(key));
        const double size = std::min(shown.width(), shown.height());
        p.setFont(ArtPalette::font(std::clamp(qRound(size * 0.68), 7, 15), true));
        p.setPen(Qt::white);
        const int number = mirrored ? count - key : key + 1;
        p.drawText(shown, Qt::AlignCenter, QString::number(number));
    }
}
