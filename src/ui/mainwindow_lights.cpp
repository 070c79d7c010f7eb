// Lights: the tablet's own light on the work-area page, the wheel's or strip's brightness on the
// wheel page. Each control sends its value at once; the device's answers check the controls.
#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "ctablet.h"
#include "devicecommands.h"
#include "textfield.h"

#include <QButtonGroup>
#include <QSignalBlocker>

#include <cstdlib>

namespace
{
// A brightness button and a slider step are worth 50 each: 0, 50, 100.
constexpr int kLightStep = 50;
constexpr int kLightFull = 100;

// Models whose strip light is a plain switch rather than three levels.
bool hasLightSwitch(const _DEVICE_ATTRIBUTES &device)
{
    static const QStringList models = {"PID_A101", "PID_A102", "PID_A103", "PID_A104"};
    return models.contains(fieldText(device.PidString));
}
} // namespace

void MainWindow::InitLightUI()
{
    m_BrightGroup = new QButtonGroup(this);
    m_BrightGroup->addButton(ui->bright0, 0);
    m_BrightGroup->addButton(ui->bright50, 1);
    m_BrightGroup->addButton(ui->bright100, 2);
    connect(m_BrightGroup, &QButtonGroup::idToggled, this,
            &MainWindow::operatingBrightButtonsToggled);
    ui->BrightnessCheckBox->hide();
    ui->groupBox_brightness->hide();
    ui->widget_tablet_light->hide();
}

void MainWindow::showLightControls(const CTablet *tablet)
{
    const stTablet_XMLData &settings = *tablet->m_TabletXMLData;
    const _DEVICE_ATTRIBUTES &device = tablet->m_DeviceAttributes;
    ui->widget_tablet_light->setVisible(settings.DeviceControl != 0);
    checkTabletLight(device.TabletLight);
    if (settings.DeviceTrackPad == 0) {
        ui->groupBox_brightness->hide();
        ui->BrightnessCheckBox->hide();
        return;
    }
    const bool levels = settings.DeviceControl != 0;
    ui->groupBox_brightness->setVisible(levels);
    ui->BrightnessCheckBox->setVisible(!levels && hasLightSwitch(device));
    if (levels)
        checkBrightnessButton(std::min<int>(device.WheelLight, kLightFull));
    else
        checkLightSwitch(device.WheelLight);
}

// The answer to a light request, from the device shown only.
void MainWindow::ReceivTabletLightData(CTablet *tablet)
{
    if (tablet != m_CurrentTablet)
        return;
    checkTabletLight(tablet->m_DeviceAttributes.TabletLight);
    checkBrightnessButton(tablet->m_DeviceAttributes.WheelLight);
    checkLightSwitch(tablet->m_DeviceAttributes.WheelLight);
}

// The slider shows the level too, in its steps of 50.
void MainWindow::checkTabletLight(int value)
{
    const QSignalBlocker box(ui->LightCheckBox);
    ui->LightCheckBox->setChecked(std::abs(value) >= kLightStep);
    const QSignalBlocker slider(ui->horizontalSlider_tablet_light);
    ui->horizontalSlider_tablet_light->setValue(std::abs(value) / kLightStep);
}

void MainWindow::checkBrightnessButton(int value)
{
    QAbstractButton *button = m_BrightGroup->button(value / kLightStep);
    if (!button)
        return;
    const QSignalBlocker blocker(m_BrightGroup);
    button->setChecked(true);
}

void MainWindow::checkLightSwitch(int value)
{
    const QSignalBlocker blocker(ui->BrightnessCheckBox);
    ui->BrightnessCheckBox->setChecked(value >= 1);
}

void MainWindow::sendLight(int light, int value)
{
    if (m_CurrentTablet)
        m_CurrentTablet->SentCmd(kCmdSetLight, light, value);
}

void MainWindow::on_LightCheckBox_clicked(bool checked)
{
    sendLight(kLightTablet, checked ? kLightStep : 0);
}

void MainWindow::on_horizontalSlider_tablet_light_valueChanged(int value)
{
    sendLight(kLightTablet, value * kLightStep);
}

void MainWindow::on_BrightnessCheckBox_stateChanged(int state)
{
    sendLight(kLightWheel, state == Qt::Checked ? kLightFull : 0);
}

// A button that goes off as another comes on sends nothing: only the new level counts.
void MainWindow::operatingBrightButtonsToggled(int id, bool checked)
{
    if (checked)
        sendLight(kLightWheel, id * kLightStep);
}
