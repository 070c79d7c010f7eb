// The mapping page's tablet side: work area, rotation, reset, and the page's dialogs.
#include "mainwindow.h"

#include "cglobaldata.h"
#include "ctablet.h"
#include "devicecommands.h"
#include "jsonserver.h"
#include "mappingwidget.h"
#include "mylrc.h"
#include "screencalibrate.h"
#include "selectareasettingdialog.h"
#include "showscreenid.h"
#include "textfield.h"
#include "ui_mainwindow.h"

#include <QButtonGroup>
#include <QDebug>
#include <QMutexLocker>
#include <QSignalBlocker>

namespace
{
// Where the tablet picture sits in the work area dialog.
const QRect kDialogTabletPicture(QPoint(160, 25), QPoint(519, 214));

void storeWorkArea(stTablet_XMLData *data, const QRect &area)
{
    if (!data)
        return;
    QMutexLocker locker(&CGlobalData::XMLMutex);
    data->TX = area.x();
    data->TY = area.y();
    data->TW = area.width();
    data->TH = area.height();
}
} // namespace

QRect MainWindow::spinWorkArea() const
{
    return QRect(ui->spinBox_tx->value(), ui->spinBox_ty->value(), ui->spinBox_tw->value(),
                 ui->spinBox_th->value());
}

// The work area into the spin boxes, the preview and the profile.
void MainWindow::showWorkArea(const QRect &area)
{
    for (auto [box, value] : {std::pair<QSpinBox *, int>{ui->spinBox_tx, area.x()},
                              {ui->spinBox_ty, area.y()},
                              {ui->spinBox_tw, area.width()},
                              {ui->spinBox_th, area.height()}}) {
        const QSignalBlocker blocker(box);
        box->setValue(value);
    }
    ui->widget_devicemapping->SetTabletAreaValue(area.x(), area.y(), area.width(), area.height());
    storeWorkArea(mappedProfile(), spinWorkArea());
}

void MainWindow::on_pushButton_fullworkarea_clicked()
{
    const stTablet_XMLData *data = mappedProfile();
    showWorkArea(QRect(QPoint(0, 0), tabletSize(data ? data->Orientation : 0)));
    sendMappingEvent("FullTabletClicked", true);
}

// The largest area of the chosen screen's shape, centred on the tablet.
QRect MainWindow::ProportionalArea(QSize tablet, QSize screen)
{
    const float w = tablet.width();
    const float h = tablet.height();
    const float r = float(screen.width()) / float(screen.height());
    if (w / h > r) {
        const int width = int(r * h);
        return QRect((tablet.width() - width) / 2, 0, width, tablet.height());
    }
    const int height = int(w / r);
    return QRect(0, (tablet.height() - height) / 2, tablet.width(), height);
}

void MainWindow::on_pushButton_screenscal_clicked()
{
    const stTablet_XMLData *data = mappedProfile();
    const QRect screen = screenEntry(ui->comboBox_screen->currentIndex());
    showWorkArea(ProportionalArea(tabletSize(data ? data->Orientation : 0), screen.size()));
    sendMappingEvent("TabletScreenScalClicked", true);
}

void MainWindow::on_spinBox_tx_valueChanged(int)
{
    workSpinChanged(true, true, "SpinBoxTxValueChanged");
}

void MainWindow::on_spinBox_tw_valueChanged(int)
{
    workSpinChanged(true, false, "SpinBoxTwValueChanged");
}

void MainWindow::on_spinBox_ty_valueChanged(int)
{
    workSpinChanged(false, true, "SpinBoxTyValueChanged");
}

void MainWindow::on_spinBox_th_valueChanged(int)
{
    workSpinChanged(false, false, "SpinBoxThValueChanged");
}

