#pragma once

#include "modeltable.h"

#include <QImage>
#include <QRectF>
#include <QVector>

class QPainter;
class QTransform;

// How one picture of a device is drawn: turned by the orientation, keys numbered as the
// driver counts them, or the rings brought forward for the wheel page.
struct DeviceView {
    int orientation = 0;
    bool numbered = false;
    bool ringFocus = false;
};

// Flat drawing of a model, laid out from its traits in the table of models.
class DeviceDrawing
{
public:
    explicit DeviceDrawing(const ModelTraits &model);
    QImage render(const QSize &canvas, const DeviceView &view) const;
    void paint(QPainter &p, const QRectF &frame, const DeviceView &view) const;

private:
    struct Slot {
        double along = 0;
        double length = 0;
        int row = -1; // -1 for a ring
    };

    void layOutTablet();
    void layOutKeypad();
    QVector<Slot> stripSlots(double keyLength, double ringSize) const;
    void placeStrip(const QVector<Slot> &cells, double start, double thickness, bool vertical);
    int keyIndex(int row, int lane, bool vertical, int firstRows, int rows) const;
    bool keyMirrored(int orientation) const;
    QTransform placement(const QRectF &frame, int orientation) const;
    void paintBody(QPainter &p) const;
    void paintSurface(QPainter &p) const;
    void paintKeys(QPainter &p, bool dimmed) const;
    void paintRings(QPainter &p, bool focus) const;
    void paintNumbers(QPainter &p, const QTransform &t, int orientation) const;

    ModelTraits m_model;
    int m_lanes = 1;
    QRectF m_body;
    QRectF m_surface;       // active area or screen; empty on a keypad
    QVector<QRectF> m_keys; // in the order the device numbers them
    QVector<QRectF> m_rings;
};
