// The screens as the mapping sees them, and the calibration result.
#include "mainwindow.h"

#include "cglobaldata.h"
#include "cscreeninfos.h"
#include "ctablet.h"
#include "mappingwidget.h"
#include "ui_mainwindow.h"

#include <QDebug>
#include <QMutexLocker>

#include <algorithm>
#include <iterator>

void MainWindow::onDeskScreenChanged(int)
{
    EnumDisplay(true);
}

void MainWindow::EnumDisplay(bool screensChanged)
{
    QRect screens[kScreenSlots];
    CGlobalData::PrimaryID = 0;
    const CScreenInfos infos;
    const int count = infos.GetScreenCount();
    // A tenth screen and beyond have no slot.
    const int listed = std::min(count, kScreenSlots - 1);
    screens[0] = infos.GetAllScreenRect();
    for (int i = 0; i < listed; ++i)
        screens[i + 1] = infos.GetScreenRect(i);
    std::copy(std::begin(screens), std::end(screens), std::begin(CGlobalData::ScreenArray));
    CGlobalData::ScreenNum = listed;
    ui->widget_devicemapping->updataScreen(screensChanged);
    qDebug() << "Function  EnumDisplay nScreenCount:" << count;
    fillScreenList();
    EnumLogicDisplay();
}

void MainWindow::EnumLogicDisplay()
{
    // Unfilled slots are all-zero rectangles, not null ones; intended.
    const QRect zero(QPoint(0, 0), QPoint(0, 0));
    QRect source[kScreenSlots];
    QRect sorted[kScreenSlots];
    std::fill(std::begin(source), std::end(source), zero);
    std::fill(std::begin(sorted), std::end(sorted), zero);
    const int count = std::min(CGlobalData::ScreenNum, kScreenSlots - 1);
    const CScreenInfos infos;
    for (int i = 0; i < count; ++i)
        source[i + 1] = infos.GetScreenRect(i);
    SortQRectRect(source, sorted, count, false);
    std::copy(std::begin(sorted), std::end(sorted), std::begin(CGlobalData::LogicScreenArray));
}

// Selection sort by left edge, then top, over slots 1 to 9; src is sorted along.
void MainWindow::SortQRectRect(QRect *src, QRect *dst, int count, bool trackPrimary)
{
    const int last = std::min(count, kScreenSlots - 1);
    for (int i = 1; i <= last; ++i) {
        dst[i] = src[i];
        for (int j = i + 1; j <= last; ++j) {
            if (dst[i].left() == src[j].left() && dst[i].top() <= src[j].top())
                continue;
            if (dst[i].left() < src[j].left())
                continue;
            std::swap(src[i], src[j]);
            dst[i] = src[i];
            if (!trackPrimary)
                continue;
            if (CGlobalData::PrimaryID == j)
                CGlobalData::PrimaryID = i;
            else if (CGlobalData::PrimaryID == i)
                CGlobalData::PrimaryID = j;
        }
    }
}

void MainWindow::GetScreenCalibrate(float fkx, float fky, float fxlc, float fylc)
{
    qDebug() << "GetScreenCalibrate" << fkx << fky << fxlc << fylc;
    if (!m_CurrentTablet || !m_CurrentTablet->m_TabletXMLData)
        return;
    QMutexLocker lock(&CGlobalData::XMLMutex);
    stTablet_XMLData &data = *m_CurrentTablet->m_TabletXMLData;
    data.fKX = fkx;
    data.fKY = fky;
    data.fXLC = fxlc;
    data.fYLC = fylc;
}
