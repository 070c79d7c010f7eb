#pragma once

#include "settingsrecords.h"

#include <QList>
#include <QPoint>
#include <QString>
#include <QSystemTrayIcon>
#include <QTime>
#include <QWidget>

namespace Ui
{
class MainWindow;
}
class BatteryWidget;
class CTablet;
class JingXiMode;
class MyLrc;
class QLabel;
class QListWidgetItem;
class QPixmap;
class QRect;
class SettingForm;
class TrayMenu;
class UsbListenThread;

// The one top-level window; it also owns the device scan on the GUI thread.
class MainWindow : public QWidget
{
    Q_OBJECT
public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    int Init();
    bool EnumDeviceLinux(int pid);
    bool EmumDevice();
    bool EnmuTabeltDevice();
    int GetEmptyTabletArray() const;
    int GetTabletArraySize() const;
    // Removes the first map entry of the tablet and gives its key, empty if there is none.
    QString DeleteMapItem(CTablet *tablet);
    int IsDeviceShowNameExit(const QString &pidString, CTablet *except) const;
    int getDeviceListIndex(const QString &path) const;
    void InitUI(const QString &deviceName);
    void DeleteUI();
    void InitSystemTray();
    void InitLanguageUI();
    void CloseDevice();
    void EnumDisplay(bool screensChanged);
    static void EnumLogicDisplay();
    static void SortQRectRect(QRect *src, QRect *dst, int count, bool trackPrimary);
    // The pressure slider's level for a curve: -3, the softest, to 3, the hardest.
    static int DidPressurePointsConvertToIntValue(SPresslvPoints points);

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
    void ReceiveUsbMsg(unsigned short vid, unsigned short pid, short state);
    bool GetSameTablet(int pid);
    void OnShowDriver();
    void OnQuiqDriver();
    void ReceivActionMsg(int tabletId, int msgId, int msgData);
    void ReceivActionMsg(int tabletId, int msgId, QString appPath);
    void ReceivTabletLightData(CTablet *tablet);
    void onSelectTabletDevice(QString deviceName, int index);
    void GetScreenCalibrate(float fkx, float fky, float fxlc, float fylc);
    void onDeskScreenChanged(int);
    void GetBERect(QRect rect);
    void CloseJingxiMode();
    void OnShowLabel(QString text);
    void OnShowRinglrc(QStringList *names, int selected);
    void onClickListItem(QListWidgetItem *item);
    void OnTabItemClicked(int index);
    void OnUpdateApp();
    void on_closeBtn_clicked();
    void on_pushButton_ok_clicked();
    void on_pushButton_cancel_clicked();
    void showImage(QPixmap pixmap, QLabel *label);
    void UpdatePenPicture();
    void ShowSettingForm();
    void CloseSettingFormDevices();
    void onCheckBoxDisablePress(bool disabled);
    void onCheckBoxDisableSlope(bool disabled);
    void onCheckBoxDisableHotkey(bool disabled);
    void onCheckBoxDisableTipMsg(bool disabled);

private slots:
    void onActivated(QSystemTrayIcon::ActivationReason reason);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void setUpFrame();
    void connectShell();
    void watchDragAreas();
    bool filterMousePress(QObject *watched, const QMouseEvent *event);
    bool filterMouseMove(const QMouseEvent *event);
    void filterMouseRelease(const QMouseEvent *event);
    void enableApplicationButtons(const CTablet *tablet);
    void fillPageList(const CTablet *tablet);
    void addPageRow(const char *key, const char *fallback, bool hidden);
    void selectFirstPage(const CTablet *tablet);
    void showModelPictures(const CTablet *tablet);
    void showBattery(CTablet *tablet);
    void showPage(int row);
    void createSettingForm();
    void storeFlag(const char *name, int16_t stTablet_XMLData::*flag, bool value);
    void onBatteryMsg(CTablet *tablet, int chargeState);
    void noteLowBattery(CTablet *tablet, int chargeState);
    void RestoreTouchStrip(CTablet *tablet);
    void SwitchOtherTablets(int tabletId, bool eraser);
    void ToggleFineMode(int tabletId);
    void OpenFineMode(int tabletId);
    CTablet *FineModeTarget(int tabletId) const;
    void openConfiguration();
    void connectDesktopSignals();
    void registerTablet(CTablet *tablet);
    bool isPathOpen(const char *path) const;
    void onDeviceArrived(int pid);
    void onDeviceLeft(int pid);
    void removeTablet(int slot);
    void showSoleDevice();
    void stopListener();
    void connectTablet(CTablet *tablet);

    Ui::MainWindow *ui;
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
    UsbListenThread *m_UsbListenThread = nullptr;
    // Unplugged tablets stay allocated: pages and queued messages may still point at them.
    QList<CTablet *> m_RemovedTablets;
    bool m_TrayReady = false;
    bool m_StartedMinimised = false;
};
