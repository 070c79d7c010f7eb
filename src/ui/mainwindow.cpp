#include "mainwindow.h"

#include "batterywidget.h"
#include "cglobaldata.h"
#include "cscreeninfos.h"
#include "ctablet.h"
#include "cusbtablet.h"
#include "cvtkeycode.h"
#include "jingximode.h"
#include "mylinux.h"
#include "mylrc.h"
#include "settingform.h"
#include "traymenu.h"
#include "ui_mainwindow.h"
#include "usblistenthread.h"
#include "zelkdevice.h"

#include <QApplication>
#include <QCursor>
#include <QDebug>
#include <QDesktopServices>
#include <QDesktopWidget>
#include <QGraphicsDropShadowEffect>
#include <QListWidget>
#include <QMouseEvent>
#include <QMutexLocker>
#include <QSettings>
#include <QTabBar>
#include <QThread>
#include <QUrl>
#include <hidapi.h>
#include <libusb.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <iterator>

namespace
{
// The system needs this long before a new device can be opened.
constexpr unsigned long kArrivalSettleUs = 600000;
constexpr unsigned long kListenerStopWaitMs = 1000;
// Presses below the head strip do not drag the window.
constexpr int kDragStripHeight = 80;
constexpr int kGroupKeyPage = 5;
constexpr int kMaxApplications = 8;
} // namespace

MainWindow::MainWindow(QWidget *parent) : QWidget(parent), ui(new Ui::MainWindow)
{
    m_Tip = new MyLrc(this);
    CGlobalData::Show_Info = m_Tip;
    openConfiguration();
    ui->setupUi(this);
    connectDesktopSignals();
    InitLanguageUI();
    ui->tabWidget->setCurrentIndex(0);
    OnTabItemClicked(0);
    qRegisterMetaType<MultiData>("MultiData");
    setUpFrame();
    // The screens are known before any device is opened.
    EnumDisplay(false);
    m_StartTime = QTime::currentTime();
    connectShell();
    watchDragAreas();
    // Telemetry is dormant, and with it the art-community link.
    ui->LinkArtBtn->hide();
    ui->pushButton_cancel->hide();
    DeleteUI();
}

void MainWindow::setUpFrame()
{
    setWindowFlags(Qt::FramelessWindowHint | Qt::Window);
    setAutoFillBackground(false);
    setWindowTitle("Scribora");
    setWindowIcon(QIcon(":/image/Res/scribora.png"));
    setAttribute(Qt::WA_TranslucentBackground);
    ui->tabWidget->setAttribute(Qt::WA_StyledBackground);
    // Pages are chosen from the list, never from tabs of their own.
    ui->tabWidget->tabBar()->hide();
    auto *shadow = new QGraphicsDropShadowEffect(ui->main_frame);
    shadow->setOffset(0, 0);
    shadow->setColor(Qt::black);
    shadow->setBlurRadius(14);
    ui->main_frame->setGraphicsEffect(shadow);
}

void MainWindow::connectShell()
{
    connect(ui->minBtn, &QPushButton::clicked, this, &QWidget::showMinimized);
    connect(ui->settingBtn, &QPushButton::clicked, this, &MainWindow::ShowSettingForm);
    connect(m_Tip, &MyLrc::EmitAction, this, &MainWindow::OnShowLabel);
    connect(m_Tip, &MyLrc::EmitRingLrc, this, &MainWindow::OnShowRinglrc);
    connect(ui->tabWidget, &QTabWidget::currentChanged, this, &MainWindow::OnTabItemClicked);
    connect(ui->widget_device, &QDeviceItemWidget::onSelectAppItem, this,
            &MainWindow::onSelectTabletDevice);
    connect(ui->listWidget_left, &QListWidget::itemClicked, this, &MainWindow::onClickListItem);
}

void MainWindow::watchDragAreas()
{
    const std::initializer_list<QWidget *> areas = {ui->logo, ui->groupBox_head, ui->label_bg,
                                                    ui->widget_device, ui->DisConnectLabel};
    for (QWidget *area : areas)
        area->installEventFilter(this);
}

