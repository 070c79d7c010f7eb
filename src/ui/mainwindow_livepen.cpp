// The live pen: the pressure bar of the pen page and the pressure test's drawing. Reports come
// to the window only while one of them can be seen.
#include "mainwindow.h"

#include "ctablet.h"
#include "drawlinetestdialog.h"
#include "tabletdata.h"
#include "ui_mainwindow.h"

#include <QEvent>

namespace
{
constexpr int kPenPage = 1;
// Pressure is reported in the pen device's range whatever the tablet's own.
constexpr double kReportedPressureMax = 8191.0;
// Pen status of a pen out of range, which the test drawing takes as the pen leaving.
constexpr int kPenInRange = 0xA0;
constexpr int kPenLeft = 0xC0;
} // namespace

void MainWindow::ReceivMultiData(CTablet *tablet, MultiData data)
{
    if (isMinimized() || !isVisible() || tablet != m_CurrentTablet)
        return;
    const int maximum = tablet->m_DeviceAttributes.MaxPressure;
    const bool pen = data.flags & kEventPen;
    int pressure = data.pressure;
    if (maximum < kReportedPressureMax)
        pressure = static_cast<int>(pressure / kReportedPressureMax * maximum);
    if (ui->tabWidget->currentIndex() == kPenPage && pen)
        showPressure(pressure, maximum);
    if (m_DrawTest && m_DrawTest->isVisible())
        m_DrawTest->PenEvent(pen ? kPenInRange : kPenLeft, data.screenPosX, data.screenPosY,
                             data.pressure);
    showDiagnosisPen(data, pressure);
}

void MainWindow::showPressure(int pressure, int maximum)
{
    const int track = ui->widget_pressTrack->width();
    const int width = maximum > 0 ? qBound(0, pressure * track / maximum, track) : 0;
    ui->label_pressBar->resize(width, ui->widget_pressTrack->height());
    ui->label_pressValue->setText(QString::number(pressure));
}

// The test stays open beside the window, which keeps answering while the user draws.
void MainWindow::on_pushButton_TestPressure_clicked()
{
    if (!m_CurrentTablet)
        return;
    if (m_DrawTest) {
        m_DrawTest->activateWindow();
        return;
    }
    m_DrawTest = new DrawLineTestDialog(this);
    m_DrawTest->setAttribute(Qt::WA_DeleteOnClose);
    connect(this, &MainWindow::HideDialog, m_DrawTest, &QWidget::close);
    connect(m_DrawTest, &QDialog::finished, this, &MainWindow::updateLiveFeed);
    m_DrawTest->ShowDialogInCenter();
    m_DrawTest->show();
    updateLiveFeed();
}

// The current tablet sends what it made of each report only while someone can see it.
void MainWindow::updateLiveFeed()
{
    if (!m_CurrentTablet)
        return;
    const bool seen = isVisible() && !isMinimized();
    const bool testing = m_DrawTest && m_DrawTest->isVisible();
    m_CurrentTablet->m_SendMultiData =
        testing ||
        (seen && (!m_DiagnosisDlg.isNull() || ui->tabWidget->currentIndex() == kPenPage));
}

void MainWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    updateLiveFeed();
}

void MainWindow::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    updateLiveFeed();
}

void MainWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        updateLiveFeed();
}
