#include "devicefixture.h"
#include "devicethread.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QMutexLocker>
#include <QSignalSpy>
#include <hidapi.h>

namespace
{

using fakeusb::Bytes;

// A reader on one scripted device, collecting what it hands on.
class Reader : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        fakeusb::addDevice(tablet("tab", 0x0B40, 1));
        m_Handle = hid_open_path(fakeusb::hidPath("tab", 2).c_str());
        ASSERT_NE(m_Handle, nullptr);
        m_Thread = std::make_unique<DeviceThread>(m_Handle, &m_WriteLock);
        QObject::connect(
            m_Thread.get(), &DeviceThread::MySentTabletPackets, m_Thread.get(),
            [this](quint8 *packet, int length) {
                QMutexLocker lock(&m_Mutex);
                m_Received.emplace_back(packet, packet + length);
            },
            Qt::DirectConnection);
    }

    void TearDown() override
    {
        stop();
        hid_close(m_Handle);
        DeviceFixture::TearDown();
    }

    void stop()
    {
        m_Thread->requestInterruption();
        m_Thread->wait();
    }

    std::vector<Bytes> received()
    {
        QMutexLocker lock(&m_Mutex);
        return m_Received;
    }

    bool waitForReports(size_t count)
    {
        QElapsedTimer timer;
        timer.start();
        while (received().size() < count && timer.elapsed() < 5000)
            QThread::msleep(2);
        return received().size() >= count;
    }

    hid_device *m_Handle = nullptr;
    QMutex m_WriteLock;
    std::unique_ptr<DeviceThread> m_Thread;
    QMutex m_Mutex;
    std::vector<Bytes> m_Received;
};

TEST_F(Reader, HandsOnInputAndReplyReportsOnly)
{
    m_Thread->start();
    fakeusb::queueReport("tab", {0x01, 0xAA});
    fakeusb::queueReport("tab", {0x02, 0xA0, 0x01, 0x02});
    fakeusb::queueReport("tab", {0x06, 0x01});
    fakeusb::queueReport("tab", {0x04});
    fakeusb::queueReport("tab", {0x03, 0x6E, 0x40});
    ASSERT_TRUE(waitForReports(2));
    stop();
    const auto reports = received();
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0], (Bytes{0x02, 0xA0, 0x01, 0x02})) << "the read's length is kept";
    EXPECT_EQ(reports[1], (Bytes{0x03, 0x6E, 0x40}));
}

TEST_F(Reader, TheTwoThousandFiveHundredthFailureEndsIt)
{
    QSignalSpy errors(m_Thread.get(), &DeviceThread::HidOperatorError);
    fakeusb::queueReadErrors("tab", DeviceThread::kErrorLimit - 1);
    fakeusb::queueReport("tab", {0x02, 0x01});
    m_Thread->start();
    ASSERT_TRUE(waitForReports(1)) << "2499 failures are survived";
    EXPECT_TRUE(m_Thread->isRunning());
    EXPECT_EQ(m_Thread->errorCount(), DeviceThread::kErrorLimit - 1)
        << "a good read does not reset the count";

    fakeusb::queueReadErrors("tab", 1);
    ASSERT_TRUE(m_Thread->wait(5000));
    ASSERT_EQ(errors.count(), 1);
    EXPECT_EQ(errors.at(0).at(0).toInt(), -1);
}

TEST_F(Reader, ReleaseZeroesTheCountAndSendsTheModeBack)
{
    fakeusb::queueReadErrors("tab", 10);
    m_Thread->start();
    QElapsedTimer timer;
    timer.start();
    while (m_Thread->errorCount() < 10 && timer.elapsed() < 5000)
        QThread::msleep(2);
    m_Thread->requestInterruption();
    m_Thread->LinuxRelease();
    EXPECT_EQ(m_Thread->errorCount(), 0);
    const auto writes = fakeusb::writesTo("tab");
    ASSERT_EQ(writes.size(), 1u);
    EXPECT_EQ(writes[0].data, (Bytes{0x02, 0xB0, 0x02, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(Reader, AnInterruptionEndsItWithinTheReadTimeOut)
{
    m_Thread->start();
    QThread::msleep(30);
    QElapsedTimer timer;
    timer.start();
    m_Thread->requestInterruption();
    ASSERT_TRUE(m_Thread->wait(2000));
    EXPECT_LT(timer.elapsed(), 1000) << "bounded by the 100 ms read time-out";
}

TEST_F(Reader, AnUnpluggedDeviceEndsItByErrors)
{
    QSignalSpy errors(m_Thread.get(), &DeviceThread::HidOperatorError);
    m_Thread->start();
    fakeusb::unplug("tab");
    ASSERT_TRUE(m_Thread->wait(10000));
    EXPECT_EQ(errors.count(), 1);
}

} // namespace
