#pragma once

#include <QColor>
#include <QPixmap>
#include <QPointF>
#include <QString>
#include <QWidget>

// A field to try the pressure in: the pen's strokes, drawn as wide as it presses.
class CPenDrawWidget : public QWidget
{
    Q_OBJECT
public:
    explicit CPenDrawWidget(QWidget *parent = nullptr);

    // A pen report: its status, its point in desktop pixels, its pressure of 8191.
    void PenEvent(int status, double x, double y, int pressure);
    void clear();
    void SetPenColor(QString color);
    void SetBackgroundColor(QString color);
    void SetBackgroundPic(QString file);
    // The strokes, on a transparent ground.
    const QPixmap &pixmap() const { return m_Pixmap; }

    // The pen has left since the last point.
    static bool bLeave;
    // The tip has touched since the pen came in range.
    static bool bPenTipDown;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void growPixmap();
    bool toPixmapPoint(double x, double y, QPointF &point) const;
    void drawLine(QPointF from, QPointF to, int pressure);

    QPixmap m_Pixmap;
    QColor m_PenColor;
    QColor m_BackgroundColor;
    QPixmap m_BackgroundPic;
    const double m_MaxWidth = 12.0;
    QPointF m_LastPoint;
};
