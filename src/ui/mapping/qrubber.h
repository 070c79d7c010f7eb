#pragma once

#include <QPoint>
#include <QRect>
#include <QWidget>

class QRubberBand;

// A transparent layer over a picture where the mouse drags out a rectangle. The band shows
// only while dragging; the owner paints the chosen part from GetRubberRect.
class QRubber : public QWidget
{
    Q_OBJECT
public:
    explicit QRubber(QWidget *parent = nullptr);

    QRect GetRubberRect() const { return m_Rect; }
    void SetRubberRect(QRect rect);

signals:
    // The band in this widget's pixels, and this widget's geometry in its parent.
    void RubberRectChange(QRect rect, QRect widget);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    QRubberBand *m_Band;
    QPoint m_Start;
    QRect m_Rect;
    bool m_Moved = false;
};
