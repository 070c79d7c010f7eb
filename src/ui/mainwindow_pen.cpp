// The pictures of the model and its pens, and the pressure slider's level.
#include "mainwindow.h"

#include "ctablet.h"
#include "ui_mainwindow.h"

#include <QPixmap>

#include <cmath>

// Pen, key strip and wheel as the model looks in its orientation.
void MainWindow::showModelPictures(const CTablet *tablet)
{
    const stTablet_XMLData &settings = *tablet->m_TabletXMLData;
    const QString model = QString::fromUtf8(tablet->m_DeviceAttributes.ModelName);
    if (!settings.SupportGroupKeys && settings.DevicePenNum == 1)
        showImage(QPixmap(QString(":/image/Res/pen%1.png").arg(settings.DevicePenType)),
                  ui->label_penbg);
    else
        UpdatePenPicture();
    showImage(QPixmap(QString(":/image/tablet/%1_K%2.png").arg(model).arg(settings.Orientation)),
              ui->label_keyimage);
    if (settings.DeviceRingNum >= 1)
        showImage(QPixmap(QString(":/image/tablet/%1_R.png").arg(model)), ui->label_ringimage);
}

// With several pens the page shows the one last seen on the tablet, by its number.
void MainWindow::UpdatePenPicture()
{
    if (!m_CurrentTablet)
        return;
    const stTablet_XMLData &settings = *m_CurrentTablet->m_TabletXMLData;
    if (settings.SupportGroupKeys || settings.DevicePenNum == 1 || settings.DeviceCurPenID < 0)
        return;
    showImage(QPixmap(QString(":/image/Res/pen%1.png").arg(settings.DeviceCurPenID + 1)),
              ui->label_penbg);
}

int MainWindow::DidPressurePointsConvertToIntValue(SPresslvPoints points)
{
    struct Threshold {
        double above;
        int level;
    };
    static constexpr Threshold kThresholds[] = {{10.28, -3}, {3.0, -2}, {1.39, -1},
                                                {0.69, 0},   {0.33, 1}, {0.2, 2}};
    const float steepness = (1 - points.P1Y) / std::fabs(points.P1X - points.P0);
    for (const Threshold &threshold : kThresholds) {
        if (steepness > threshold.above)
            return threshold.level;
    }
    return 3;
}