// The text files must be open before any widget exists.
void MainWindow::openConfiguration()
{
    delete CGlobalData::Name_Config;
    delete CGlobalData::Language_Config;
    CGlobalData::Name_Config =
        new QSettings(CGlobalData::configFile("/name_config.ini"), QSettings::IniFormat);
    CGlobalData::Language_Config =
        new QSettings(CGlobalData::configFile("/language.ini"), QSettings::IniFormat);
    CGlobalData::Language_Config->setIniCodec("UTF-8");
    m_Language = mylinux::get_user_language_setting();
    cvtKeyCode::init();
    CGlobalData::Language_Config->beginGroup(m_Language);
}

// These desktop widget signals are deprecated in Qt 5.15 but still emitted.
void MainWindow::connectDesktopSignals()
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    const QDesktopWidget *desktop = QApplication::desktop();
    connect(desktop, &QDesktopWidget::resized, this, &MainWindow::onDeskScreenChanged);
    connect(desktop, &QDesktopWidget::screenCountChanged, this, &MainWindow::onDeskScreenChanged);
    connect(desktop, &QDesktopWidget::primaryScreenChanged, this,
            [this] { onDeskScreenChanged(0); });
    connect(desktop, &QDesktopWidget::workAreaResized, this, &MainWindow::onDeskScreenChanged);
    QT_WARNING_POP
}

MainWindow::~MainWindow()
{
    qDebug() << "MainWindow------";
    CloseDevice();
    delete m_SettingForm;
    qDeleteAll(m_RemovedTablets);
    qInfo() << "ScriboraV3 Closed.";
    cvtKeyCode::release();
    if (CGlobalData::Language_Config)
        CGlobalData::Language_Config->endGroup();
    delete CGlobalData::Language_Config;
    CGlobalData::Language_Config = nullptr;
    CGlobalData::Show_Info = nullptr;
    delete m_Tip;
    delete ui;
}

void MainWindow::InitLanguageUI()
{
    const QString copyright =
        CGlobalData::Name_Config
            ? CGlobalData::Name_Config->value("CopyRight/CopyRightText").toString()
            : QString();
    if (!copyright.isEmpty())
        ui->copyright->setText(copyright);
    ui->version->setText("Ver:3.4.9");
    setLanguageText(ui->pushButton_ok, "Common.ok");
    setLanguageText(ui->pushButton_cancel, "Common.cancel");
    setLanguageText(ui->DisconnectTipsLabel, "Setting.DisconnectTips");
    setLanguageText(ui->label_application, "Application");
    setLanguageText(ui->checkBox_pressure, "Setting.item1");
    setLanguageText(ui->checkBox_tipMsg, "Setting.item2");
    setLanguageText(ui->checkBox_hotkey, "Setting.item3");
    setLanguageText(ui->pushButton_import, "Setting.item4");
    setLanguageText(ui->pushButton_export, "Setting.item5");
}

int MainWindow::Init()
{
    EnmuTabeltDevice();
    CGlobalData::MyInputDriver.Init();
    if (!m_UsbListenThread) {
        m_UsbListenThread = new UsbListenThread;
        connect(m_UsbListenThread, &UsbListenThread::SentListenMsg, this,
                &MainWindow::ReceiveUsbMsg, Qt::QueuedConnection);
    }
    m_UsbListenThread->start(QThread::InheritPriority);
    return 1;
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
    hid_device_info *devices = hid_enumerate(kVendorId, static_cast<unsigned short>(pid & 0xFFFF));
    if (!devices)
        return false;
    bool opened = false;
    for (const hid_device_info *entry = devices; entry; entry = entry->next) {
        // A like device arriving must not open the one already running again.
        if (isPathOpen(entry->path))
            continue;
        for (const ZelkDevice &row : zelkDevList) {
            if (entry->vendor_id != row.vid || entry->product_id != row.pid ||
                entry->interface_number != static_cast<int>(row.interfaceNumber))
                continue;
            // A sixth device is left alone, without a word.
            if (GetEmptyTabletArray() < 0)
                break;
            auto *tablet = new CUSBTablet;
            tablet->m_DeviceAttributes.DeviceType = row.deviceType;
            qDebug() << "-------type:" << row.deviceType;
            if (!tablet->InitTablet(entry->path, row)) {
                delete tablet;
                continue;
            }
            registerTablet(tablet);
            opened = true;
            break;
        }
    }
    hid_free_enumeration(devices);
    return opened;
}

