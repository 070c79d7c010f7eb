#pragma once

#include <QPoint>
#include <QRect>
#include <QWidget>

// A dimmed window over a screen area where two clicks, upper left and lower right, choose a
// rectangle of the desktop. It closes itself on the release after the second click.
class SelectScreenArea : public QWidget
{
    Q_OBJECT
public:
    explicit SelectScreenArea(QWidget *parent = nullptr);

    // Covers `rect`; clicks are scaled about its origin, a scale of 1.0 takes them as they are.
    void SetScreenArea(QRect rect, double scaleX, double scaleY);

signals:
    void SetScreenRect(QRect rect);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QPoint desktopPoint(const QPoint &global) const;
    void setCornerCursor(const char *picture);

    QPoint m_Origin;
    double m_ScaleX = 1.0;
    double m_ScaleY = 1.0;
    QPoint m_First;
    bool m_FirstClick = true;
    bool m_Done = false;
};
