#include "uinputfixture.h"

#include <sys/time.h>

namespace
{

constexpr uint8_t kInRange = 0xA0;
constexpr uint8_t kTouching = 0xA1;
constexpr uint8_t kLeave = 0xC0;

std::vector<Ev> penFrame(int tool, int toolValue, int x, int y, int press, int tiltX, int tiltY,
                         int touch)
{
    return {{EV_KEY, static_cast<uint16_t>(tool), toolValue},
            {EV_ABS, ABS_X, x},
            {EV_ABS, ABS_Y, y},
            {EV_ABS, ABS_PRESSURE, press},
            {EV_ABS, ABS_TILT_X, tiltX},
            {EV_ABS, ABS_TILT_Y, tiltY},
            {EV_KEY, BTN_TOUCH, touch},
            {EV_SYN, SYN_REPORT, 0}};
}

std::vector<Ev> concat(std::vector<Ev> first, const std::vector<Ev> &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class Frames : public UinputTest
{
protected:
    void SetUp() override
    {
        UinputTest::SetUp();
        initDevices();
    }

    // Events of one node from the given frame on (frames of eight).
    static std::vector<input_event> penFrameRecords(int node, size_t frame)
    {
        return rawEvents(node, frame * 8 * sizeof(input_event));
    }
};

TEST_F(Frames, HoverFrameGoesToThePenInOneWrite)
{
    timeval before{};
    gettimeofday(&before, nullptr);
    m_input->UpdateDigit(kInRange, 1000, 2000, 0, 5, -7, false);
    EXPECT_EQ(events(kPenNode), penFrame(BTN_TOOL_PEN, 1, 1000, 2000, 0, 5, -7, 0));
    EXPECT_EQ(fakeuinput::writeSizes(kPenNode), std::vector<size_t>{192});
    const std::vector<input_event> records = rawEvents(kPenNode);
    EXPECT_TRUE(sameTime(records));
    EXPECT_GE(records.front().input_event_sec, before.tv_sec);
    EXPECT_EQ(bytes(kMouseNode), "");
    EXPECT_EQ(bytes(kEraserNode), "");
    EXPECT_EQ(m_input->lastDevice(), 0);
}

TEST_F(Frames, TouchFrameCarriesPressureAndTouch)
{
    m_input->UpdateDigit(kTouching, 52324, 29600, 8191, -63, 64, false);
    EXPECT_EQ(events(kPenNode), penFrame(BTN_TOOL_PEN, 1, 52324, 29600, 8191, -63, 64, 1));
}

TEST_F(Frames, FieldsKeepTheirSignedness)
{
    m_input->UpdateDigit(kTouching, 65535, 40000, 65535, -128, 127, false);
    EXPECT_EQ(events(kPenNode), penFrame(BTN_TOOL_PEN, 1, 65535, 40000, 65535, -128, 127, 1));
}

TEST_F(Frames, EraserFrameGoesToTheEraserDevice)
{
    m_input->UpdateDigit(kTouching, 10, 20, 30, 1, 2, true);
    EXPECT_EQ(events(kEraserNode), penFrame(BTN_TOOL_RUBBER, 1, 10, 20, 30, 1, 2, 1));
    EXPECT_EQ(fakeuinput::writeSizes(kEraserNode), std::vector<size_t>{192});
    EXPECT_TRUE(sameTime(rawEvents(kEraserNode)));
    EXPECT_EQ(bytes(kPenNode), "");
}

TEST_F(Frames, EachFrameTakesItsOwnTime)
{
    m_input->UpdateDigit(kTouching, 1, 2, 3, 0, 0, false);
    m_input->UpdateDigit(kTouching, 4, 5, 6, 0, 0, false);
    EXPECT_EQ(events(kPenNode), concat(penFrame(BTN_TOOL_PEN, 1, 1, 2, 3, 0, 0, 1),
                                       penFrame(BTN_TOOL_PEN, 1, 4, 5, 6, 0, 0, 1)));
    EXPECT_EQ(fakeuinput::writeSizes(kPenNode), (std::vector<size_t>{192, 192}));
    std::vector<input_event> first = rawEvents(kPenNode);
    first.resize(8);
    EXPECT_TRUE(sameTime(first));
    EXPECT_TRUE(sameTime(penFrameRecords(kPenNode, 1)));
}

TEST_F(Frames, PenLeavesWithToolZeroAndNoPressure)
{
    m_input->UpdateDigit(kTouching, 100, 200, 300, 3, 4, false);
    m_input->UpdateDigit(kLeave, 110, 210, 5000, 3, 4, false);
    EXPECT_EQ(events(kPenNode), concat(penFrame(BTN_TOOL_PEN, 1, 100, 200, 300, 3, 4, 1),
                                       penFrame(BTN_TOOL_PEN, 0, 110, 210, 0, 3, 4, 0)));
}

TEST_F(Frames, PenLeavesOnThePenWhateverTheEraserFlagSays)
{
    m_input->UpdateDigit(kInRange, 100, 200, 0, 0, 0, false);
    m_input->UpdateDigit(kLeave, 100, 200, 0, 0, 0, true);
    EXPECT_EQ(events(kPenNode), concat(penFrame(BTN_TOOL_PEN, 1, 100, 200, 0, 0, 0, 0),
                                       penFrame(BTN_TOOL_PEN, 0, 100, 200, 0, 0, 0, 0)));
    EXPECT_EQ(bytes(kEraserNode), "");
}

TEST_F(Frames, EraserLeavesOnTheEraserAfterTheFlagTurnedFalse)
{
    m_input->UpdateDigit(kTouching, 7, 8, 900, -1, -2, true);
    m_input->UpdateDigit(kLeave, 7, 8, 900, -1, -2, false);
    EXPECT_EQ(events(kEraserNode), concat(penFrame(BTN_TOOL_RUBBER, 1, 7, 8, 900, -1, -2, 1),
                                          penFrame(BTN_TOOL_RUBBER, 0, 7, 8, 0, -1, -2, 0)));
    EXPECT_EQ(bytes(kPenNode), "");
}

TEST_F(Frames, RepeatedLeaveStaysWithTheToolThatLeft)
{
    m_input->UpdateDigit(kInRange, 1, 1, 0, 0, 0, true);
    m_input->UpdateDigit(kLeave, 1, 1, 0, 0, 0, false);
    m_input->UpdateDigit(kLeave, 2, 2, 0, 0, 0, false);
    EXPECT_EQ(events(kEraserNode), concat(concat(penFrame(BTN_TOOL_RUBBER, 1, 1, 1, 0, 0, 0, 0),
                                                 penFrame(BTN_TOOL_RUBBER, 0, 1, 1, 0, 0, 0, 0)),
                                          penFrame(BTN_TOOL_RUBBER, 0, 2, 2, 0, 0, 0, 0)));
    EXPECT_EQ(bytes(kPenNode), "");
}

TEST_F(Frames, ToolSwitchFollowsTheEraserFlagInRange)
{
    m_input->UpdateDigit(kInRange, 1, 1, 0, 0, 0, true);
    m_input->UpdateDigit(kInRange, 2, 2, 0, 0, 0, false);
    m_input->UpdateDigit(kLeave, 3, 3, 0, 0, 0, true);
    EXPECT_EQ(events(kEraserNode), penFrame(BTN_TOOL_RUBBER, 1, 1, 1, 0, 0, 0, 0));
    EXPECT_EQ(events(kPenNode), concat(penFrame(BTN_TOOL_PEN, 1, 2, 2, 0, 0, 0, 0),
                                       penFrame(BTN_TOOL_PEN, 0, 3, 3, 0, 0, 0, 0)));
}

TEST_F(Frames, StatusZeroWritesNothingAndKeepsTheLastDevice)
{
    m_input->UpdateRelMouse(0, 1, 1);
    m_input->UpdateDigit(0, 100, 200, 300, 1, 2, false);
    m_input->UpdateDigit(0, 100, 200, 300, 1, 2, true);
    EXPECT_EQ(bytes(kPenNode), "");
    EXPECT_EQ(bytes(kEraserNode), "");
    EXPECT_EQ(m_input->lastDevice(), 1);
}

TEST_F(Frames, EraserFramesLeaveTheLastDeviceAlone)
{
    m_input->UpdateRelMouse(0, 1, 1);
    m_input->UpdateDigit(kTouching, 1, 1, 1, 0, 0, true);
    EXPECT_EQ(m_input->lastDevice(), 1);
    m_input->UpdateDigit(kTouching, 1, 1, 1, 0, 0, false);
    EXPECT_EQ(m_input->lastDevice(), 0);
    m_input->UpdateDigit(kTouching, 1, 1, 1, 0, 0, true);
    EXPECT_EQ(m_input->lastDevice(), 0);
}

TEST_F(Frames, RelativeMouseFrame)
{
    m_input->UpdateRelMouse(0x03, -5, 7);
    m_input->UpdateRelMouse(0x02, -32768, 32767);
    EXPECT_EQ(events(kMouseNode), (std::vector<Ev>{{EV_REL, REL_X, -5},
                                                   {EV_REL, REL_Y, 7},
                                                   {EV_KEY, BTN_LEFT, 1},
                                                   {EV_SYN, SYN_REPORT, 0},
                                                   {EV_REL, REL_X, -32768},
                                                   {EV_REL, REL_Y, 32767},
                                                   {EV_KEY, BTN_LEFT, 0},
                                                   {EV_SYN, SYN_REPORT, 0}}));
    std::vector<input_event> first = rawEvents(kMouseNode);
    first.resize(4);
    EXPECT_TRUE(sameTime(first));
    EXPECT_EQ(m_input->lastDevice(), 1);
    EXPECT_EQ(bytes(kPenNode), "");
}

TEST_F(Frames, WheelFrameOnTheGivenDescriptor)
{
    m_input->UpdateWheelRel(m_input->relFd(), -3);
    m_input->UpdateWheelRel(m_input->absFd(), 2);
    m_input->UpdateWheelRel(0, 1);
    const std::vector<input_event> records = rawEvents(kMouseNode);
    EXPECT_TRUE(sameTime(records));
    EXPECT_EQ(events(kMouseNode),
              (std::vector<Ev>{{EV_REL, REL_WHEEL, -3}, {EV_SYN, SYN_REPORT, 0}}));
    EXPECT_EQ(events(kPenNode), (std::vector<Ev>{{EV_REL, REL_WHEEL, 2}, {EV_SYN, SYN_REPORT, 0}}));
    EXPECT_EQ(fakeuinput::strayCalls(), 0);
    EXPECT_EQ(m_input->lastDevice(), 0);
}

TEST_F(Frames, KeyEventCarriesItsOwnReport)
{
    m_input->KeyEvent(30, true);
    m_input->KeyEvent(30, false);
    m_input->KeyEvent(260, true);
    EXPECT_EQ(events(kMouseNode), (std::vector<Ev>{{EV_KEY, 30, 1},
                                                   {EV_SYN, SYN_REPORT, 0},
                                                   {EV_KEY, 30, 0},
                                                   {EV_SYN, SYN_REPORT, 0},
                                                   {EV_KEY, 260, 1},
                                                   {EV_SYN, SYN_REPORT, 0}}));
    std::vector<input_event> first = rawEvents(kMouseNode);
    first.resize(2);
    EXPECT_TRUE(sameTime(first));
    EXPECT_EQ(bytes(kPenNode), "");
    EXPECT_EQ(m_input->lastDevice(), 0);
}

class FramesWithoutEraser : public UinputTest
{
protected:
    void SetUp() override
    {
        UinputTest::SetUp();
        fakeuinput::setOpenFailures(1u << kEraserNode);
        initDevices();
    }
};

// oldCode only follows frames that were written.
TEST_F(FramesWithoutEraser, DroppedEraserFrameKeepsThePenAsTheLeavingTool)
{
    m_input->UpdateDigit(kInRange, 1, 1, 0, 0, 0, false);
    m_input->UpdateDigit(kInRange, 2, 2, 0, 0, 0, true);
    m_input->UpdateDigit(kLeave, 3, 3, 0, 0, 0, true);
    EXPECT_EQ(events(kPenNode), concat(penFrame(BTN_TOOL_PEN, 1, 1, 1, 0, 0, 0, 0),
                                       penFrame(BTN_TOOL_PEN, 0, 3, 3, 0, 0, 0, 0)));
    EXPECT_EQ(fakeuinput::strayCalls(), 0);
}

class FramesWithoutPen : public UinputTest
{
protected:
    void SetUp() override
    {
        UinputTest::SetUp();
        fakeuinput::setOpenFailures(1u << kPenNode);
        initDevices();
    }
};

// A dropped pen frame still names the pen as the last device: its descriptor equals m_absFd.
TEST_F(FramesWithoutPen, DroppedPenFrameStillMarksThePen)
{
    m_input->UpdateRelMouse(0, 1, 1);
    m_input->UpdateDigit(kTouching, 1, 1, 1, 0, 0, false);
    EXPECT_EQ(m_input->lastDevice(), 0);
    EXPECT_EQ(fakeuinput::strayCalls(), 0);
}

} // namespace
