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

// A hovering pen in the middle of a 10 x 6 inch tablet mapped to one 1920 x 1080 screen.
class QueuedStages : public ::testing::Test
{
protected:
    void SetUp() override
    {
        qRegisterMetaType<CTablet *>();
        CGlobalData::ScreenArray[0] = QRect(0, 0, 1920, 1080);
        CGlobalData::ScreenArray[1] = QRect(0, 0, 1920, 1080);
        _DEVICE_ATTRIBUTES &attributes = m_Tablet.m_DeviceAttributes;
        attributes.DeviceType = 1;
        attributes.MaxX = 50800;
        attributes.MaxY = 30480;
        attributes.LPI = 5080;
        attributes.Width = 1000;
        attributes.Height = 600;
        attributes.MaxPressure = 8191;
        stTablet_XMLData &settings = *m_Tablet.m_TabletXMLData;
        settings.ScreenId = 1;
        settings.SW = 1920;
        settings.SH = 1080;
        settings.TW = 1000;
        settings.TH = 600;
        settings.fKX = settings.fKY = settings.fXLC = settings.fYLC = 1.0f;
        stPenConfig &pen = settings.CommonAPP.Pen[0];
        pen.Speed = 5;
        pen.P1X = pen.P1Y = 0.5f;
        pen.P2 = 1.0f;
        m_Tablet.m_Index = 1;
        CGlobalData::TabletArray[1] = &m_Tablet;

        m_Report = {};
        m_Report.tabletIndex = 1;
        m_Report.eventFlags = 1;
        m_Report.x = 25400;
        m_Report.y = 15240;
        m_Report.pressure = 4096;
        m_Report.penStatus = 0xA1;
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

    static void expectSame(const _MultiData &actual, const _MultiData &expected)
    {
        EXPECT_EQ(actual.flags, expected.flags);
        EXPECT_EQ(actual.digitX, expected.digitX);
        EXPECT_EQ(actual.digitY, expected.digitY);
        EXPECT_EQ(actual.pressure, expected.pressure);
        EXPECT_DOUBLE_EQ(actual.screenPosX, expected.screenPosX);
        EXPECT_DOUBLE_EQ(actual.screenPosY, expected.screenPosY);
        EXPECT_EQ(actual.tiltX, expected.tiltX);
        EXPECT_EQ(actual.tiltY, expected.tiltY);
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
    worker.stop();
    ASSERT_EQ(results.count(), 1);
    EXPECT_EQ(results.at(0).at(0).value<CTablet *>(), &m_Tablet);
    expectSame(results.at(0).at(1).value<MultiData>(), expected);
    EXPECT_TRUE(CGlobalData::QueueTabletData.isEmpty());
}

TEST_F(QueuedStages, WorkerStopsWhileWaiting)
{
    DataAction worker(m_Slots);
    worker.start();
    QTest::qWait(20);
    worker.stop();
    EXPECT_TRUE(worker.isFinished());
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
    expectSame(results.at(0).at(1).value<MultiData>(), expected);

    TabletDataEX elsewhere = m_Report;
    elsewhere.tabletIndex = 4;
    receiver.ReceiveTabletDataEX(elsewhere);
    EXPECT_EQ(results.count(), 1);
    CGlobalData::MyInputDriver.CloseUinput();
    fakeuinput::stop();
}

} // namespace
