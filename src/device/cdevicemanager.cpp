#include "cdevicemanager.h"

#include "cglobaldata.h"
#include "cusbtablet.h"
#include "tabletslots.h"
#include "usblink.h"
#include "usblistenthread.h"
#include "zelkdevice.h"

#include <QDebug>
#include <QThread>

namespace
{
// The system needs this long before a new device can be opened.
constexpr unsigned long kArrivalSettleUs = 600000;
constexpr unsigned long kListenerStopWaitMs = 1000;
constexpr short kDeviceArrived = 1;
constexpr short kDeviceLeft = 2;
} // namespace

CDeviceManager::CDeviceManager(QObject *parent) : QObject(parent) {}

CDeviceManager::~CDeviceManager() = default;

bool CDeviceManager::EnumDeviceLinux(int pid)
{
    bool opened = false;
    for (const HidInterface &entry :
         usbLink().enumerateHid(kVendorId, static_cast<unsigned short>(pid & 0xFFFF))) {
        // A like device arriving must not open the one already running again.
        if (!TabletSlots::isPathOpen(entry.path.c_str()) && openEntry(entry))
            opened = true;
    }
    return opened;
}

bool CDeviceManager::openEntry(const HidInterface &entry)
{
    for (const ZelkDevice &row : zelkDevList) {
        if (entry.vendorId != row.vid || entry.productId != row.pid ||
            entry.interfaceNumber != static_cast<int>(row.interfaceNumber))
            continue;
        // A sixth device is left alone, without a word.
        if (TabletSlots::GetEmptyTabletArray() < 0)
            return false;
        auto *tablet = new CUSBTablet;
        connect(tablet, &CUSBTablet::OpenFailed, this, &CDeviceManager::openFailed);
        tablet->m_DeviceAttributes.DeviceType = row.deviceType;
        qDebug() << "-------type:" << row.deviceType;
        if (!tablet->InitTablet(entry.path.c_str(), row)) {
            delete tablet;
            continue;
        }
        TabletSlots::registerTablet(tablet);
        emit tabletAdded(tablet);
        return true;
    }
    return false;
}

int CDeviceManager::getDeviceListIndex(const QString &path)
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

void CDeviceManager::startListener()
{
    if (!m_UsbListenThread) {
        m_UsbListenThread = new UsbListenThread;
        connect(m_UsbListenThread, &UsbListenThread::SentListenMsg, this,
                &CDeviceManager::ReceiveUsbMsg, Qt::QueuedConnection);
    }
    m_UsbListenThread->start(QThread::InheritPriority);
}

void CDeviceManager::ReceiveUsbMsg(unsigned short vid, unsigned short pid, short state)
{
    qDebug() << "ReceiveUsbMsg Vid:" << vid << "Pid:" << pid << "state" << state;
    qInfo() << "ReceiveUsbMsg Vid:" << vid << "Pid:" << pid << "state" << state;
    if (state == kDeviceArrived)
        onDeviceArrived(pid);
    else if (state == kDeviceLeft)
        onDeviceLeft(pid);
}

// Blocks the GUI thread on purpose: a removal that follows waits in the queue.
void CDeviceManager::onDeviceArrived(int pid)
{
    QThread::usleep(kArrivalSettleUs);
    if (EnumDeviceLinux(pid))
        emit hotPlugOpened();
}

// Closes every device of the product, then reopens those still connected.
void CDeviceManager::onDeviceLeft(int pid)
{
    const QString pidText = TabletSlots::pidString(pid);
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        const CTablet *tablet = CGlobalData::TabletArray[slot];
        if (tablet && QString::fromLatin1(tablet->m_DeviceAttributes.PidString).contains(pidText))
            removeTablet(slot);
    }
    if (EnumDeviceLinux(pid))
        emit hotPlugOpened();
}

void CDeviceManager::removeTablet(int slot)
{
    CTablet *tablet = CGlobalData::TabletArray[slot];
    const QString key = TabletSlots::DeleteMapItem(tablet);
    emit tabletLeaving(tablet);
    tablet->DelTablet();
    CGlobalData::TabletArray[slot] = nullptr;
    qInfo() << "Function nativeEvent:" << tablet->m_DeviceAttributes.PidString << " disconnected";
    emit tabletRemoved(tablet, key);
    // Its reader has ended; what it posted before is delivered before the tablet goes.
    tablet->deleteLater();
}

void CDeviceManager::stopListener()
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

void CDeviceManager::CloseDevice()
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
}