void MainWindow::registerTablet(CTablet *tablet)
{
    const int slot = GetEmptyTabletArray();
    tablet->m_Index = slot;
    CGlobalData::TabletArray[slot] = tablet;
    const QString showName = QString::fromUtf8(tablet->m_DeviceAttributes.ShowName);
    const QString modelName = QString::fromUtf8(tablet->m_DeviceAttributes.ModelName);
    CGlobalData::TabletMap[showName] = tablet;
    qDebug() << "EnmuTabeltDevice:" << showName << modelName;
    if (modelName.isEmpty()) {
        ui->widget_device->addItem(showName, QString());
    } else {
        ui->widget_device->addItem(showName, ":/image/tablet/" + modelName + ".png");
        InitUI(ui->widget_device->currentText());
    }
    connectTablet(tablet);
}

bool MainWindow::isPathOpen(const char *path) const
{
    for (const CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet && path && strcmp(tablet->m_DeviceAttributes.DevicePath, path) == 0)
            return true;
    }
    return false;
}

void MainWindow::connectTablet(CTablet *tablet)
{
    connect(tablet, qOverload<int, int, int>(&CTablet::PostActionMsg), this,
            qOverload<int, int, int>(&MainWindow::ReceivActionMsg));
    connect(tablet, qOverload<int, int, QString>(&CTablet::PostActionMsg), this,
            qOverload<int, int, QString>(&MainWindow::ReceivActionMsg));
    connect(tablet, &CTablet::SentTabletLightData, this, &MainWindow::ReceivTabletLightData);
}

int MainWindow::GetEmptyTabletArray() const
{
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        if (!CGlobalData::TabletArray[slot])
            return slot;
    }
    return -1;
}

int MainWindow::GetTabletArraySize() const
{
    return static_cast<int>(std::count_if(std::begin(CGlobalData::TabletArray),
                                          std::end(CGlobalData::TabletArray),
                                          [](const CTablet *tablet) { return tablet != nullptr; }));
}

QString MainWindow::DeleteMapItem(CTablet *tablet)
{
    for (auto entry = CGlobalData::TabletMap.begin(); entry != CGlobalData::TabletMap.end();
         ++entry) {
        if (entry.value() != tablet)
            continue;
        const QString key = entry.key();
        CGlobalData::TabletMap.erase(entry);
        return key;
    }
    return QString();
}

bool MainWindow::GetSameTablet(int pid)
{
    const QString pidString = QString::asprintf("PID_%04X", pid & 0xFFFF);
    for (const CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet && pidString == QLatin1String(tablet->m_DeviceAttributes.PidString) &&
            CGlobalData::TabletMap.contains(QString::fromUtf8(tablet->m_DeviceAttributes.ShowName)))
            return true;
    }
    return false;
}

int MainWindow::IsDeviceShowNameExit(const QString &pidString, CTablet *except) const
{
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        const CTablet *tablet = CGlobalData::TabletArray[slot];
        if (tablet && tablet != except &&
            pidString == QLatin1String(tablet->m_DeviceAttributes.PidString))
            return slot;
    }
    return -1;
}

int MainWindow::getDeviceListIndex(const QString &path) const
{
    for (int index = 0; index < kCatalogueSize; ++index) {
        const ZelkDevice &row = zelkDevList[index];
        QString key = QString::asprintf("vid_%04X&pid_%04X&mi_%02d", row.vid, row.pid,
                                        static_cast<int>(row.interfaceNumber));
        if (row.collection > 1)
            key += QString::asprintf("&col%02d", static_cast<int>(row.collection));
        if (path.contains(key, Qt::CaseInsensitive))
            return index;
    }
    return -1;
}

void MainWindow::InitUI(const QString &deviceName)
{
    qInfo() << "Function  UpdateUIByAppChange:" << deviceName;
    ui->tabWidget->show();
    ui->DisConnectLabel->hide();
    ui->DisconnectTipsLabel->hide();
    if (deviceName.isEmpty())
        return;
    ui->settingBtn->show();
    CTablet *tablet = CGlobalData::TabletMap.value(deviceName, nullptr);
    if (!tablet)
        return;
    m_CurrentTablet = tablet;
    tablet->m_DefaultMappingPending = false;
    tablet->m_SendMultiData = ui->tabWidget->currentIndex() == 1;
    enableApplicationButtons(tablet);
    fillPageList(tablet);
    if (!m_BatteryWidget) {
        m_BatteryWidget = new BatteryWidget(ui->listWidget_left);
        ui->listWidget_left->setFocusPolicy(Qt::NoFocus);
    }
    selectFirstPage(tablet);
    showModelPictures(tablet);
    showBattery(tablet);
}

