#pragma once

#include "settingsrecords.h"

#include <QPoint>
#include <QPointF>
#include <QString>
#include <QWidget>

class QPainter;
class QSlider;

// The pressure curve editor: a quadratic Bezier over a square, its control point dragged by a
// round handle, its start moved by the bottom slider (P0) and its end by the top one (P2).
// The handle's parent is the "pressCurveArea" frame, which holds the square at (10, 10).
class QPressAdjustWedget : public QWidget
{
    Q_OBJECT
public:
    explicit QPressAdjustWedget(QWidget *parent = nullptr);

    void SetPoints(SPresslvPoints points);
    SPresslvPoints GetPoints() const;
    // -3, the softest, to 3, the hardest; any other level leaves the curve as it is.
    void SetPressSensitivityLv(short level);
    void Reset();
    // Places start, control point, end, sliders and handle from the four floats.
    void UpdatePressureLine();

    float P0 = 0.0f;
    float P1X = 0.5f;
    float P1Y = 0.5f;
    float P2 = 1.0f;

signals:
    void PressSensitivityChange(SPresslvPoints points);

public slots:
    void on_p0slidervaulechanged(int value);
    void on_p2slidervaulechanged(int value);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void InitLanguageUI();
    QSlider *makeSlider(const char *name, int y);
    QPoint boundHandle(QPoint topLeft) const;
    void paintGrid(QPainter &painter) const;
    void paintCurve(QPainter &painter) const;

    QWidget *m_CurveArea;
    QWidget *m_Handle;
    QSlider *m_SliderP0;
    QSlider *m_SliderP2;
    // In the coordinates of the curve area's frame.
    QPointF m_Start;
    QPointF m_Control;
    QPointF m_End;
    bool m_Dragging = false;
    QPoint m_LastPos;
    QString m_OutputText;
};
