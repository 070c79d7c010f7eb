#include "devicefixture.h"
#include "devicethread.h"
#include "usblink.h"
#include "usblistenthread.h"

#include <QElapsedTimer>
#include <QMutexLocker>
#include <QSignalSpy>

namespace
{

// A reader on one scripted device, collecting what it hands on.
class Reader : public DeviceFixture
{
protected:
    void SetUp() override
    {
        DeviceFixture::SetUp();
        fakeusb::addDevice(tablet("tab", 0x0B40, 1));
        m_Handle = usbLink().openHid(fakeusb::hidPath("tab", 2));
        m_Thread = std::make_unique<DeviceThread>(m_Handle.get(), &m_WriteLock);
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
        m_Thread->requestInterruption();
        m_Thread->wait();
        DeviceFixture::TearDown();
    }
    size_t received()
    {
        QMutexLocker lock(&m_Mutex);
        return m_Received.size();
    }

    std::unique_ptr<HidDevice> m_Handle;
    QMutex m_WriteLock;
    std::unique_ptr<DeviceThread> m_Thread;
    QMutex m_Mutex;
    std::vector<Bytes> m_Received;
};

TEST_F(Reader, HandsOnInputAndReplyReportsOnly)
{
    m_Thread->start();
    for (const Bytes &report : {Bytes{0x01, 0xAA}, Bytes{0x02, 0xA0, 0x01, 0x02}, Bytes{0x06, 0x01},
                                Bytes{0x04}, Bytes{0x03, 0x6E, 0x40}})
        fakeusb::queueReport("tab", report);
    ASSERT_TRUE(waitFor([this] { return received() >= 2; }));
    QMutexLocker lock(&m_Mutex);
    EXPECT_EQ(m_Received, (std::vector<Bytes>{{0x02, 0xA0, 0x01, 0x02}, {0x03, 0x6E, 0x40}}))
        << "each with the read's length";
}

TEST_F(Reader, TheTwoThousandFiveHundredthFailureEndsIt)
{
    QSignalSpy errors(m_Thread.get(), &DeviceThread::HidOperatorError);
    for (int i = 1; i < DeviceThread::kErrorLimit; ++i)
        fakeusb::queueReport("tab", {});
    fakeusb::queueReport("tab", {0x02, 0x01});
    m_Thread->start();
    ASSERT_TRUE(waitFor([this] { return received() == 1; })) << "2499 failures are survived";
    EXPECT_TRUE(m_Thread->isRunning());
    EXPECT_EQ(m_Thread->errorCount(), DeviceThread::kErrorLimit - 1)
        << "a good read does not reset the count";
    fakeusb::queueReport("tab", {});
    ASSERT_TRUE(m_Thread->wait(5000));
    ASSERT_EQ(errors.count(), 1);
    EXPECT_EQ(errors.at(0).at(0).toInt(), -1);
}

TEST_F(Reader, ReleaseZeroesTheCountAndSendsTheModeBack)
{
    for (int i = 0; i < 10; ++i)
        fakeusb::queueReport("tab", {});
    m_Thread->start();
    ASSERT_TRUE(waitFor([this] { return m_Thread->errorCount() >= 10; }));
    m_Thread->requestInterruption();
    m_Thread->LinuxRelease();
    EXPECT_EQ(m_Thread->errorCount(), 0);
    const auto writes = fakeusb::writesTo("tab");
    ASSERT_EQ(writes.size(), 1u);
    EXPECT_EQ(writes[0].data, frame(10, {0x02, 0xB0, 0x02}));
}

TEST_F(Reader, AnInterruptionEndsItWithinTheReadTimeOut)
{
    QSignalSpy errors(m_Thread.get(), &DeviceThread::HidOperatorError);
    m_Thread->start();
    QThread::msleep(30);
    QElapsedTimer timer;
    timer.start();
    m_Thread->requestInterruption();
    ASSERT_TRUE(m_Thread->wait(2000));
    EXPECT_LT(timer.elapsed(), 1000) << "bounded by the 100 ms read time-out";
    EXPECT_EQ(errors.count(), 0);
}

TEST_F(DeviceFixture, ListenerExitEndsItBeforeTheEventTimeOut)
{
    UsbListenThread listener;
    listener.start();
    QThread::msleep(30);
    QElapsedTimer timer;
    timer.start();
    listener.Exit();
    ASSERT_TRUE(listener.wait(2000));
    EXPECT_LT(timer.elapsed(), UsbListenThread::kEventTimeoutUs / 1000 / 2)
        << "quitting must not wait out the event time-out";
}

} // namespace
