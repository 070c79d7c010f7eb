// The device strip and the window's side of enumeration and hot-plug.
#include "mainwindow.h"

#include "cdevicemanager.h"
#include "cglobaldata.h"
#include "ctablet.h"
#include "tabletslots.h"
#include "ui_mainwindow.h"

#include <QDebug>
#include <QMessageBox>

// The device side keeps the slots; the window follows with its rows and pages.
void MainWindow::connectDevices()
{
    m_Devices = new CDeviceManager(this);
    connect(m_Devices, &CDeviceManager::tabletAdded, this, &MainWindow::onTabletAdded);
    connect(m_Devices, &CDeviceManager::tabletLeaving, this, &MainWindow::onTabletLeaving);
    connect(m_Devices, &CDeviceManager::tabletRemoved, this, &MainWindow::onTabletRemoved);
    connect(m_Devices, &CDeviceManager::hotPlugOpened, this, &MainWindow::showSoleDevice);
    connect(m_Devices, &CDeviceManager::openFailed, this, &MainWindow::showRootRightsWarning);
}

void MainWindow::showRootRightsWarning()
{
    QMessageBox::warning(
        this, languageText("Common.warning", QStringLiteral("warning")),
        languageText("Common.tips1",
                     QStringLiteral("You need to use root permissions to run the driver.")),
        QMessageBox::Ok);
}

bool MainWindow::EnmuTabeltDevice()
{
    return EmumDevice();
}

bool MainWindow::EmumDevice()
{
    return EnumDeviceLinux(0);
}

bool MainWindow::EnumDeviceLinux(int pid)
{
    return m_Devices->EnumDeviceLinux(pid);
}

int MainWindow::GetEmptyTabletArray() const
{
    return TabletSlots::GetEmptyTabletArray();
}

int MainWindow::GetTabletArraySize() const
{
    return TabletSlots::GetTabletArraySize();
}

QString MainWindow::DeleteMapItem(CTablet *tablet)
{
    return TabletSlots::DeleteMapItem(tablet);
}

bool MainWindow::GetSameTablet(int pid)
{
    return TabletSlots::GetSameTablet(pid);
}

int MainWindow::IsDeviceShowNameExit(const QString &pidString, CTablet *except) const
{
    return TabletSlots::IsDeviceShowNameExit(pidString, except);
}

int MainWindow::getDeviceListIndex(const QString &path) const
{
    return CDeviceManager::getDeviceListIndex(path);
}

void MainWindow::onTabletAdded(CTablet *tablet)
{
    const QString showName = QString::fromUtf8(tablet->m_DeviceAttributes.ShowName);
    const QString modelName = QString::fromUtf8(tablet->m_DeviceAttributes.ModelName);
    if (modelName.isEmpty()) {
        ui->widget_device->addItem(showName, QString());
    } else {
        ui->widget_device->addItem(showName, ":/image/tablet/" + modelName + ".png");
        InitUI(ui->widget_device->currentText());
    }
    connectTablet(tablet);
}

void MainWindow::connectTablet(CTablet *tablet)
{
    connect(tablet, qOverload<int, int, int>(&CTablet::PostActionMsg), this,
            qOverload<int, int, int>(&MainWindow::ReceivActionMsg));
    connect(tablet, qOverload<int, int, QString>(&CTablet::PostActionMsg), this,
            qOverload<int, int, QString>(&MainWindow::ReceivActionMsg));
    connect(tablet, &CTablet::SentTabletLightData, this, &MainWindow::ReceivTabletLightData);
    connect(tablet, &CTablet::SentMultiData, this, &MainWindow::ReceivMultiData);
}

void MainWindow::onSelectTabletDevice(QString deviceName, int index)
{
    qInfo() << "Function  onSelectTabletDevice:" << deviceName << "-" << index;
    if (m_CurrentTablet)
        m_CurrentTablet->m_SendMultiData = false;
    m_CurrentTablet = CGlobalData::TabletMap.value(deviceName, nullptr);
    if (ui->widget_device->count() >= 1)
        InitUI(deviceName);
    if (m_CurrentTablet && m_CurrentTablet->m_AppConfigs.size() == 1)
        ui->pushButton_delete->setEnabled(false);
    CloseJingxiMode();
}

void MainWindow::ReceiveUsbMsg(unsigned short vid, unsigned short pid, short state)
{
    m_Devices->ReceiveUsbMsg(vid, pid, state);
}

void MainWindow::onTabletLeaving(CTablet *tablet)
{
    if (tablet == m_CurrentTablet)
        emit HideDialog();
    closeKeyPreviewOf(tablet);
    QObject::disconnect(tablet, nullptr, this, nullptr);
    QObject::disconnect(this, nullptr, tablet, nullptr);
}

void MainWindow::onTabletRemoved(CTablet *tablet, const QString &key)
{
    if (m_CurrentTablet == tablet)
        m_CurrentTablet = nullptr;
    if (ui->widget_device->count() < 2) {
        ui->widget_device->removeItem(0);
        CloseJingxiMode();
    } else {
        // A like device shadowed in the map by a later one has no key: its entry bears the
        // same show name.
        ui->widget_device->removeChildDevice(
            key.isEmpty() ? QString::fromUtf8(tablet->m_DeviceAttributes.ShowName) : key);
    }
    if (GetTabletArraySize() != 0) {
        UpdateDiagnosisDlgInfo();
        return;
    }
    ClearApplication();
    DeleteUI();
    onCloseDiagnosisDlg();
}

void MainWindow::showSoleDevice()
{
    if (ui->widget_device->count() != 1)
        return;
    EnumDisplay(false);
    InitUI(ui->widget_device->currentText());
}

void MainWindow::CloseDevice()
{
    m_Devices->CloseDevice();
    m_CurrentTablet = nullptr;
}
