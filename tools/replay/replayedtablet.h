#pragma once

#include <QRect>
#include <QString>
#include <QVector>

// What a replayed tablet is: its profile, what the device would report about
// itself, and the desktop it maps onto.
struct ReplayedTablet {
    QString configFile;
    QString model;
    int productId = 0;
    int deviceType = 0;
    qint64 maxX = 0;
    qint64 maxY = 0;
    int maxPressure = 0;
    int lpi = 0;
    QVector<QRect> screens;
};
