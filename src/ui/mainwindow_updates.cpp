// The update client and its download dialog, dormant: the window's pointer to the client
// stays null, so the settings button never shows its red point.
#include "mainwindow.h"

#include "ctablet.h"
#include "driverdownload.h"
#include "textfield.h"
#include "ui_mainwindow.h"
#include "updateserver.h"

#include <QDebug>
#include <QSettings>

namespace
{
// The build's own number, not the one the version label shows.
const QString kBuildVersion = QStringLiteral("3.4.11");
const QString kRedPointStyle = QStringLiteral(
    "[redPoint=true]{border-image:url(:/image/Res/btn_setting_r.png);}"
    "[redPoint=true]:hover{border-image:url(:/image/Res/btn_setting_r_hover.png);}"
    "[redPoint=true]:pressed{border-image:url(:/image/Res/btn_setting_r_press.png);}");
constexpr int kFirstGoodFirmwareDate = 20211027;

// The third parts, split at "-", decide alone. None greater still counts as newer: that is
// how versions have always been compared here.
bool thirdPartIsNewer(const QString &a, const QString &b)
{
    const QStringList aPieces = a.split('-');
    const QStringList bPieces = b.split('-');
    if (aPieces.size() != bPieces.size())
        return aPieces.size() > bPieces.size();
    for (int i = 0; i < aPieces.size(); ++i) {
        if (aPieces[i].toInt() > bPieces[i].toInt())
            return true;
    }
    return true;
}
} // namespace

bool MainWindow::compareVersion(const QString &a, const QString &b)
{
    const QStringList aParts = a.split('.', Qt::SkipEmptyParts);
    const QStringList bParts = b.split('.', Qt::SkipEmptyParts);
    if (aParts.isEmpty() || bParts.isEmpty())
        return bParts.size() > aParts.size();
    const int common = qMin(aParts.size(), bParts.size());
    for (int i = 0; i < common; ++i) {
        const int aPart = aParts[i].toInt();
        const int bPart = bParts[i].toInt();
        if (aPart != bPart)
            return aPart > bPart;
        if (i == common - 1)
            return aParts.size() > bParts.size();
        if (i == 1)
            return thirdPartIsNewer(aParts[2], bParts[2]);
    }
    return false;
}

// The style sheet's selector matches a true property, so the point is set as a bool; the
// download entry of the settings form shows for "1" and for true alike.
void MainWindow::OnGetNewDriver(int, QString version, QString downloadUrl, QString)
{
    const bool newer = compareVersion(version, kBuildVersion);
    if (newer)
        m_DriverDownloadUrl = downloadUrl;
    const bool marked = newer && m_UpdateServer && m_UpdateServer->IsCheckUpdate();
    ui->settingBtn->setProperty("redPoint", marked);
    if (marked)
        ui->settingBtn->setStyleSheet(kRedPointStyle);
}

// One model's firmware before this date needs an update; the driver only notes it.
void MainWindow::CheckUpdateTQR4470C()
{
    if (!m_CurrentTablet)
        return;
    const _DEVICE_ATTRIBUTES &device = m_CurrentTablet->m_DeviceAttributes;
    if (fieldText(device.DevicePath).contains("025a3c_pid", Qt::CaseInsensitive))
        return;
    if (fieldText(device.PidString) != "PID_A105" || fieldText(device.ProductName) != "TQR4470C-C")
        return;
    qDebug() << fieldText(device.ProductName);
    const QString firmware = fieldText(device.ICVersion);
    const int date = firmware.left(8).toInt();
    qDebug() << firmware.left(8);
    QSettings settings("NORVA", "ScriboraV2");
    settings.beginGroup("Tablet");
    settings.setValue("ICVersion", firmware);
    settings.setValue("ICData", date);
    if (date < kFirstGoodFirmwareDate)
        qDebug() << "TQR4470C-C need update" << firmware;
}

// Parentless, so that it is a window of its own over whatever the user has open.
void MainWindow::onDriverDownLoadFun()
{
    DriverDownLoad dialog;
    dialog.SetDownloadUrl(m_DriverDownloadUrl);
    dialog.exec();
}