// Pen, key strip and wheel as the model looks in its orientation.
void MainWindow::showModelPictures(const CTablet *tablet)
{
    const stTablet_XMLData &settings = *tablet->m_TabletXMLData;
    const QString model = QString::fromUtf8(tablet->m_DeviceAttributes.ModelName);
    if (!settings.SupportGroupKeys && settings.DevicePenNum == 1)
        showImage(QPixmap(QString(":/image/Res/pen%1.png").arg(settings.DevicePenType)),
                  ui->label_penbg);
    else
        UpdatePenPicture();
    showImage(QPixmap(QString(":/image/tablet/%1_K%2.png").arg(model).arg(settings.Orientation)),
              ui->label_keyimage);
    if (settings.DeviceRingNum >= 1)
        showImage(QPixmap(QString(":/image/tablet/%1_R.png").arg(model)), ui->label_ringimage);
}

// With several pens the page shows the one last seen on the tablet, by its number.
void MainWindow::UpdatePenPicture()
{
    if (!m_CurrentTablet)
        return;
    const stTablet_XMLData &settings = *m_CurrentTablet->m_TabletXMLData;
    if (settings.SupportGroupKeys || settings.DevicePenNum == 1 || settings.DeviceCurPenID < 0)
        return;
    showImage(QPixmap(QString(":/image/Res/pen%1.png").arg(settings.DeviceCurPenID + 1)),
              ui->label_penbg);
}

