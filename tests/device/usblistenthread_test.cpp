#include "devicefixture.h"
#include "usblistenthread.h"

#include <QElapsedTimer>

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
        << "quitting must not wait out libusb's event time-out";
}
