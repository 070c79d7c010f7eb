#include "settingform.h"

#include "cglobaldata.h"
#include "jsonserver.h"
#include "scriboradialog.h"
#include "textfield.h"
#include "ui_settingform.h"

#include <QDebug>
#include <QDesktopServices>
#include <QEvent>
#include <QUrl>

namespace
{
const QString kFeedbackPage = QStringLiteral("https://www.scribora.com/feedback?");
const QSize kFrameWithConsent(340, 212);
const QSize kFormWithConsent(360, 232);
const QSize kFrameWithoutConsent(340, 189);
const QSize kFormWithoutConsent(360, 209);

// "Ver:3.4.9" and "Ver:3.4.11(7169b73)" give "3.4.9" and "3.4.11".
QString driverVersionFromLabel(const QString &versionText)
{
    const int bracket = versionText.indexOf('(');
    const QString version = bracket < 0 ? versionText : versionText.left(bracket);
    return version.mid(version.indexOf(':') + 1);
}
} // namespace

SettingForm::SettingForm(QWidget *parent) : QWidget(parent), ui(new Ui::SettingForm)
{
    ui->setupUi(this);
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowOpacity(1.0);
    ScriboraDialog::SetQGraphicsDropShadowEffect(ui->SettingFormWidget);
    connect(this, &SettingForm::CloseSettingForm, this, &QWidget::hide);
    InitLanguageUI();
}

SettingForm::~SettingForm()
{
    delete ui;
}

void SettingForm::InitLanguageUI()
{
    qDebug() << "RollerKey InitLanguageUI begin...";
    setLanguageText(ui->checkBox_pressure, "Setting.item1");
    setLanguageText(ui->checkBox_tips, "Setting.item2");
    setLanguageText(ui->checkBox_shortcuts, "Setting.item3");
    setLanguageText(ui->checkBox_slope, "Pen.DisableTilt");
    setLanguageText(ui->Setting_inputbtn, "Setting.item4");
    setLanguageText(ui->Setting_outputbtn, "Setting.item5");
    setLanguageText(ui->Setting_Diagnosisbtn, "Setting.item6");
    setLanguageText(ui->Setting_DriverDown, "Setting.item9");
    setLanguageText(ui->Setting_Feedback, "Setting.feedback");
    setLanguageText(ui->HotKeyWincheckBox_1, "Setting.Tips1");
}

void SettingForm::SetCheckButtonStatus(CTablet *tablet, QString language, QString versionText)
{
    m_Tablet = tablet;
    m_Language = language;
    m_DriverVersion = driverVersionFromLabel(versionText);
    if (!tablet || !tablet->m_TabletXMLData)
        return;
    const stTablet_XMLData &profile = *tablet->m_TabletXMLData;
    ui->checkBox_pressure->setChecked(profile.DisablePressure != 0);
    ui->checkBox_tips->setChecked(profile.DisableInfo != 0);
    ui->checkBox_shortcuts->setChecked(profile.DisableQuickKey != 0);
    ui->checkBox_slope->setChecked(profile.DisableSlope != 0);
    // A key remote has no pen to press or tilt.
    const bool keysOnly = profile.SupportGroupKeys != 0;
    ui->checkBox_pressure->setVisible(!keysOnly);
    ui->checkBox_slope->setVisible(!keysOnly);
}

void SettingForm::SetDataCollectVisable(bool visible, bool checked)
{
    ui->SettingFormWidget2->setVisible(visible);
    {
        const QSignalBlocker blocker(ui->HotKeyWincheckBox_1);
        ui->HotKeyWincheckBox_1->setChecked(checked);
    }
    ui->SettingFormWidget->resize(visible ? kFrameWithConsent : kFrameWithoutConsent);
    resize(visible ? kFormWithConsent : kFormWithoutConsent);
}

void SettingForm::SetDriverDownBtnVisabel(bool visible)
{
    ui->Setting_DriverDown->setVisible(visible);
}

QString SettingForm::FeedbackUrl() const
{
    _DEVICE_ATTRIBUTES none{};
    const _DEVICE_ATTRIBUTES &device = m_Tablet ? m_Tablet->m_DeviceAttributes : none;
    return kFeedbackPage + "drive_lang=" + m_Language +
           "&product_name=" + fieldText(device.ShowName) +
           "&firmware_version=" + fieldText(device.ICVersion) + "&drive_version=V" +
           m_DriverVersion + "&serial_number=" + fieldText(device.SerialNumber) +
           "&system_version=" + usageSystemText();
}

bool SettingForm::event(QEvent *event)
{
    if (event->type() == QEvent::WindowDeactivate && !isActiveWindow())
        hide();
    return QWidget::event(event);
}

void SettingForm::on_checkBox_pressure_clicked(bool checked)
{
    emit DisablePress(checked);
}

void SettingForm::on_checkBox_tips_clicked(bool checked)
{
    emit DisableTipMsg(checked);
}

void SettingForm::on_checkBox_shortcuts_clicked(bool checked)
{
    emit DisableHotkey(checked);
}

void SettingForm::on_checkBox_slope_clicked(bool checked)
{
    emit DisableSlope(checked);
}

void SettingForm::on_Setting_inputbtn_clicked()
{
    emit onImportConfiguebtnClicked();
}

void SettingForm::on_Setting_outputbtn_clicked()
{
    emit onOutportConfiguebtnClicked();
}

void SettingForm::on_Setting_Diagnosisbtn_clicked()
{
    emit onDiagnosisbtnClicked();
}

void SettingForm::on_Setting_DriverDown_clicked()
{
    emit onDriverDownbtnClicked();
}

void SettingForm::on_Setting_Feedback_clicked()
{
    QDesktopServices::openUrl(QUrl(FeedbackUrl()));
}

void SettingForm::on_HotKeyWincheckBox_1_stateChanged(int state)
{
    emit CollectDataChecked(state == Qt::Checked);
}