// A missing picture leaves the label as it was.
void MainWindow::showImage(QPixmap pixmap, QLabel *label)
{
    if (pixmap.isNull())
        return;
    label->setPixmap(pixmap.scaled(label->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

// A profile keeps at least one and at most eight applications.
void MainWindow::enableApplicationButtons(const CTablet *tablet)
{
    const int count = tablet->m_AppConfigs.size();
    ui->pushButton_delete->setEnabled(count != 1);
    ui->pushButton_add->setEnabled(count != kMaxApplications);
}

void MainWindow::fillPageList(const CTablet *tablet)
{
    const stTablet_XMLData &settings = *tablet->m_TabletXMLData;
    const bool remote = tablet->m_DeviceAttributes.DeviceType == DeviceTypeRemote;
    ui->listWidget_left->clear();
    addPageRow("WorkArea", "Work Area", remote);
    addPageRow("Pen", "Pen", remote);
    if (settings.DeviceKeyNum > 0)
        addPageRow("ShortcutKey", "Shortcut Key", false);
    if ((settings.DeviceRingNum >= 1 && settings.SupportGroupKeys == 0) ||
        settings.DeviceTrackPad != 0)
        addPageRow("TR", "Wheel", false);
}

void MainWindow::addPageRow(const char *key, const char *fallback, bool hidden)
{
    const QString text = languageText(key, QString::fromLatin1(fallback));
    auto *item = new QListWidgetItem(text, ui->listWidget_left);
    item->setToolTip(text);
    item->setTextAlignment(Qt::AlignCenter);
    item->setHidden(hidden);
}

// A page chosen on another device of the list stays if this one has it too.
void MainWindow::selectFirstPage(const CTablet *tablet)
{
    int row = tablet->m_DeviceAttributes.DeviceType == DeviceTypeRemote ? 2 : 0;
    const int current = ui->tabWidget->currentIndex();
    if (ui->widget_device->count() > 1 && current > row && current < ui->listWidget_left->count())
        row = current;
    ui->listWidget_left->setCurrentRow(row);
    const int page = tablet->m_TabletXMLData->SupportGroupKeys ? kGroupKeyPage : row;
    ui->tabWidget->setCurrentIndex(page);
    OnTabItemClicked(page);
}

void MainWindow::showBattery(CTablet *tablet)
{
    m_BatteryWidget->move(10, 36 * ui->listWidget_left->count());
    if (tablet->m_BatteryValue > 0) {
        m_BatteryWidget->SetBatteryValue(tablet->m_BatteryValue, 0);
        m_BatteryWidget->show();
    } else {
        m_BatteryWidget->hide();
    }
    tablet->SentCmd(4, 0, 0);
}

void MainWindow::DeleteUI()
{
    ui->tabWidget->hide();
    ui->settingBtn->hide();
    ui->DisConnectLabel->show();
    ui->DisconnectTipsLabel->show();
    if (m_BatteryWidget)
        m_BatteryWidget->hide();
    ui->listWidget_left->clear();
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

void MainWindow::onClickListItem(QListWidgetItem *item)
{
    showPage(ui->listWidget_left->row(item));
}

void MainWindow::showPage(int row)
{
    if (!m_CurrentTablet)
        return;
    m_CurrentTablet->m_SendMultiData = row == 1;
    ui->tabWidget->setCurrentIndex(
        m_CurrentTablet->m_TabletXMLData->SupportGroupKeys ? kGroupKeyPage : row);
}

// The application strip stays hidden on every page.
void MainWindow::OnTabItemClicked(int index)
{
    ui->labelhead_bg->setHidden(index < 1);
    ui->widget_app->hide();
    ui->pushButton_add->hide();
    ui->pushButton_delete->hide();
    ui->label_application->hide();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        return filterMousePress(watched, static_cast<QMouseEvent *>(event));
    case QEvent::MouseMove:
        return watched != ui->logo && filterMouseMove(static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonRelease:
        filterMouseRelease(static_cast<QMouseEvent *>(event));
        return false;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

bool MainWindow::filterMousePress(QObject *watched, const QMouseEvent *event)
{
    qDebug() << "MouseButtonPress:" << watched->objectName();
    if (watched == ui->label_bg)
        qDebug() << "label_bg MouseButtonPress";
    if (watched == ui->logo) {
        const QString address = languageText("Device.url");
        if (!address.isEmpty())
            QDesktopServices::openUrl(QUrl(address));
        return false;
    }
    if (qRound(event->localPos().y()) > kDragStripHeight)
        return false;
    m_Dragging = true;
    m_DragOrigin = event->pos();
    return true;
}

bool MainWindow::filterMouseMove(const QMouseEvent *event)
{
    if (!m_Dragging)
        return false;
    move(pos() + event->pos() - m_DragOrigin);
    return true;
}

void MainWindow::filterMouseRelease(const QMouseEvent *event)
{
    qDebug() << "MouseButtonRelease:";
    filterMouseMove(event);
    m_Dragging = false;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    qDebug() << "closeEvent";
    QWidget::closeEvent(event);
}

void MainWindow::ReceiveUsbMsg(unsigned short vid, unsigned short pid, short state)
{
    qDebug() << "ReceiveUsbMsg Vid:" << vid << "Pid:" << pid << "state" << state;
    qInfo() << "ReceiveUsbMsg Vid:" << vid << "Pid:" << pid << "state" << state;
    if (state == LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED)
        onDeviceArrived(pid);
    else if (state == LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT)
        onDeviceLeft(pid);
}

// Blocks the GUI thread on purpose: a removal that follows waits in the queue.
void MainWindow::onDeviceArrived(int pid)
{
    QThread::usleep(kArrivalSettleUs);
    if (EnumDeviceLinux(pid))
        showSoleDevice();
}

// Closes every device of the product, then reopens those still connected.
void MainWindow::onDeviceLeft(int pid)
{
    const QString pidText = QString::asprintf("PID_%04X", pid & 0xFFFF);
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        const CTablet *tablet = CGlobalData::TabletArray[slot];
        if (tablet && QString::fromLatin1(tablet->m_DeviceAttributes.PidString).contains(pidText))
            removeTablet(slot);
    }
    if (EnumDeviceLinux(pid))
        showSoleDevice();
}

void MainWindow::removeTablet(int slot)
{
    CTablet *tablet = CGlobalData::TabletArray[slot];
    const QString key = DeleteMapItem(tablet);
    QObject::disconnect(tablet, nullptr, this, nullptr);
    QObject::disconnect(this, nullptr, tablet, nullptr);
    tablet->DelTablet();
    CGlobalData::TabletArray[slot] = nullptr;
    m_RemovedTablets.append(tablet);
    if (m_CurrentTablet == tablet)
        m_CurrentTablet = nullptr;
    qInfo() << "Function nativeEvent:" << tablet->m_DeviceAttributes.PidString << " disconnected";
    if (ui->widget_device->count() < 2) {
        ui->widget_device->removeItem(0);
        CloseJingxiMode();
    } else {
        // A like device shadowed in the map by a later one has no key: its entry bears the
        // same show name.
        ui->widget_device->removeChildDevice(
            key.isEmpty() ? QString::fromUtf8(tablet->m_DeviceAttributes.ShowName) : key);
    }
    if (GetTabletArraySize() == 0)
        DeleteUI();
}

void MainWindow::showSoleDevice()
{
    if (ui->widget_device->count() != 1)
        return;
    EnumDisplay(false);
    InitUI(ui->widget_device->currentText());
}

void MainWindow::stopListener()
{
    if (!m_UsbListenThread)
        return;
    m_UsbListenThread->Exit();
    disconnect(m_UsbListenThread, nullptr, this, nullptr);
    m_UsbListenThread->quit();
    m_UsbListenThread->wait(kListenerStopWaitMs);
    delete m_UsbListenThread;
    m_UsbListenThread = nullptr;
}

void MainWindow::CloseDevice()
{
    stopListener();
    for (CTablet *&tablet : CGlobalData::TabletArray) {
        if (!tablet)
            continue;
        tablet->DelTablet();
        delete tablet;
        tablet = nullptr;
    }
    CGlobalData::TabletMap.clear();
    m_CurrentTablet = nullptr;
}

void MainWindow::InitSystemTray()
{
    if (m_TrayReady)
        return;
    m_TrayIcon = new QSystemTrayIcon(this);
    m_TrayMenu = new TrayMenu(this);
    m_TrayIcon->setContextMenu(m_TrayMenu);
    m_TrayIcon->setToolTip("Scribora");
    m_TrayIcon->setIcon(QIcon(":/image/Res/scribora.png"));
    connect(m_TrayIcon, &QSystemTrayIcon::activated, this, &MainWindow::onActivated);
    connect(m_TrayMenu, &TrayMenu::showAction, this, &MainWindow::OnShowDriver);
    connect(m_TrayMenu, &TrayMenu::updateAction, this, &MainWindow::OnUpdateApp);
    connect(m_TrayMenu, &TrayMenu::quitAction, this, &MainWindow::OnQuiqDriver);
    m_TrayIcon->show();
    m_TrayReady = true;
}

void MainWindow::onActivated(QSystemTrayIcon::ActivationReason reason)
{
    if (reason == QSystemTrayIcon::Context)
        m_TrayMenu->popup(QCursor::pos());
    else if (reason == QSystemTrayIcon::Trigger)
        OnShowDriver();
}

void MainWindow::OnShowDriver()
{
    showNormal();
    raise();
    activateWindow();
}

// Closing the panel saves and leaves the driver running in the tray.
void MainWindow::on_closeBtn_clicked()
{
    InitSystemTray();
    hide();
    on_pushButton_ok_clicked();
}

void MainWindow::on_pushButton_ok_clicked()
{
    if (!m_CurrentTablet)
        return;
    for (CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet)
            tablet->SaveXML();
    }
    const QString saved = languageText("Information.101");
    if (!saved.isEmpty())
        CGlobalData::Show_Info->EmitInfo(saved);
}

void MainWindow::on_pushButton_cancel_clicked()
{
    if (!m_CurrentTablet)
        return;
    for (CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet)
            tablet->LoadXML(tablet->m_DeviceAttributes.ModelName);
    }
    InitUI(QString::fromUtf8(m_CurrentTablet->m_DeviceAttributes.ShowName));
}

void MainWindow::ShowSettingForm()
{
    const QPoint at = frameGeometry().topLeft() + QPoint(590, 70);
    if (!m_SettingForm)
        createSettingForm();
    m_SettingForm->move(at);
    m_SettingForm->SetCheckButtonStatus(m_CurrentTablet, m_Language, ui->version->text());
    m_SettingForm->show();
    m_SettingForm->activateWindow();
}

// Telemetry and the updater are dormant: no consent box and no download entry.
void MainWindow::createSettingForm()
{
    qDebug() << "ShowSettingForm";
    m_SettingForm = new SettingForm(this);
    m_SettingForm->SetDataCollectVisable(false, false);
    const QVariant redPoint = ui->settingBtn->property("redPoint");
    m_SettingForm->SetDriverDownBtnVisabel(redPoint.toString() == "1" ||
                                           redPoint.toString() == "true");
    connect(m_SettingForm, &SettingForm::DisablePress, this, &MainWindow::onCheckBoxDisablePress);
    connect(m_SettingForm, &SettingForm::DisableSlope, this, &MainWindow::onCheckBoxDisableSlope);
    connect(m_SettingForm, &SettingForm::DisableHotkey, this, &MainWindow::onCheckBoxDisableHotkey);
    connect(m_SettingForm, &SettingForm::DisableTipMsg, this, &MainWindow::onCheckBoxDisableTipMsg);
}

void MainWindow::CloseSettingFormDevices()
{
    if (m_SettingForm)
        emit m_SettingForm->CloseSettingForm();
}

void MainWindow::onCheckBoxDisablePress(bool disabled)
{
    storeFlag("CheckBoxDisablePress", &stTablet_XMLData::DisablePressure, disabled);
}

void MainWindow::onCheckBoxDisableSlope(bool disabled)
{
    storeFlag("CheckBoxDisableSlope", &stTablet_XMLData::DisableSlope, disabled);
}

void MainWindow::onCheckBoxDisableHotkey(bool disabled)
{
    storeFlag("CheckBoxDisableHotkey", &stTablet_XMLData::DisableQuickKey, disabled);
}

void MainWindow::onCheckBoxDisableTipMsg(bool disabled)
{
    storeFlag("CheckBoxDisableTipMsg", &stTablet_XMLData::DisableInfo, disabled);
}

void MainWindow::storeFlag(const char *name, int16_t stTablet_XMLData::*flag, bool value)
{
    qDebug() << name << value;
    if (!m_CurrentTablet || !m_CurrentTablet->m_TabletXMLData)
        return;
    m_CurrentTablet->m_TabletXMLData->*flag = value ? 1 : 0;
}

void MainWindow::OnUpdateApp()
{
    for (CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet)
            tablet->SaveXML();
    }
}

// Saves, then gives every device back to the system before the driver ends.
void MainWindow::OnQuiqDriver()
{
    on_pushButton_ok_clicked();
    for (CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet)
            tablet->SentCmd(3, 2, 0);
    }
    QCoreApplication::quit();
}

void MainWindow::ReceivActionMsg(int tabletId, int msgId, int msgData)
{
    // An unplug may overtake a queued message: start from the slot, not a pointer.
    if (tabletId < 0 || tabletId >= kTabletSlots || !CGlobalData::TabletArray[tabletId])
        return;
    CTablet *tablet = CGlobalData::TabletArray[tabletId];
    switch (msgId) {
    case 1:
        OnShowDriver();
        break;
    case 3:
        if (tablet->m_DeviceAttributes.DeviceType == DeviceTypeRemote)
            SwitchOtherTablets(tabletId, msgData != 0);
        break;
    case 4:
        ToggleFineMode(tabletId);
        break;
    case 88:
        onBatteryMsg(tablet, msgData);
        break;
    case 89:
        if (tablet == m_CurrentTablet)
            UpdatePenPicture();
        break;
    case 100:
        RestoreTouchStrip(tablet);
        break;
    default:
        break;
    }
}

void MainWindow::onBatteryMsg(CTablet *tablet, int chargeState)
{
    noteLowBattery(tablet, chargeState);
    if (tablet != m_CurrentTablet || !m_BatteryWidget)
        return;
    m_BatteryWidget->SetBatteryValue(tablet->m_BatteryValue, chargeState);
    m_BatteryWidget->show();
    m_BatteryWidget->update();
}

// One tray warning per fall to 20 % or below; charging or a higher value re-arms it.
void MainWindow::noteLowBattery(CTablet *tablet, int chargeState)
{
    if (chargeState == 1) {
        tablet->m_LowBatteryNoted = 0;
        return;
    }
    qDebug() << "m_BatteryValue" << tablet->m_BatteryValue << tablet->m_LowBatteryNoted;
    if (tablet->m_BatteryValue > 20) {
        tablet->m_LowBatteryNoted = 0;
        return;
    }
    if (tablet->m_LowBatteryNoted || !m_TrayIcon)
        return;
    tablet->m_LowBatteryNoted = 1;
    const QString text = languageText("Common.battery", "Low Battery") + ":" +
                         QString::number(tablet->m_BatteryValue) + "%";
    m_TrayIcon->showMessage(QString(), text, QIcon(), 15000);
}

void MainWindow::RestoreTouchStrip(CTablet *tablet)
{
    const stTablet_XMLData *settings = tablet->m_TabletXMLData;
    if (!settings || settings->CommonAPP.Ring[1].type != 1)
        return;
    if (settings->CommonAPP.Ring[1].mode == 0)
        tablet->SentCmd(2, 3, 0);
    else
        tablet->SentCmd(2, 1, settings->Orientation);
}

// A remote's Pen/Eraser switch acts on the pens of the other tablets.
void MainWindow::SwitchOtherTablets(int tabletId, bool eraser)
{
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        CTablet *other = CGlobalData::TabletArray[slot];
        if (other && slot != tabletId)
            other->ChangeTabletPenOrErase(eraser);
    }
}

