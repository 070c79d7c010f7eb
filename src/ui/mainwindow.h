#pragma once

#include "multidata.h"
#include "penbuttonslot.h"
#include "settingsrecords.h"
#include "wheelslot.h"
#include "zkdisplaycontent.h"

#include <QPoint>
#include <QPointer>
#include <QString>
#include <QSystemTrayIcon>
#include <QTime>
#include <QWidget>

#include <QVector>

#include <functional>

namespace Ui
{
class MainWindow;
}
class BatteryWidget;
class DiagnosisFunction;
class DisplaySetting;
class DrawLineTestDialog;
class PenRingSetting;
class QComboBox;
class SelectPenMenuList;
class CDeviceManager;
class CTablet;
class JingXiMode;
class JsonServer;
class HotKeyGroups;
class KeyPreviewSwitch;
class buttonListWidget;
struct stKeyConfig;
class MyLrc;
class QLabel;
class QListWidgetItem;
class QPixmap;
class QRect;
class SettingForm;
class TrayMenu;
class UpdateServer;
class QTimer;
class QButtonGroup;
class QSpinBox;

// The one top-level window. Its bodies live in files by area: mainwindow.cpp is the shell,
// mainwindow_<area>.cpp the rest.
class MainWindow : public QWidget
{
    Q_OBJECT
public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    // Shell
    int Init();
    void InitUI(const QString &deviceName);
    void DeleteUI();
    void InitSystemTray();
    void InitLanguageUI();
    void InitPenLanguageUI();

    // Devices, kept by CDeviceManager and TabletSlots
    bool EnumDeviceLinux(int pid);
    bool EmumDevice();
    bool EnmuTabeltDevice();
    int GetEmptyTabletArray() const;
    int GetTabletArraySize() const;
    // Removes the first map entry of the tablet and gives its key, empty if there is none.
    QString DeleteMapItem(CTablet *tablet);
    int IsDeviceShowNameExit(const QString &pidString, CTablet *except) const;
    int getDeviceListIndex(const QString &path) const;
    void CloseDevice();

    // Screens
    void EnumDisplay(bool screensChanged);
    static void EnumLogicDisplay();
    static void SortQRectRect(QRect *src, QRect *dst, int count, bool trackPrimary);

    // Pen: the pressure slider's level for a curve, -3, the softest, to 3, the hardest.
    static int DidPressurePointsConvertToIntValue(SPresslvPoints points);
    // The application record that the pen, key and wheel pages edit, and its pen shown.
    _stAppConfigNode *editedRecord() const;
    int editedPenIndex() const;

    // Wheel page: the four function boxes and the selected function of each wheel; 0 from the
    // constructor.
    void InitWheelTouchUI();
    void SetRingWheelRadio(int wheel);
    void ChangeRingAction(bool second, int tabletId);
    void ChangeRingAction(bool second, int tabletId, QString app);
    void ChangePenRingAction(int tabletId, QString app);
    void UpdatePen3RingUIContext();

    // Usage data, dormant: the channel's pointer stays null and nothing is composed.
    void InitDataCollectAction();
    QString GetTabletXmlDataToJson(int slot);
    QString GetAPPConfigDataToJson(int slot, QString name, _stAppConfigNode *app,
                                   stTablet_XMLData *data);
    // Nothing in the program calls this; a test installs a channel to see what is composed.
    void setJsonServer(JsonServer *server);

    // Key page: the boxes of `count` keys of the current tablet; 0 from the constructor.
    void InitKeyUI(int count);

    // Mapping page: the work area that keeps a screen's shape, centred on the tablet.
    static QRect ProportionalArea(QSize tablet, QSize screen);
    // The screen list from the screen table.
    void fillScreenList();

    // Profile file: its version cut at the last point, empty with a code 101-105 on failure;
    // export, and import after the version check (0 on success, -1 when the copy failed).
    static QString GetXMLFileVersion(QString path, int &code);
    bool GetConfigXMLFileVersion(QString path, int &code);
    bool ExportConfigTo(const QString &path);
    int ImportConfigFrom(const QString &path);
    const QString &xmlVersion() const { return m_XmlVersion; }
    // The desktop's tablet interface; false with the reason in `text`.
    bool TestWintableDll(QString &text);
    // Adds a program to the strip with a copy of the common record; false when refused.
    bool AddApplication(const QString &path);

    // Updates, dormant as well.
    static bool compareVersion(const QString &a, const QString &b);
    void CheckUpdateTQR4470C();
    const QString &driverDownloadUrl() const { return m_DriverDownloadUrl; }

