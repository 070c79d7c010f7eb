// The mapping page: which part of the tablet drives which part of which screen. Every store
// of a mapping field is made under the profile lock, which is never held across a widget call.
#include "mainwindow.h"

#include "cglobaldata.h"
#include "ctablet.h"
#include "devicecommands.h"
#include "displaymodels.h"
#include "jsonserver.h"
#include "mappingwidget.h"
#include "textfield.h"
#include "ui_mainwindow.h"

#include <QButtonGroup>
#include <QDebug>
#include <QMutexLocker>
#include <QSignalBlocker>

namespace
{
const QPoint kGroupBesideCalibrate(20, 14);
const QPoint kGroupAlone(107, 14);
// Pen displays from this product on have a settings dialog of their own.

QString item(const char *key, int value)
{
    return JsonServer::GetJsonData(key, QString::number(value));
}

// The whole of a screen table entry becomes the mapped screen.
void storeScreen(stTablet_XMLData &data, int index, const QRect &screen)
{
    QMutexLocker locker(&CGlobalData::XMLMutex);
    data.ScreenId = index;
    data.SX = screen.left();
    data.SY = screen.top();
    data.SW = screen.width();
    data.SH = screen.height();
}

// Both spin boxes and their range, without a signal.
void setSpan(QSpinBox *position, QSpinBox *size, int lowest, int highest, int span, int at,
             int length)
{
    const QSignalBlocker positionBlocker(position);
    const QSignalBlocker sizeBlocker(size);
    position->setRange(lowest, highest);
    size->setRange(1, qMax(1, span));
    position->setValue(at);
    size->setValue(length);
}

// After `position` moved the size shrinks to fit, after `size` grew the position moves back.
void fitSpan(QSpinBox *position, QSpinBox *size, int base, int span, bool positionMoved)
{
    if (position->value() - base + size->value() <= span)
        return;
    const QSignalBlocker blocker(positionMoved ? size : position);
    if (positionMoved)
        size->setValue(span - (position->value() - base));
    else
        position->setValue(span - size->value() + base);
}
} // namespace

// The rotation group and the preview's signals; the page's buttons connect by name.
void MainWindow::connectMappingPage()
{
    m_RotationGroup = new QButtonGroup(this);
    m_RotationGroup->addButton(ui->radioButton_r0, 0);
    m_RotationGroup->addButton(ui->radioButton_r90, 1);
    m_RotationGroup->addButton(ui->radioButton_r180, 2);
    m_RotationGroup->addButton(ui->radioButton_r270, 3);
    connect(m_RotationGroup, &QButtonGroup::idClicked, this,
            [this](int id) { onRotationButtonClicked(id, true); });
    connect(ui->widget_devicemapping, &mappingwidget::SetScreenValue, this,
            &MainWindow::onSetScreenValue);
    connect(ui->widget_devicemapping, &mappingwidget::SetTabletValue, this,
            &MainWindow::onSetTabletValue);
    connect(ui->pushButton_device, &QPushButton::clicked, this,
            [this] { onResetWorkAreaDefaultSetting(true); });
    ui->horizontalWidget_4->hide();
    ui->TabletgroupBox2->hide();
}

// The mapping part of bringing a device's pages up.
void MainWindow::showMappingPage(CTablet *tablet)
{
    stTablet_XMLData *data = tablet->m_TabletXMLData;
    const bool display = tablet->m_DeviceAttributes.DeviceType == DeviceTypePenDisplay;
    ui->widget_devicemapping->SetCTablet(tablet);
    if (display)
        followDisplay(tablet);
    placeCalibrateButton(data->ScreenId != -1);
    placeDisplaySettingsButton();
    UpdateMapping(data);
    const QStringList words = languageText("Device.TabletArea").split('/');
    const QString title = words.value(display ? 1 : 0);
    if (!title.isEmpty())
        ui->tabWidget_screen->setTabText(1, title);
    if (!data->SupportGroupKeys)
        return;
    const QSignalBlocker blocker(ui->comboBox_rotate);
    ui->comboBox_rotate->setCurrentIndex(data->Orientation);
    showImage(QPixmap(QString(":/image/tablet/%1_K%2.png")
                          .arg(QString::fromUtf8(tablet->m_DeviceAttributes.ModelName))
                          .arg(data->Orientation)),
              ui->KeypadImageLabel);
}