void MainWindow::ToggleFineMode(int tabletId)
{
    if (m_JingXiMode) {
        emit m_JingXiMode->CloseJingxiMode();
        return;
    }
    OpenFineMode(tabletId);
}

// The overlay opens on the screen of the current mapping.
void MainWindow::OpenFineMode(int tabletId)
{
    const int screenId =
        m_CurrentTablet
            ? std::clamp<int>(m_CurrentTablet->m_TabletXMLData->ScreenId, 0, kScreenSlots - 1)
            : 0;
    m_JingXiMode = new JingXiMode(CGlobalData::ScreenArray[screenId], QCursor::pos(), this);
    connect(m_JingXiMode, &JingXiMode::GetModeRect, this, &MainWindow::GetBERect);
    connect(m_JingXiMode, &JingXiMode::CloseJingxiMode, this, &MainWindow::CloseJingxiMode);
    m_JingXiMode->show();
    CTablet *target = FineModeTarget(tabletId);
    if (target)
        target->m_TabletXMLData->bBERectOn = 1;
}

// A remote has no pen: the fine area goes to the first other tablet.
CTablet *MainWindow::FineModeTarget(int tabletId) const
{
    CTablet *sender = CGlobalData::TabletArray[tabletId];
    if (sender->m_DeviceAttributes.DeviceType != DeviceTypeRemote)
        return sender;
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        if (slot != tabletId && CGlobalData::TabletArray[slot])
            return CGlobalData::TabletArray[slot];
    }
    return nullptr;
}