    CTablet *currentTablet() const { return m_CurrentTablet; }
    bool startedMinimised() const { return m_StartedMinimised; }
    void setStartedMinimised(bool minimised) { m_StartedMinimised = minimised; }
    Ui::MainWindow *form() const { return ui; }
    JingXiMode *fineMode() const { return m_JingXiMode; }
    BatteryWidget *batteryWidget() const { return m_BatteryWidget; }
    QSystemTrayIcon *trayIcon() const { return m_TrayIcon; }
    TrayMenu *trayMenu() const { return m_TrayMenu; }
    SettingForm *settingForm() const { return m_SettingForm; }

public slots:
    // Shell
    void OnShowDriver();
    void OnQuiqDriver();
    void OnShowLabel(QString text);
    void OnShowRinglrc(QStringList *names, int selected);
    void onClickListItem(QListWidgetItem *item);
    void OnTabItemClicked(int index);
    void OnUpdateApp();
    void on_closeBtn_clicked();
    void on_pushButton_ok_clicked();
    void on_pushButton_cancel_clicked();
    void showImage(QPixmap pixmap, QLabel *label);

    // Devices
    void ReceiveUsbMsg(unsigned short vid, unsigned short pid, short state);
    bool GetSameTablet(int pid);
    void onSelectTabletDevice(QString deviceName, int index);

    // Actions: messages of the tablets, fine mode, battery
    void ReceivActionMsg(int tabletId, int msgId, int msgData);
    void ReceivActionMsg(int tabletId, int msgId, QString appPath);
    void ReceivTabletLightData(CTablet *tablet);
    void on_horizontalSlider_tablet_light_valueChanged(int value);
    void on_LightCheckBox_clicked(bool checked);
    void on_BrightnessCheckBox_stateChanged(int state);
    void operatingBrightButtonsToggled(int id, bool checked);
    void onDiagnosisFun();
    void UpdateDiagnosisDlgInfo();
    void onCloseDiagnosisDlg();
    void GetBERect(QRect rect);

    // Pen display, lights and diagnosis
    void on_pushButton_ScreenSetting_clicked();
    void onScreenColorChange(int command, int p1, int p2);
    void CloseJingxiMode();

    // Screens
    void GetScreenCalibrate(float fkx, float fky, float fxlc, float fylc);
    void onDeskScreenChanged(int);

    // Pen
    void UpdatePenPicture();
    void ReceivMultiData(CTablet *tablet, MultiData data);
    void on_PressSensitivityChange(SPresslvPoints points);
    void on_horizontalSlider_pressLv_valueChanged(int level);
    void on_checkBox_mouseMode_clicked();
    void on_checkBox_windowsInk_clicked();
    void on_horizontalSlider_mspeed_valueChanged(int value);
    void on_comboBox_pbtn0_activated(int index);
    void on_comboBox_pbtn1_activated(int index);
    void on_comboBox_pbtn2_activated(int index);
    void on_pushButton_selectPen_clicked();
    void on_pushButton_TestPressure_clicked();
    void UpdataPenSelect(int index);
    void UpdtePenHotkeyWheelUI();
    void onResetPenDefaultSetting();
    void onPenMenuSelectedAction(QString name, int index);
    void onPenMenuDeletePenSelectedAction(QString name, int index);

    // Wheel page
    void onWheelComboBoxActivated(int slot);
    void onWheelRadioClick(int slot);
    void on_radioButton_m_wheel_clicked();
    void on_radioButton_m_touch_clicked();
    void onResetRingDefaultSetting();

    // Application profiles
    void OnAddApplication();
    void OnDeleteApplication();
    void onSelectAppItem(QString path, int index);
    void ClearApplication();
    void UpdateUIByAppChange();

    // Profile file
    void onExportConfigueFile();
    void onImportConfigueFile();

    // Settings form
    void ShowSettingForm();
    void CloseSettingFormDevices();
    void onCheckBoxDisablePress(bool disabled);
    void onCheckBoxDisableSlope(bool disabled);
    void onCheckBoxDisableHotkey(bool disabled);
    void onCheckBoxDisableTipMsg(bool disabled);