// A pen display maps to its own screen. It does not report which one yet, nor its rotation,
// so these stand at screen 0 and no rotation.
void MainWindow::followDisplay(CTablet *tablet)
{
    constexpr int kReportedScreen = 0;
    constexpr int kReportedRotation = 0;
    qDebug() << "m_displayContent.bFind && type==2";
    stTablet_XMLData *data = tablet->m_TabletXMLData;
    if (data->ScreenId != kReportedScreen && tablet->m_DefaultMappingPending) {
        storeScreen(*data, kReportedScreen, screenEntry(kReportedScreen));
        tablet->m_DefaultMappingPending = false;
    }
    if (data->Orientation != kReportedRotation) {
        onRotationButtonClicked(data->Orientation, false);
        tablet->m_DefaultMappingPending = true;
    }
}

// Entry 0 is the whole desktop, entry n screen n; the index is that of the screen table.
void MainWindow::fillScreenList()
{
    const QSignalBlocker blocker(ui->comboBox_screen);
    ui->comboBox_screen->clear();
    const QRect &all = CGlobalData::ScreenArray[0];
    ui->comboBox_screen->addItem(QString("%1(%2,%3,%4,%5)")
                                     .arg(languageText("Device.AllScreen"))
                                     .arg(all.left())
                                     .arg(all.top())
                                     .arg(all.width())
                                     .arg(all.height()));
    for (int i = 1; i <= CGlobalData::ScreenNum; ++i) {
        const QRect &screen = CGlobalData::ScreenArray[i];
        const QString format =
            i == CGlobalData::PrimaryID ? "%1%2(%3,%4,%5,%6)Primary" : "%1%2(%3,%4,%5,%6)";
        ui->comboBox_screen->addItem(format.arg(languageText("Device.Screen"))
                                         .arg(i)
                                         .arg(screen.left())
                                         .arg(screen.top())
                                         .arg(screen.width())
                                         .arg(screen.height()));
    }
}

// The touch strip works as a touch ring, so it follows the rotation.
bool MainWindow::TouchModeOn(const stTablet_XMLData &data)
{
    return data.CommonAPP.Ring[1].type == 1 && data.CommonAPP.Ring[1].mode != 0;
}

stTablet_XMLData *MainWindow::mappedProfile() const
{
    return m_CurrentTablet ? m_CurrentTablet->m_TabletXMLData : nullptr;
}

// The tablet in hundredths of an inch, turned by the orientation.
QSize MainWindow::tabletSize(int orientation) const
{
    if (!m_CurrentTablet)
        return QSize(1, 1);
    const _DEVICE_ATTRIBUTES &device = m_CurrentTablet->m_DeviceAttributes;
    const QSize size(qMax(1, device.Width), qMax(1, device.Height));
    return orientation % 2 ? size.transposed() : size;
}

QRect MainWindow::screenEntry(int index) const
{
    return CGlobalData::ScreenArray[qBound(0, index, kScreenSlots - 1)];
}

void MainWindow::on_comboBox_screen_currentIndexChanged(int index)
{
    if (index < 0)
        return;
    selectScreen(index);
    sendMappingEvent("ScreenCurrentIndexChanged", false);
}

void MainWindow::on_pushButton_fullscreen_clicked()
{
    selectScreen(ui->comboBox_screen->currentIndex());
    sendMappingEvent("FullScreenClicked", false);
}

// The whole entry becomes the screen area.
void MainWindow::selectScreen(int index)
{
    const QRect screen = screenEntry(index);
    setSpan(ui->spinBox_sx, ui->spinBox_sw, screen.left(), screen.right() + 1, screen.width(),
            screen.left(), screen.width());
    setSpan(ui->spinBox_sy, ui->spinBox_sh, screen.top(), screen.bottom() + 1, screen.height(),
            screen.top(), screen.height());
    ui->widget_devicemapping->SetScreenArea(index, screen);
    stTablet_XMLData *data = mappedProfile();
    if (!data)
        return;
    storeScreen(*data, index, screen);
    m_CurrentTablet->m_DefaultMappingPending = false;
    placeCalibrateButton(index != -1);
}

