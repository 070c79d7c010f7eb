#pragma once

#include <QImage>

// Seven 13-pixel rows from full to empty, one per step of the battery gauge.
class BatterySprite
{
public:
    static QImage render(bool charging);

private:
    static void paintRow(QPainter &p, int row, bool charging);
};