// A moved edge shrinks the size to fit; a grown size moves the edge back. Only the left
// edge keeps the size from reaching 0: the others leave it to the spin box's minimum.
void MainWindow::workSpinChanged(bool horizontal, bool positionMoved, const char *event)
{
    const stTablet_XMLData *data = mappedProfile();
    const QSize size = tabletSize(data ? data->Orientation : 0);
    QSpinBox *position = horizontal ? ui->spinBox_tx : ui->spinBox_ty;
    QSpinBox *length = horizontal ? ui->spinBox_tw : ui->spinBox_th;
    const int span = horizontal ? size.width() : size.height();
    if (position->value() + length->value() > span) {
        const QSignalBlocker blocker(positionMoved ? length : position);
        if (!positionMoved)
            position->setValue(span - length->value());
        else if (horizontal)
            length->setValue(qMax(1, span - position->value()));
        else
            length->setValue(span - position->value());
    }
    storeWorkArea(mappedProfile(), spinWorkArea());
    ui->widget_devicemapping->Tablet_valueChanged(spinWorkArea());
    sendMappingEvent(event, true, true);
}

void MainWindow::onSetTabletValue(int x, int y, int w, int h)
{
    showWorkArea(QRect(x, y, w, h));
    sendMappingEvent("SetTabletAreaValue", true);
}

void MainWindow::onSetAreaOk(short x, short y, short w, short h)
{
    showWorkArea(QRect(x, y, w, h));
    if (m_CurrentTablet)
        disconnect(m_CurrentTablet, &CTablet::SetAreaOk, nullptr, nullptr);
    sendMappingEvent("SetTabletAreaOk", true);
}

// A rotation always resets the work area to the whole tablet.
void MainWindow::onRotationButtonClicked(int id, bool)
{
    stTablet_XMLData *data = mappedProfile();
    if (!data || id < 0 || id > 3)
        return;
    const QSize size = tabletSize(id);
    showImage(QPixmap(QString(":/image/tablet/%1_K%2.png")
                          .arg(QString::fromUtf8(m_CurrentTablet->m_DeviceAttributes.ModelName))
                          .arg(id)),
              ui->label_keyimage);
    {
        QMutexLocker locker(&CGlobalData::XMLMutex);
        data->TX = 0;
        data->TY = 0;
        data->TW = size.width();
        data->TH = size.height();
        data->Orientation = id;
    }
    SetTabletArea(data);
    ui->widget_devicemapping->SetTabletOrientation(id);
    if (TouchModeOn(*data))
        m_CurrentTablet->SentCmd(kCmdTouchStrip, kStripTouch, id);
    sendMappingEvent("RotationButtonClicked", true, true);
}

void MainWindow::on_comboBox_rotate_currentIndexChanged(int index)
{
    stTablet_XMLData *data = mappedProfile();
    if (!data || index < 0)
        return;
    data->Orientation = index;
    showImage(QPixmap(QString(":/image/tablet/%1_K%2.png")
                          .arg(QString::fromUtf8(m_CurrentTablet->m_DeviceAttributes.ModelName))
                          .arg(index)),
              ui->KeypadImageLabel);
}

void MainWindow::onResetWorkAreaDefaultSetting(bool withRotation)
{
    qDebug() << "onResetWorkAreaDefaultSetting";
    EnumDisplay(false);
    ui->widget_devicemapping->SetCTablet(m_CurrentTablet);
    ui->widget_devicemapping->UpdateUI();
    if (!m_CurrentTablet)
        return;
    if (m_CurrentTablet->m_DeviceAttributes.DeviceType == DeviceTypePenDisplay)
        resetPenDisplayMapping();
    else
        resetTabletMapping(withRotation);
    sendUsageEvent("ResetWorkAreaSetting", "1", true);
}

// A pen display maps to its own screen, the first one while it does not report which.
void MainWindow::resetPenDisplayMapping()
{
    const int displayScreen = qMin(1, CGlobalData::ScreenNum);
    ui->comboBox_screen->setCurrentIndex(displayScreen);
    selectScreen(displayScreen);
    on_pushButton_fullworkarea_clicked();
    const bool rotated = mappedProfile()->Orientation != 0;
    m_RotationGroup->button(0)->setChecked(true);
    if (rotated)
        onRotationButtonClicked(0, true);
    placeDisplaySettingsButton();
    if (!ui->pushButton_ScreenSetting->isHidden())
        m_CurrentTablet->SentCmd(kCmdDisplayReset, 1, 0);
}