void MainWindow::GetBERect(QRect rect)
{
    const stBERect area = {static_cast<int16_t>(rect.x()), static_cast<int16_t>(rect.y()),
                           static_cast<int16_t>(rect.width()), static_cast<int16_t>(rect.height())};
    if (m_CurrentTablet && m_CurrentTablet->m_TabletXMLData->bBERectOn) {
        m_CurrentTablet->m_TabletXMLData->BERect = area;
        return;
    }
    for (CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet && tablet->m_TabletXMLData->bBERectOn)
            tablet->m_TabletXMLData->BERect = area;
    }
}

// Reached from the overlay's own key handler, so it is deleted later.
void MainWindow::CloseJingxiMode()
{
    if (!m_JingXiMode)
        return;
    m_JingXiMode->close();
    m_JingXiMode->deleteLater();
    m_JingXiMode = nullptr;
    for (CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet)
            tablet->m_TabletXMLData->bBERectOn = 0;
    }
}

void MainWindow::OnShowLabel(QString text)
{
    m_Tip->ShowInfoText(text, true);
}

void MainWindow::OnShowRinglrc(QStringList *names, int selected)
{
    m_Tip->DrawTips(names, selected);
    delete names;
}

void MainWindow::ReceivActionMsg(int tabletId, int, QString)
{
    if (tabletId < 0 || tabletId >= kTabletSlots || !CGlobalData::TabletArray[tabletId])
        return;
}

void MainWindow::ReceivTabletLightData(CTablet *) {}

void MainWindow::onDeskScreenChanged(int)
{
    EnumDisplay(true);
}

void MainWindow::EnumDisplay(bool /*screensChanged*/)
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
    // The mapping page takes the flag and refills its screen list here once it exists.
    qDebug() << "Function  EnumDisplay nScreenCount:" << count;
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

int MainWindow::DidPressurePointsConvertToIntValue(SPresslvPoints points)
{
    struct Threshold {
        double above;
        int level;
    };
    static constexpr Threshold kThresholds[] = {{10.28, -3}, {3.0, -2}, {1.39, -1},
                                                {0.69, 0},   {0.33, 1}, {0.2, 2}};
    const float steepness = (1 - points.P1Y) / std::fabs(points.P1X - points.P0);
    for (const Threshold &threshold : kThresholds) {
        if (steepness > threshold.above)
            return threshold.level;
    }
    return 3;
}
