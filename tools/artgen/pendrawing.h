#pragma once

#include <QImage>

// A slim pen standing upright, tip down; the number picks the model of pen.
class PenDrawing
{
public:
    static QImage render(int number);

private:
    static void paintTip(QPainter &p, double bottom);
    static void paintBarrel(QPainter &p, int design);
    static void paintButtons(QPainter &p, int design);
};
