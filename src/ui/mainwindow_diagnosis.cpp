// The diagnosis view: what the driver knows of the current device, its live pen, and the
// versions involved. It stays open beside the window and follows plugging and unplugging.
#include "mainwindow.h"

#include "cglobaldata.h"
#include "ctablet.h"
#include "diagnosisfunction.h"
#include "jsonserver.h"
#include "languagetexts.h"
#include "textfield.h"
#include "ui_mainwindow.h"

#include <QDebug>

void MainWindow::onDiagnosisFun()
{
    onCloseDiagnosisDlg();
    m_DiagnosisDlg = new DiagnosisFunction;
    connect(m_DiagnosisDlg, &DiagnosisFunction::CloseDiagnosisFunction, this,
            &MainWindow::onCloseDiagnosisDlg);
    UpdateDiagnosisDlgInfo();
    updateLiveFeed();
    QString wintab;
    if (TestWintableDll(wintab)) {
        m_DiagnosisDlg->UpdateWintableTest(
            wintab.isEmpty() ? languageText("DiagnosisFunction.pass", "pass") : wintab);
    } else {
        m_DiagnosisDlg->UpdateWintableTest("Fail");
        qWarning() << "Function  "
                   << "TestWintableDll Error:" << wintab;
    }
    m_DiagnosisDlg->UpdateDriverinstallTest(virtualDevicesOpen());
    const QString system = DiagnosisFunction::SystemVersionText();
    m_DiagnosisDlg->UpSystemVersion(system);
    int code = 0;
    GetConfigXMLFileVersion(CGlobalData::configFile("/config.xml"), code);
    m_DiagnosisDlg->UpDriverVersion(ui->version->text(), m_XmlVersion);
    sendUsage([&] {
        const QString info =
            QStringList{JsonServer::GetJsonData("XmlVersion", m_XmlVersion),
                        JsonServer::GetJsonData("DriverVersion", ui->version->text()),
                        JsonServer::GetJsonData("SystemVersion", system),
                        JsonServer::GetJsonData("TestWintab", wintab)}
                .join(',');
        return JsonServer::GetJsonDataSon("DiagnosisFun",
                                          JsonServer::GetJsonDataSon("DiagnosisInfo", info)) +
               "," + JsonServer::GetJsonData("tablet", currentTabletName());
    });
    // Its layouts size it once shown.
    m_DiagnosisDlg->show();
    m_DiagnosisDlg->ShowDialogInCenter();
}

// The device lines; without a tablet they keep their built-in texts.
void MainWindow::UpdateDiagnosisDlgInfo()
{
    qInfo() << "MainWindow:UpdateDiagnosisDlgInfo";
    if (!m_DiagnosisDlg || !m_CurrentTablet)
        return;
    const _DEVICE_ATTRIBUTES &device = m_CurrentTablet->m_DeviceAttributes;
    const QString name = fieldText(device.ShowName);
    const QString pid = fieldText(device.PidString);
    const QString firmware = fieldText(device.ICVersion);
    const QString serial = fieldText(device.SerialNumber);
    qInfo() << name << pid << firmware;
    m_DiagnosisDlg->UpdateDeviceInfo(name, pid, firmware, serial, !serial.isEmpty());
}

void MainWindow::onCloseDiagnosisDlg()
{
    if (!m_DiagnosisDlg)
        return;
    m_DiagnosisDlg->close();
    delete m_DiagnosisDlg;
    sendUsageEvent("DiagnosisFun", "0");
    updateLiveFeed();
}

// The desktop's tablet interface has nothing to load on Linux: the test passes, saying nothing.
bool MainWindow::TestWintableDll(QString &text)
{
    text.clear();
    return true;
}

// The driver is installed when the desktop got its three virtual devices.
bool MainWindow::virtualDevicesOpen() const
{
    const MyInput &input = CGlobalData::MyInputDriver;
    return input.absFd() > 0 && input.relFd() > 0 && input.eraserFd() > 0;
}

void MainWindow::showDiagnosisPen(const MultiData &data, int pressure)
{
    if (!m_DiagnosisDlg || !(data.flags & kEventPen))
        return;
    m_DiagnosisDlg->UpdataXYZ(QString::number(data.screenPosX, 'f', 2),
                              QString::number(data.screenPosY, 'f', 2), QString::number(pressure));
}
