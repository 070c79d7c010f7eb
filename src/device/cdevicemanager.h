#pragma once

#include <QList>
#include <QObject>
#include <QString>

class CTablet;
class UsbListenThread;
struct HidInterface;

// Opens the catalogued devices, follows hot-plug events and closes the devices at the end.
// It keeps the tablet slots; the window follows through the signals.
class CDeviceManager : public QObject
{
    Q_OBJECT
public:
    explicit CDeviceManager(QObject *parent = nullptr);
    ~CDeviceManager() override;

    // pid 0 scans every product of the vendor; true if a tablet was opened.
    bool EnumDeviceLinux(int pid);
    // The catalogue row named in a device path, or -1.
    static int getDeviceListIndex(const QString &path);
    void startListener();
    // Stops the listener and releases every open tablet; nothing is saved here.
    void CloseDevice();

public slots:
    void ReceiveUsbMsg(unsigned short vid, unsigned short pid, short state);

signals:
    // The tablet holds a slot and its map entry.
    void tabletAdded(CTablet *tablet);
    // The tablet is about to be released: whatever is connected to it lets go now.
    void tabletLeaving(CTablet *tablet);
    // The tablet left its slot; key is its map entry, empty when a like tablet shadowed it.
    void tabletRemoved(CTablet *tablet, const QString &key);
    // A scan after a hot-plug event opened at least one tablet.
    void hotPlugOpened();
    // A catalogued device could not be opened, which in practice means missing rights.
    void openFailed();

private:
    bool openEntry(const HidInterface &entry);
    void onDeviceArrived(int pid);
    void onDeviceLeft(int pid);
    void removeTablet(int slot);
    void stopListener();

    UsbListenThread *m_UsbListenThread = nullptr;
};
