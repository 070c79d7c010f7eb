#include "mainwindow.h"

#include "batterywidget.h"
#include "cdevicemanager.h"
#include "cglobaldata.h"
#include "ctablet.h"
#include "cvtkeycode.h"
#include "devicecommands.h"
#include "diagnosisfunction.h"
#include "jsonserver.h"
#include "mylinux.h"
#include "mylrc.h"
#include "qappitemwidget.h"
#include "settingform.h"
#include "traymenu.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QCursor>
#include <QDebug>
#include <QDesktopServices>
#include <QDesktopWidget>
#include <QGraphicsDropShadowEffect>
#include <QListWidget>
#include <QMouseEvent>
#include <QSettings>
#include <QTabBar>
#include <QUrl>

#include <initializer_list>

namespace
{
// Presses below the head strip do not drag the window.
constexpr int kDragStripHeight = 80;
constexpr int kGroupKeyPage = 5;
} // namespace

MainWindow::MainWindow(QWidget *parent) : QWidget(parent), ui(new Ui::MainWindow)
{
    m_Tip = new MyLrc(this);
    CGlobalData::Show_Info = m_Tip;
    connectDevices();
    openConfiguration();
    ui->setupUi(this);
    connectMappingPage();
    connectDesktopSignals();
    InitKeyUI(0);
    InitWheelTouchUI();
    InitLightUI();
    InitPenUI();
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
    CheckUpdateTQR4470C();
    InitDataCollectAction();
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
    connect(ui->pushButton_export, &QPushButton::clicked, this, &MainWindow::onExportConfigueFile);
    connect(ui->pushButton_add, &QPushButton::clicked, this, &MainWindow::OnAddApplication);
    connect(ui->pushButton_delete, &QPushButton::clicked, this, &MainWindow::OnDeleteApplication);
    connect(ui->widget_app, &QAppItemWidget::onSelectAppItem, this, &MainWindow::onSelectAppItem);
    connect(ui->pushButton_import, &QPushButton::clicked, this, &MainWindow::onImportConfigueFile);
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
    delete m_DiagnosisDlg;
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
    setLanguageText(ui->pushButton_fullscreen, "Device.SetFullScreen");
    setLanguageText(ui->pushButton_setscreenarea, "Device.ScreenArea");
    setLanguageText(ui->pushButton_showscreenid, "Device.ScreenID");
    setLanguageText(ui->pushButton_screencalibrate, "Device.Calibrate");
    setLanguageText(ui->pushButton_fullworkarea, "Device.FullWorkArea");
    setLanguageText(ui->pushButton_screenscal, "Device.ScreenScale");
    setLanguageText(ui->pushButton_selectWorkArea, "WorkArea");
    setLanguageText(ui->label_rotation, "Device.RotationSetting");
    // The screen half's tab reads as the word the screen list uses.
    const QString screen = languageText("Device.Screen", QString()).trimmed();
    if (!screen.isEmpty())
        ui->tabWidget_screen->setTabText(0, screen);
    setLanguageText(ui->pushButton_device, "Common.item1");
    setLanguageText(ui->pushButton_hotkey, "Common.item1");
    setLanguageText(ui->DefaultQRM07Button, "Common.item1");
    setLanguageText(ui->HotkeyPushButton, "ShortcutKey.AllKey");
    setLanguageText(ui->HotkeyPushButton_QRM07, "ShortcutKey.AllKey");
    setLanguageText(ui->SaveQRM07Button, "Import.saveBtn");
    ui->SaveQRM07Button->setToolTip(languageText("Import.saveTips", QString()));
    setLanguageText(ui->ImportQRM07Button, "Import.importBtn");
    ui->ImportQRM07Button->setToolTip(languageText("Import.importTips", QString()));
    InitPenLanguageUI();
}

int MainWindow::Init()
{
    EnmuTabeltDevice();
    CGlobalData::MyInputDriver.Init();
    m_Devices->startListener();
    return 1;
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
    showApplications(tablet);
    fillPageList(tablet);
    if (!m_BatteryWidget) {
        m_BatteryWidget = new BatteryWidget(ui->listWidget_left);
        ui->listWidget_left->setFocusPolicy(Qt::NoFocus);
    }
    selectFirstPage(tablet);
    updateLiveFeed();
    showPenPage(tablet);
    showMappingPage(tablet);
    showModelPictures(tablet);
    InitKeyUI(tablet->m_TabletXMLData->DeviceKeyNum);
    showWheelPage(tablet);
    showLightControls(tablet);
    showBattery(tablet);
    UpdateDiagnosisDlgInfo();
}

// A missing picture leaves the label as it was.
void MainWindow::showImage(QPixmap pixmap, QLabel *label)
{
    if (pixmap.isNull())
        return;
    label->setPixmap(pixmap.scaled(label->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
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
    tablet->SentCmd(kCmdBattery, 0, 0);
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

void MainWindow::onClickListItem(QListWidgetItem *item)
{
    showPage(ui->listWidget_left->row(item));
}

void MainWindow::showPage(int row)
{
    if (!m_CurrentTablet)
        return;
    ui->tabWidget->setCurrentIndex(
        m_CurrentTablet->m_TabletXMLData->SupportGroupKeys ? kGroupKeyPage : row);
    updateLiveFeed();
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
    sendUsageEvent("CloseBtnClicked");
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
    // The saved profiles ride along with the event.
    sendUsage([this] {
        QStringList event{JsonServer::GetJsonData("ConfirmButtonClicked", "1"),
                          JsonServer::GetJsonData("tablet", currentTabletName())};
        for (int slot = 0; slot < kTabletSlots; ++slot)
            event << GetTabletXmlDataToJson(slot);
        event.removeAll(QString());
        return event.join(',');
    });
    const QString saved = languageText("Information.101");
    if (!saved.isEmpty())
        CGlobalData::Show_Info->EmitInfo(saved);
}

void MainWindow::on_pushButton_cancel_clicked()
{
    if (!m_CurrentTablet)
        return;
    sendUsageEvent("CancelButtonClicked", "1", true);
    for (CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet)
            tablet->LoadXML(tablet->m_DeviceAttributes.ModelName);
    }
    InitUI(QString::fromUtf8(m_CurrentTablet->m_DeviceAttributes.ShowName));
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
    sendUsageEvent("ExitDriver");
    on_pushButton_ok_clicked();
    for (CTablet *tablet : CGlobalData::TabletArray) {
        if (tablet)
            tablet->SentCmd(kCmdReportMode, kReportModeSystem, 0);
    }
    QCoreApplication::quit();
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
