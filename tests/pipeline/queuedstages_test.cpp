#include "caction.h"
#include "cglobaldata.h"
#include "creceivetabletdata.h"
#include "ctablet.h"
#include "dataaction.h"
#include "fakeuinput.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>
#include <gtest/gtest.h>

namespace
{

auto fields(const _MultiData &d)
{
    return std::tuple(d.flags, d.digitX, d.digitY, d.pressure, d.screenPosX, d.screenPosY, d.tiltX,
                      d.tiltY);
}

// A hovering pen in the middle of a 10 x 6 inch tablet mapped to one 1920 x 1080 screen.
class QueuedStages : public ::testing::Test
{
protected:
    void SetUp() override
    {
        qRegisterMetaType<CTablet *>();
        CGlobalData::ScreenArray[0] = CGlobalData::ScreenArray[1] = QRect(0, 0, 1920, 1080);
        _DEVICE_ATTRIBUTES &device = m_Tablet.m_DeviceAttributes;
        std::tie(device.DeviceType, device.MaxX, device.MaxY, device.LPI) =
            std::tuple(1, 50800, 30480, 5080);
        std::tie(device.Width, device.Height, device.MaxPressure) = std::tuple(1000, 600, 8191);
        stTablet_XMLData &settings = *m_Tablet.m_TabletXMLData;
        std::tie(settings.ScreenId, settings.SW, settings.SH, settings.TW, settings.TH) =
            std::tuple(1, 1920, 1080, 1000, 600);
        settings.fKX = settings.fKY = settings.fXLC = settings.fYLC = 1.0f;
        stPenConfig &pen = settings.CommonAPP.Pen[0];
        std::tie(pen.Speed, pen.P1X, pen.P1Y, pen.P2) = std::tuple(5, 0.5f, 0.5f, 1.0f);
        m_Tablet.m_Index = 1;
        CGlobalData::TabletArray[1] = &m_Tablet;
        std::tie(m_Report.tabletIndex, m_Report.eventFlags, m_Report.x, m_Report.y) =
            std::tuple(1, 1, 25400, 15240);
        std::tie(m_Report.pressure, m_Report.penStatus) = std::tuple(4096, 0xA1);
    }
    void TearDown() override { CGlobalData::TabletArray[1] = nullptr; }

    _MultiData direct()
    {
        TabletDataEX report = m_Report;
        _DEVICE_ATTRIBUTES attributes = m_Tablet.m_DeviceAttributes;
        m_Tablet.m_Action->setDeviceIndex(1);
        return m_Tablet.m_Action->ActionTabletData(report, attributes, m_Tablet.m_TabletXMLData,
                                                   m_Tablet.m_AppConfigs);
    }

    CTablet m_Tablet;
    CGlobalTabletSlots m_Slots;
    TabletDataEX m_Report{};
};

TEST_F(QueuedStages, WorkerGivesTheResultOfTheDirectRoute)
{
    const _MultiData expected = direct();
    DataAction worker(m_Slots);
    QSignalSpy results(&worker, &DataAction::SentMultiData);
    worker.start();
    {
        QMutexLocker lock(&CGlobalData::DataMutex);
        CGlobalData::QueueTabletData.enqueue(m_Report);
    }
    // The worker may not be waiting yet; wake until it has taken the report.
    for (int tries = 0; results.isEmpty() && tries < 200; ++tries) {
        {
            QMutexLocker lock(&CGlobalData::WaitMutex);
            CGlobalData::WaitCondition.wakeAll();
        }
        results.wait(10);
    }
    worker.stop(); // hangs unless a waiting worker stops
    ASSERT_EQ(results.count(), 1);
    EXPECT_EQ(results.at(0).at(0).value<CTablet *>(), &m_Tablet);
    EXPECT_EQ(fields(results.at(0).at(1).value<MultiData>()), fields(expected));
    EXPECT_TRUE(CGlobalData::QueueTabletData.isEmpty());
}

TEST_F(QueuedStages, ReceiverGivesTheResultOfTheDirectRouteWhileActive)
{
    const _MultiData expected = direct();
    QWidget window;
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));

    // The receiver opens the virtual devices: keep them off the machine running the test.
    QTemporaryDir nodes;
    fakeuinput::start(nodes.path().toStdString());
    CReceiveTabletData receiver(m_Slots);
    EXPECT_TRUE(receiver.inputReady());
    QSignalSpy results(&receiver, &CReceiveTabletData::SentMultiData);
    receiver.ReceiveTabletDataEX(m_Report);
    ASSERT_EQ(results.count(), 1);
    EXPECT_EQ(fields(results.at(0).at(1).value<MultiData>()), fields(expected));

    TabletDataEX elsewhere = m_Report;
    elsewhere.tabletIndex = 4;
    receiver.ReceiveTabletDataEX(elsewhere);
    EXPECT_EQ(results.count(), 1);
    CGlobalData::MyInputDriver.CloseUinput();
    fakeuinput::stop();
}

} // namespace
