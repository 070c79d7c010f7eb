#include "diagnosisfunction.h"

#include "languagetexts.h"
#include "ui_diagnosisfunction.h"

#include <QDebug>
#include <QSysInfo>

namespace
{
// Windows 11 still calls itself 10; its builds start after this one.
constexpr int kLastWindows10Build = 21999;
} // namespace

DiagnosisFunction::DiagnosisFunction(QWidget *parent)
    : ScriboraDialog(parent), ui(new Ui::DiagnosisFunction)
{
    ui->setupUi(this);
    setWindowFlags(Qt::CustomizeWindowHint | Qt::FramelessWindowHint);
    SetQGraphicsDropShadowEffect(ui->main_frame);
    SetLabelVisable();
    InitLanguageUI();
}

DiagnosisFunction::~DiagnosisFunction()
{
    delete ui;
}

void DiagnosisFunction::InitLanguageUI()
{
    qDebug() << "DiagnosisFunction InitLanguageUI begin...";
    setLanguageText(ui->labelDiagnosisFunctionTitle, "DiagnosisFunction.Title");
    setLanguageText(ui->labeldiagnosis_DTestName, "DiagnosisFunction.Group1.Name");
    setLanguageText(ui->labeldiagnosis_ProductName, "DiagnosisFunction.product");
    setLanguageText(ui->labeldiagnosis_DeviceName, "DiagnosisFunction.device");
    setLanguageText(ui->labeldiagnosis_ICVersion, "DiagnosisFunction.icversion");
    setLanguageText(ui->labeldiagnosis_SerialNum, "DiagnosisFunction.serialnum");
    setLanguageText(ui->labeldiagnosis_currentX, "DiagnosisFunction.currentx");
    setLanguageText(ui->labeldiagnosis_currentY, "DiagnosisFunction.currenty");
    setLanguageText(ui->labeldiagnosis_currentZ, "DiagnosisFunction.currentz");
    setLanguageText(ui->labeldiagnosis_ETestName, "DiagnosisFunction.Group2.Name");
    setLanguageText(ui->labeldiagnosis_systemVersion, "DiagnosisFunction.systemversion");
    setLanguageText(ui->labeldiagnosis_DriverVerion, "DiagnosisFunction.deviceversion");
    setLanguageText(ui->labeldiagnosis_XmlVerion, "DiagnosisFunction.xmlversion");
    setLanguageText(ui->labeldiagnosis_WintableTest, "DiagnosisFunction.wintabletest");
    setLanguageText(ui->labellabel_Driverinstall, "DiagnosisFunction.driverinstalltest");
    setLanguageText(ui->pushButton, "Common.cancel");
    m_PassText = languageText("DiagnosisFunction.pass", "pass");
    m_FailText = languageText("DiagnosisFunction.fail", "fail");
    qDebug() << "DiagnosisFunction InitLanguageUI end...";
}

QString DiagnosisFunction::SystemVersionText()
{
    const QString kernel = QSysInfo::kernelVersion();
    const QString text =
        QSysInfo::prettyProductName() + " " + QSysInfo::currentCpuArchitecture() + " " + kernel;
    if (QSysInfo::productType() == "windows" &&
        kernel.section('.', 2, 2).toInt() > kLastWindows10Build)
        return "Windows 11 " + text;
    return text;
}

void DiagnosisFunction::SetLabelVisable()
{
    showSerialLine(false);
}

void DiagnosisFunction::showSerialLine(bool visible)
{
    ui->labeldiagnosis_SerialNum->setVisible(visible);
    ui->diagnosis_SerialNum->setVisible(visible);
}

void DiagnosisFunction::UpdataXYZ(QString x, QString y, QString z)
{
    ui->diagnosis_currentX->setText(x);
    ui->diagnosis_currentY->setText(y);
    ui->diagnosis_currentZ->setText(z);
}

void DiagnosisFunction::UpdateDeviceInfo(QString name, QString pid, QString icVersion,
                                         QString serialNum, bool showSerialNum)
{
    ui->diagnosis_DeviceName->setText(name);
    ui->diagnosis_Pid->setText(pid);
    ui->diagnosis_ICVersion->setText(icVersion);
    ui->diagnosis_SerialNum->setText(serialNum);
    showSerialLine(showSerialNum);
}

void DiagnosisFunction::UpdateWintableTest(QString text)
{
    ui->diagnosis_WintableTest->setText(text);
}

void DiagnosisFunction::UpdateDriverinstallTest(bool found)
{
    ui->label_Driverinstall->setText(found ? m_PassText : m_FailText);
}

void DiagnosisFunction::UpSystemVersion(QString text)
{
    ui->diagnosis_systemVersion->setText(text);
}

void DiagnosisFunction::UpDriverVersion(QString driverVersion, QString xmlVersion)
{
    ui->diagnosis_DriverVerion->setText(driverVersion);
    ui->diagnosis_XmlVerion->setText(xmlVersion);
}

void DiagnosisFunction::on_pushButton_clicked()
{
    emit CloseDiagnosisFunction();
}