    // Mapping page
    void on_comboBox_screen_currentIndexChanged(int index);
    void on_spinBox_sx_valueChanged(int);
    void on_spinBox_sy_valueChanged(int);
    void on_spinBox_sw_valueChanged(int);
    void on_spinBox_sh_valueChanged(int);
    void on_spinBox_tx_valueChanged(int);
    void on_spinBox_ty_valueChanged(int);
    void on_spinBox_tw_valueChanged(int);
    void on_spinBox_th_valueChanged(int);
    void on_pushButton_fullscreen_clicked();
    void on_pushButton_fullworkarea_clicked();
    void on_pushButton_screenscal_clicked();
    void on_pushButton_setscreenarea_clicked();
    void on_pushButton_selectWorkArea_clicked();
    void on_pushButton_showscreenid_clicked();
    void on_pushButton_screencalibrate_clicked();
    void onRotationButtonClicked(int id, bool fromUser = true);
    void onSetAreaOk(short x, short y, short w, short h);
    void onSetScreenValue(int x, int y, int w, int h);
    void onSetTabletValue(int x, int y, int w, int h);
    void on_SetScreenRect(QRect area);
    void onResetWorkAreaDefaultSetting(bool withRotation);
    void UpdateMapping(stTablet_XMLData *data);
    void SetTabletArea(stTablet_XMLData *data);
    void ChangeScreenForTablet(int tabletId);
    void on_comboBox_rotate_currentIndexChanged(int index);
    void onClearSpinBoxFocus();

    // Key page
    void ComboBoxKeyActivated(int key);
    void SelectM07HotKeyGroup(int group);
    void onSelectHotKeyItem(int group, bool on, int unused);
    void onSelectAppHotKeyItem(int group, bool on, int unused, _stAppConfigNode *record);
    void on_HotkeyPushButton_clicked();
    void on_HotkeyPushButton_QRM07_clicked();
    void on_DefaultQRM07Button_clicked();
    void on_SaveQRM07Button_clicked();
    void on_ImportQRM07Button_clicked();
    void onResetHotkeyDefaultSetting();

    // Usage data and updates
    void onChangeCollectDataOption(bool on);
    void onSendJsonDataToServer(QString message);
    void time_handler();
    void OnGetNewDriver(int code, QString version, QString downloadUrl, QString message);
    void onDriverDownLoadFun();

signals:
    // Closes the page's dialogs when their tablet goes.
    void HideDialog();

private slots:
    void onActivated(QSystemTrayIcon::ActivationReason reason);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    // Shell
    void setUpFrame();
    void connectShell();
    void watchDragAreas();
    void openConfiguration();
    void connectDesktopSignals();
    bool filterMousePress(QObject *watched, const QMouseEvent *event);
    bool filterMouseMove(const QMouseEvent *event);
    void filterMouseRelease(const QMouseEvent *event);
    void showApplications(const CTablet *tablet);
    void enableApplicationButtons();
    void fillPageList(const CTablet *tablet);
    void addPageRow(const char *key, const char *fallback, bool hidden);
    void selectFirstPage(const CTablet *tablet);
    void showBattery(CTablet *tablet);
    void showPage(int row);

    // Devices
    void connectDevices();
    void onTabletAdded(CTablet *tablet);
    void onTabletLeaving(CTablet *tablet);
    void onTabletRemoved(CTablet *tablet, const QString &key);
    void showSoleDevice();
    void showRootRightsWarning();
    void connectTablet(CTablet *tablet);

    // Actions
    void onBatteryMsg(CTablet *tablet, int chargeState);
    void noteLowBattery(CTablet *tablet, int chargeState);
    void RestoreTouchStrip(CTablet *tablet);
    void SwitchOtherTablets(int tabletId, bool eraser);
    void ToggleFineMode(int tabletId);
    void OpenFineMode(int tabletId);
    CTablet *FineModeTarget(int tabletId) const;

    // Pen
    void InitPenUI();
    void showModelPictures(const CTablet *tablet);
    void showPenPage(const CTablet *tablet);
    void showPenPicture(int number);
    stPenConfig *editedPen() const;
    void storeCurve(stPenConfig &pen, const SPresslvPoints &points);
    void sendCurveEvent(const char *name, const SPresslvPoints &points);
    void enableSpeedSlider(bool enabled);
    void activatePenButton(int button, int index);
    bool editPenButtonFunction(bool eraserEnd, QString &func);
    void showPressure(int pressure, int maximum);
    void updateLiveFeed();

    // Lights
    void InitLightUI();
    void showLightControls(const CTablet *tablet);
    void checkTabletLight(int value);
    void checkBrightnessButton(int value);
    void checkLightSwitch(int value);
    void sendLight(int light, int value);
    void setUpDisplaySetting(int product);
    QRect displayScreenRect() const;
    void onDisplayReply(CTablet *tablet, int msgId, int value);
    bool virtualDevicesOpen() const;
    void showDiagnosisPen(const MultiData &data, int pressure);

