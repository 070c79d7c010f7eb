#pragma once

#include "settingsrecords.h"

#include <QList>
#include <QString>
#include <QSystemTrayIcon>
#include <QWidget>

namespace Ui
{
class MainWindow;
}
class CTablet;
class JingXiMode;
class QMenu;
class QRect;
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

private slots:
    void onActivated(QSystemTrayIcon::ActivationReason reason);

private:
    void onBatteryMsg(CTablet *tablet, int chargeState);
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
    QMenu *m_TrayMenu = nullptr;
    JingXiMode *m_JingXiMode = nullptr;
    UsbListenThread *m_UsbListenThread = nullptr;
    // Unplugged tablets stay allocated: pages and queued messages may still point at them.
    QList<CTablet *> m_RemovedTablets;
    bool m_TrayReady = false;
    bool m_StartedMinimised = false;
};
