#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QWidget>

// Fine mode: dims the screen around a small hole to which the whole tablet maps.
class JingXiMode : public QWidget
{
    Q_OBJECT
public:
    JingXiMode(QRect screen, QPoint centre, QWidget *parent = nullptr);

    // Top-left corner of the hole in a window of `window`, for the centre point `p`
    // relative to the window.
    static QPoint HoleOrigin(QPoint p, QSize window);
    // The hole below its title strip, in desktop coordinates.
    static QRect ModeRect(QPoint hole, QPoint windowOrigin);

signals:
    void GetModeRect(QRect rect);
    void CloseJingxiMode();

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void paintTitle(QPainter &painter);

    QRect m_ScreenRect;
    QPoint m_Centre;
    QRect m_HoleRect;
};