    // Wheel page
    void showWheelPage(CTablet *tablet);
    void showTouchStripModes(CTablet *tablet);
    void showRingFunctions();
    void setTouchStripMode(bool touch);
    void ToggleTouchStrip(CTablet *tablet);
    void sendStripMode(CTablet *tablet, bool touch);
    void onRingFunctionsMessage(CTablet *tablet, int msgId, const QString &app);
    bool switchRingFunction(const stTablet_XMLData &settings, _stAppConfigNode &record, int ring);
    QString touchModeTip() const;
    bool stepRing(const stTablet_XMLData &settings, stRingConfig &ring,
                  const std::function<int(int)> &numberOf);
    void openPenRingSetting();
    void resetRing(int ring);

    // Settings form
    void createSettingForm();
    void storeFlag(const char *name, int16_t stTablet_XMLData::*flag, bool value);

    // Key page
    void createKeyPages();
    stKeyConfig *editedKey(int key) const;
    void openAllKeys(bool grouped);
    void onKeyGroupMessage(CTablet *tablet, const QString &app);
    void onKeyPreviewMessage(CTablet *tablet, const QString &app);
    _stAppConfigNode *appRecord(CTablet *tablet, const QString &app) const;
    void closeKeyPreviewOf(CTablet *tablet);
    void transferRemoteProfile(bool read);

    // Mapping page
    void connectMappingPage();
    void showMappingPage(CTablet *tablet);
    void followDisplay(CTablet *tablet);
    stTablet_XMLData *mappedProfile() const;
    QSize tabletSize(int orientation) const;
    static bool TouchModeOn(const stTablet_XMLData &data);
    QRect screenEntry(int index) const;
    void selectScreen(int index);
    void screenSpinChanged(bool horizontal, bool positionMoved, const char *event);
    void workSpinChanged(bool horizontal, bool positionMoved, const char *event);
    QRect spinScreenArea() const;
    QRect spinWorkArea() const;
    void storeScreenArea(const QRect &area);
    void showWorkArea(const QRect &area);
    void placeCalibrateButton(bool shown);
    void placeDisplaySettingsButton();
    bool storedAreaFits(const stTablet_XMLData &data) const;
    void fallBackToPrimary(stTablet_XMLData &data);
    void resetPenDisplayMapping();
    void resetTabletMapping(bool withRotation);
    void sendMappingEvent(const char *name, bool tabletSide, bool fromSpinBoxes = false);

    // Usage data: each composes only behind the null-pointer test.
    void sendUsage(const std::function<QString()> &compose);
    void sendUsageEvent(const char *name, const QString &value = "1", bool withTablet = false);
    QString startEvent(const char *name) const;
    QString currentTabletName() const;

    Ui::MainWindow *ui;
    CDeviceManager *m_Devices = nullptr;
    CTablet *m_CurrentTablet = nullptr;
    QString m_Language = QStringLiteral("English");
    QSystemTrayIcon *m_TrayIcon = nullptr;
    TrayMenu *m_TrayMenu = nullptr;
    BatteryWidget *m_BatteryWidget = nullptr;
    SettingForm *m_SettingForm = nullptr;
    QPoint m_DragOrigin;
    QTime m_StartTime;
    bool m_Dragging = false;
    JingXiMode *m_JingXiMode = nullptr;
    MyLrc *m_Tip = nullptr;
    bool m_TrayReady = false;
    bool m_StartedMinimised = false;
    QButtonGroup *m_RotationGroup = nullptr;
    buttonListWidget *m_KeyLists[2] = {};
    HotKeyGroups *m_KeyGroups = nullptr;
    KeyPreviewSwitch *m_KeyPreview = nullptr;
    QPointer<CTablet> m_KeyPreviewTablet;
    JsonServer *m_JsonServer = nullptr;
    QTimer *m_CollectTimer = nullptr;
    UpdateServer *m_UpdateServer = nullptr;
    QString m_DriverDownloadUrl;
    QString m_XmlVersion;
    // The program whose record the pages edit; empty for the common record.
    QString m_EditedApp;
    QVector<PenButtonSlot> m_PenButtons;
    SelectPenMenuList *m_PenMenu = nullptr;
    QPointer<DrawLineTestDialog> m_DrawTest;
    WheelSlot m_WheelSlots[kRingItemCount];
    QButtonGroup *m_RingItemGroup = nullptr;
    QButtonGroup *m_BrightGroup = nullptr;
    QPointer<DisplaySetting> m_DisplaySetting;
    tagZKDisplayContent m_displayContent{};
    QPointer<DiagnosisFunction> m_DiagnosisDlg;
    QPointer<PenRingSetting> m_PenRingSetting;
    int m_CurRingIndex = 0;
    // The strip's mode toggle, shared by every device; the first toggle goes to the wheel.
    bool m_TouchModeFlag = true;
};