void MainWindow::on_spinBox_sx_valueChanged(int)
{
    screenSpinChanged(true, true, "SpinBoxSxValueChanged");
}

void MainWindow::on_spinBox_sw_valueChanged(int)
{
    screenSpinChanged(true, false, "SpinBoxSwValueChanged");
}

void MainWindow::on_spinBox_sy_valueChanged(int)
{
    screenSpinChanged(false, true, "SpinBoxSyValueChanged");
}

void MainWindow::on_spinBox_sh_valueChanged(int)
{
    screenSpinChanged(false, false, "SpinBoxShValueChanged");
}

void MainWindow::screenSpinChanged(bool horizontal, bool positionMoved, const char *event)
{
    stTablet_XMLData *data = mappedProfile();
    const QRect screen = screenEntry(data ? data->ScreenId : ui->comboBox_screen->currentIndex());
    if (horizontal)
        fitSpan(ui->spinBox_sx, ui->spinBox_sw, screen.left(), screen.width(), positionMoved);
    else
        fitSpan(ui->spinBox_sy, ui->spinBox_sh, screen.top(), screen.height(), positionMoved);
    storeScreenArea(spinScreenArea());
    ui->widget_devicemapping->Screen_valueChanged(spinScreenArea());
    sendMappingEvent(event, false);
}

QRect MainWindow::spinScreenArea() const
{
    return QRect(ui->spinBox_sx->value(), ui->spinBox_sy->value(), ui->spinBox_sw->value(),
                 ui->spinBox_sh->value());
}

void MainWindow::storeScreenArea(const QRect &area)
{
    stTablet_XMLData *data = mappedProfile();
    if (!data)
        return;
    QMutexLocker locker(&CGlobalData::XMLMutex);
    data->SX = area.x();
    data->SY = area.y();
    data->SW = area.width();
    data->SH = area.height();
}

void MainWindow::on_SetScreenRect(QRect area)
{
    const QRect screen = screenEntry(ui->comboBox_screen->currentIndex());
    setSpan(ui->spinBox_sx, ui->spinBox_sw, screen.left(), screen.right() + 1, screen.width(),
            area.x(), area.width());
    setSpan(ui->spinBox_sy, ui->spinBox_sh, screen.top(), screen.bottom() + 1, screen.height(),
            area.y(), area.height());
    storeScreenArea(spinScreenArea());
    ui->widget_devicemapping->Screen_valueChanged(spinScreenArea());
}

void MainWindow::onSetScreenValue(int x, int y, int w, int h)
{
    on_SetScreenRect(QRect(x, y, w, h));
    sendMappingEvent("SetScreenAreaValue", false);
}

// Pen displays show the calibration on their own screen; other kinds never.
void MainWindow::placeCalibrateButton(bool shown)
{
    const bool display =
        m_CurrentTablet && m_CurrentTablet->m_DeviceAttributes.DeviceType == DeviceTypePenDisplay;
    const bool visible = display && shown;
    ui->pushButton_screencalibrate->setVisible(visible);
    ui->ScreenBtngroupBox->move(visible ? kGroupBesideCalibrate : kGroupAlone);
}

void MainWindow::placeDisplaySettingsButton()
{
    const bool display =
        m_CurrentTablet && m_CurrentTablet->m_DeviceAttributes.DeviceType == DeviceTypePenDisplay;
    const bool visible = display && DisplayModels::productId(m_CurrentTablet->m_DeviceAttributes) >=
                                        DisplayModels::kFirstWithPictureSettings;
    ui->pushButton_ScreenSetting->setVisible(visible);
    ui->TabletBtnGroup->move(visible ? kGroupBesideCalibrate : kGroupAlone);
}