void MainWindow::resetTabletMapping(bool withRotation)
{
    placeCalibrateButton(false);
    placeDisplaySettingsButton();
    {
        const QSignalBlocker blocker(ui->comboBox_screen);
        ui->comboBox_screen->setCurrentIndex(0);
    }
    on_pushButton_fullscreen_clicked();
    if (!withRotation)
        return;
    m_RotationGroup->button(0)->setChecked(true);
    onRotationButtonClicked(0, true);
}

void MainWindow::on_pushButton_setscreenarea_clicked()
{
    if (!m_CurrentTablet)
        return;
    SelectAreaSettingDialog dialog(this);
    connect(this, &MainWindow::HideDialog, &dialog, &QWidget::hide);
    dialog.SetSelectTabletType(false);
    int screens = CGlobalData::ScreenNum;
    dialog.InitScreenUI(m_CurrentTablet, CGlobalData::ScreenArray, CGlobalData::LogicScreenArray,
                        screens, screenEntry(ui->comboBox_screen->currentIndex()), nullptr);
    dialog.on_SetScreenRect(spinScreenArea());
    dialog.ShowDialogInCenter();
    if (dialog.exec() == QDialog::Accepted)
        on_SetScreenRect(dialog.GetScreenRect());
}

void MainWindow::on_pushButton_selectWorkArea_clicked()
{
    stTablet_XMLData *data = mappedProfile();
    if (!data)
        return;
    SelectAreaSettingDialog dialog(this);
    connect(this, &MainWindow::HideDialog, &dialog, &QWidget::hide);
    dialog.SetSelectTabletType(true);
    const QRect full(QPoint(0, 0), tabletSize(data->Orientation));
    dialog.InitUI(m_CurrentTablet, full, full, kDialogTabletPicture,
                  QString(":/image/tablet/%1.png")
                      .arg(QString::fromUtf8(m_CurrentTablet->m_DeviceAttributes.ModelName)),
                  data->Orientation);
    const QRect area = spinWorkArea();
    dialog.SetTabletValue(area.x(), area.y(), area.width(), area.height());
    dialog.ShowDialogInCenter();
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QRect chosen = dialog.GetWorkRect();
    onSetAreaOk(chosen.x(), chosen.y(), chosen.width(), chosen.height());
}

// Each screen shows its number near its lower left corner for two seconds.
void MainWindow::on_pushButton_showscreenid_clicked()
{
    for (int i = 1; i <= CGlobalData::ScreenNum && i < kScreenSlots; ++i) {
        auto *number = new ShowScreenID;
        number->setAttribute(Qt::WA_DeleteOnClose);
        const QRect &screen = CGlobalData::LogicScreenArray[i];
        number->move(screen.left() + 50, screen.bottom() - number->height() - 6);
        number->SetScreenNum(i);
    }
    sendUsage([this] {
        return JsonServer::GetJsonData("ShowScreenIdClicked", "1") + "," +
               JsonServer::GetJsonData("curapp", "") + "," +
               JsonServer::GetJsonData("tablet", currentTabletName());
    });
}

void MainWindow::on_pushButton_screencalibrate_clicked()
{
    auto *calibrate = new ScreenCalibrate;
    calibrate->setAttribute(Qt::WA_DeleteOnClose);
    connect(calibrate, &ScreenCalibrate::sign_ScreenCalibrate, this,
            &MainWindow::GetScreenCalibrate);
    calibrate->show();
    sendUsageEvent("ScreenCalibrateClicked", "1", true);
}

void MainWindow::onClearSpinBoxFocus()
{
    for (QSpinBox *box : {ui->spinBox_sx, ui->spinBox_sy, ui->spinBox_sw, ui->spinBox_sh,
                          ui->spinBox_tx, ui->spinBox_ty, ui->spinBox_tw, ui->spinBox_th})
        box->clearFocus();
}
