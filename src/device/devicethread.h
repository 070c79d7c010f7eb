#pragma once

#include "reportprotocol.h"

#include <QMutex>
#include <QThread>
#include <atomic>

class HidDevice;

// Reads one device's reports and hands ids 2 and 3 on, on this thread.
class DeviceThread : public QThread
{
    Q_OBJECT
public:
    // `writeLock` serialises this thread's one write with the tablet's others.
    DeviceThread(HidDevice *device, QMutex *writeLock, QObject *parent = nullptr);

    void LinuxRelease();
    // Input reports go on; any other report id is logged and dropped.
    static bool PassesOn(const quint8 *report)
    {
        return report[0] == kReportIdTablet || report[0] == kReportIdKeys;
    }
    int errorCount() const { return m_ErrorCount; }

    static constexpr int kReportSize = 64;
    static constexpr int kReadTimeoutMs = 100;
    static constexpr int kErrorLimit = 2500;

signals:
    void MySentTabletPackets(quint8 *packets, int length);
    void HidOperatorError(int res);

protected:
    void run() override;

private:
    void logDroppedReport(const quint8 *report);
    void reportFatalError(int result);

    HidDevice *m_Device;
    QMutex *m_WriteLock;
    std::atomic<int> m_ErrorCount{0};
};