// Brings the page up from the stored mapping; an area from a screen that has gone falls back
// to the primary screen.
void MainWindow::UpdateMapping(stTablet_XMLData *data)
{
    if (!data || !m_CurrentTablet)
        return;
    if (QAbstractButton *rotation = m_RotationGroup->button(data->Orientation))
        rotation->setChecked(true);
    if (TouchModeOn(*data))
        m_CurrentTablet->SentCmd(kCmdTouchStrip, kStripTouch, data->Orientation);
    if (data->ScreenId > CGlobalData::ScreenNum) {
        onResetWorkAreaDefaultSetting(true);
        return;
    }
    if (!storedAreaFits(*data)) {
        if (m_CurrentTablet->m_DefaultMappingPending) {
            data->ScreenId = 0;
            onResetWorkAreaDefaultSetting(false);
            return;
        }
        fallBackToPrimary(*data);
    }
    {
        const QSignalBlocker blocker(ui->comboBox_screen);
        ui->comboBox_screen->setCurrentIndex(data->ScreenId);
    }
    ui->widget_devicemapping->UpdateUI();
    on_SetScreenRect(QRect(data->SX, data->SY, data->SW, data->SH));
    SetTabletArea(data);
}

bool MainWindow::storedAreaFits(const stTablet_XMLData &data) const
{
    if (data.ScreenId < 0)
        return false;
    const QRect screen = screenEntry(data.ScreenId);
    return data.SX >= screen.left() && data.SY >= screen.top() &&
           data.SX + data.SW <= screen.right() + 1 && data.SY + data.SH <= screen.bottom() + 1;
}

void MainWindow::fallBackToPrimary(stTablet_XMLData &data)
{
    const int index =
        CGlobalData::ScreenNum >= 1 && data.ScreenId != 0 ? CGlobalData::PrimaryID : 0;
    storeScreen(data, index, screenEntry(index));
    m_CurrentTablet->m_DefaultMappingPending = false;
}

// The stored work area into the spin boxes and the preview.
void MainWindow::SetTabletArea(stTablet_XMLData *data)
{
    if (!data)
        return;
    const QSize size = tabletSize(data->Orientation);
    setSpan(ui->spinBox_tx, ui->spinBox_tw, 0, size.width(), size.width(), data->TX, data->TW);
    setSpan(ui->spinBox_ty, ui->spinBox_th, 0, size.height(), size.height(), data->TY, data->TH);
    ui->widget_devicemapping->SetTabletAreaValue(data->TX, data->TY, data->TW, data->TH);
}

// A key or wheel asked for the next screen: the whole of it becomes the mapped area.
void MainWindow::ChangeScreenForTablet(int tabletId)
{
    CTablet *tablet = CGlobalData::TabletArray[tabletId];
    stTablet_XMLData *data = tablet ? tablet->m_TabletXMLData : nullptr;
    if (!data)
        return;
    int next = data->ScreenId + 1;
    if (next < 0 || next > CGlobalData::ScreenNum)
        next = 0;
    storeScreen(*data, next, screenEntry(next));
    if (tablet == m_CurrentTablet)
        UpdateMapping(data);
}

void MainWindow::sendMappingEvent(const char *name, bool tabletSide, bool fromSpinBoxes)
{
    sendUsage([&] {
        const stTablet_XMLData empty{};
        const stTablet_XMLData &data = mappedProfile() ? *mappedProfile() : empty;
        QStringList items;
        if (!tabletSide)
            items = QStringList{item("SH", data.SH), item("SW", data.SW), item("SY", data.SY),
                                item("SX", data.SX), item("nScreenSelectIndex", data.ScreenId)};
        else if (fromSpinBoxes)
            items = QStringList{item("nPannelH", data.TH), item("nPannelW", data.TW),
                                item("nPannelY", data.TY), item("nPannelX", data.TX),
                                item("nTabletOrientation", data.Orientation)};
        else
            items = QStringList{item("TabletOrientation", data.Orientation), item("TX", data.TX),
                                item("TY", data.TY), item("TW", data.TW), item("TH", data.TH)};
        return JsonServer::GetJsonDataSon(name, items.join(',')) + "," +
               JsonServer::GetJsonData("tablet", currentTabletName());
    });
}
