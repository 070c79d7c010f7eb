#include "actionmessages.h"
#include "cglobaldata.h"
#include "ctablet.h"
#include "devicecommands.h"
#include "windowfixture.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace
{

// Records the commands the window sends instead of writing them to a device.
class RecordingTablet : public CTablet
{
public:
    void SentCmd(int command, int p1, int p2) override { m_Sent.push_back({command, p1, p2}); }
    std::vector<std::array<int, 3>> m_Sent;
};

class ActionMessages : public WindowFixture
{
protected:
    void SetUp() override
    {
        WindowFixture::SetUp();
        CGlobalData::TabletArray[2] = &m_Tablet;
    }
    void TearDown() override
    {
        CGlobalData::TabletArray[2] = nullptr;
        WindowFixture::TearDown();
    }

    void battery(int value, int chargeState)
    {
        m_Tablet.m_BatteryValue = value;
        m_Window->ReceivActionMsg(2, kMsgBattery, chargeState);
    }

    RecordingTablet m_Tablet;
};

TEST_F(ActionMessages, LowBatteryIsNotedOncePerFallAndReArmed)
{
    m_Window->InitSystemTray();
    struct Step {
        int value;
        int chargeState;
        int noted;
    };
    // 20 is low, 21 is not; charging re-arms at any value.
    const Step steps[] = {{50, 0, 0}, {20, 0, 1}, {20, 0, 1}, {5, 0, 1},
                          {21, 0, 0}, {20, 0, 1}, {10, 1, 0}, {10, 0, 1}};
    for (const Step &step : steps) {
        battery(step.value, step.chargeState);
        EXPECT_EQ(m_Tablet.m_LowBatteryNoted, step.noted)
            << "value " << step.value << " charge " << step.chargeState;
    }
}

TEST_F(ActionMessages, NoTrayIconNoWarning)
{
    battery(3, 0);
    EXPECT_EQ(m_Tablet.m_LowBatteryNoted, 0);
}

TEST_F(ActionMessages, MessagesForAnEmptySlotAreDropped)
{
    m_Tablet.m_TabletXMLData->CommonAPP.Ring[1].type = 1;
    m_Window->ReceivActionMsg(3, kMsgWirelessConnected, 0);
    m_Window->ReceivActionMsg(7, kMsgWirelessConnected, 0);
    m_Window->ReceivActionMsg(-1, kMsgWirelessConnected, 0);
    EXPECT_TRUE(m_Tablet.m_Sent.empty());
}

TEST_F(ActionMessages, TouchStripRestoreFollowsTheStripMode)
{
    stTablet_XMLData &settings = *m_Tablet.m_TabletXMLData;
    settings.Orientation = 3;
    settings.CommonAPP.Ring[1].type = 1;
    settings.CommonAPP.Ring[1].mode = 0;
    m_Window->ReceivActionMsg(2, kMsgWirelessConnected, 0);
    settings.CommonAPP.Ring[1].mode = 1;
    m_Window->ReceivActionMsg(2, kMsgWirelessConnected, 0);
    settings.CommonAPP.Ring[1].type = 0;
    m_Window->ReceivActionMsg(2, kMsgWirelessConnected, 0);

    const std::vector<std::array<int, 3>> expected = {{kCmdTouchStrip, kStripWheel, 0},
                                                      {kCmdTouchStrip, kStripTouch, 3}};
    EXPECT_EQ(m_Tablet.m_Sent, expected);
}

} // namespace
