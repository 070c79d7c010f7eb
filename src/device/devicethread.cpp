#include "devicethread.h"

#include "devicecommands.h"
#include "reportprotocol.h"
#include "usblink.h"

#include <QDebug>
#include <QMutexLocker>
#include <cstring>

DeviceThread::DeviceThread(HidDevice *device, QMutex *writeLock, QObject *parent)
    : QThread(parent), m_Device(device), m_WriteLock(writeLock)
{
}

void DeviceThread::run()
{
    quint8 report[kReportSize];
    int result = 0;
    while (!isInterruptionRequested()) {
        memset(report, 0, sizeof report);
        result = m_Device->readTimeout(report, sizeof report, kReadTimeoutMs);
        if (result == 0)
            continue;
        if (result > 0) {
            if (PassesOn(report))
                emit MySentTabletPackets(report, result);
            else
                logDroppedReport(report);
            continue;
        }
        // Failures count over the thread's whole life, never reset by a good read.
        usleep(100);
        if (++m_ErrorCount >= kErrorLimit) {
            reportFatalError(result);
            break;
        }
    }
    usleep(50);
    qDebug() << "DeviceThread Thread exit";
}

void DeviceThread::logDroppedReport(const quint8 *report)
{
    qInfo("src recv %02X %02X %02X %02X %02X %02X %02X %02X %02X %02X %02X %02X %02X %02X %02X",
          report[0], report[1], report[2], report[3], report[4], report[5], report[6], report[7],
          report[8], report[9], report[10], report[11], report[12], report[13], report[14]);
}

void DeviceThread::reportFatalError(int result)
{
    qDebug() << "I AM WRONG:" << QString::fromStdWString(m_Device->error());
    emit HidOperatorError(result);
}

void DeviceThread::LinuxRelease()
{
    unsigned char release[kStartFrameLength] = {kReportIdTablet, kKindStart, kReportModeSystem};
    if (m_Device) {
        QMutexLocker lock(m_WriteLock);
        m_Device->write(release, sizeof release);
    }
    m_ErrorCount = 0;
}
