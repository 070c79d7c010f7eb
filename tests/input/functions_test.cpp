#include "actionids.h"
#include "uinputfixture.h"

#include <chrono>
#include <regex>

namespace
{

constexpr uint8_t kTouching = 0xA1;

std::vector<Ev> button(int code, int pressed)
{
    return {
        {EV_KEY, BTN_TOOL_PEN, 1}, {EV_KEY, static_cast<uint16_t>(code), pressed}, {EV_SYN, 0, 0}};
}

// Each key change with its own report.
std::vector<Ev> keys(const std::vector<std::pair<int, int>> &changes)
{
    std::vector<Ev> result;
    for (const auto &[code, value] : changes) {
        result.push_back({EV_KEY, static_cast<uint16_t>(code), value});
        result.push_back({EV_SYN, SYN_REPORT, 0});
    }
    return result;
}

class MouseFunctions : public UinputTest
{
protected:
    void SetUp() override
    {
        UinputTest::SetUp();
        initDevices();
    }
};

// Ids 1 to 3 go to the pen at first, press and release each with its own time.
TEST_F(MouseFunctions, ButtonsGoToThePenAtFirst)
{
    const std::pair<int, std::vector<int>> cases[] = {
        {kMouseLeftClick, {BTN_LEFT}},
        {kMouseRightClick, {BTN_RIGHT}},
        {kMouseMiddleClick, {BTN_MIDDLE, BTN_STYLUS}}};
    for (const auto &[id, codes] : cases) {
        const size_t skip = bytes(kPenNode).size();
        m_input->DoMouseFunc(id, true, false);
        m_input->DoMouseFunc(id, false, false);
        std::vector<Ev> expected;
        for (int pressed : {1, 0}) {
            expected.push_back({EV_KEY, BTN_TOOL_PEN, 1});
            for (int code : codes)
                expected.push_back({EV_KEY, static_cast<uint16_t>(code), pressed});
            expected.push_back({EV_SYN, 0, 0});
        }
        EXPECT_EQ(events(kPenNode, skip), expected) << id;
        std::vector<input_event> press = rawEvents(kPenNode, skip);
        press.resize(codes.size() + 2);
        EXPECT_TRUE(sameTime(press)) << id;
        EXPECT_NE(press.front().input_event_sec, 0);
    }
    EXPECT_EQ(bytes(kMouseNode), "");
    const std::vector<LogLine> lines = logs();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], (LogLine{QtInfoMsg, "DoMouseFunc 1 true"}));
    EXPECT_EQ(lines[1], (LogLine{QtInfoMsg, "DoMouseFunc 2 true"})) << "the left button logs once";
}

TEST_F(MouseFunctions, RightButtonLogsItsStateAndTime)
{
    m_input->DoMouseFunc(kMouseRightClick, true, false);
    m_input->DoMouseFunc(kMouseRightClick, false, false);
    const std::vector<LogLine> lines = logs();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], (LogLine{QtInfoMsg, "DoMouseFunc 2 true"}));
    EXPECT_EQ(lines[1].type, QtDebugMsg);
    EXPECT_TRUE(
        std::regex_match(lines[1].text, std::regex("BTN_RIGHT true \\d\\d:\\d\\d:\\d\\d\\d")))
        << lines[1].text;
    EXPECT_EQ(lines[2].type, QtDebugMsg);
    EXPECT_TRUE(
        std::regex_match(lines[2].text, std::regex("BTN_RIGHT false \\d\\d:\\d\\d:\\d\\d\\d")))
        << lines[2].text;
}

// After a mouse frame the buttons go to the mouse until a pen frame, not an eraser frame,
// takes them back.
TEST_F(MouseFunctions, ButtonsFollowTheLastFrame)
{
    struct Case {
        const char *name;
        int frame; // 0: none, 1: eraser, 2: pen
        int id;
        int node;
        std::vector<Ev> out;
    };
    const Case cases[] = {
        {"mouse", 0, kMouseLeftClick, kMouseNode, button(BTN_LEFT, 1)},
        {"eraser", 1, kMouseRightClick, kMouseNode, button(BTN_RIGHT, 1)},
        {"pen", 2, kMouseLeftClick, kPenNode, button(BTN_LEFT, 1)},
        {"double click", 0, kMouseDoubleClick, kMouseNode,
         keys({{BTN_LEFT, 1}, {BTN_LEFT, 0}, {BTN_LEFT, 1}, {BTN_LEFT, 0}})},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        m_input->UpdateRelMouse(0, 0, 0);
        if (c.frame)
            m_input->UpdateDigit(kTouching, 1, 1, 1, 0, 0, c.frame == 1);
        const size_t pen = bytes(kPenNode).size();
        const size_t mouse = bytes(kMouseNode).size();
        m_input->DoMouseFunc(c.id, true, false);
        EXPECT_EQ(events(c.node, c.node == kPenNode ? pen : mouse), c.out);
        const int other = c.node == kPenNode ? kMouseNode : kPenNode;
        EXPECT_EQ(bytes(other).size(), other == kPenNode ? pen : mouse);
    }
}

TEST_F(MouseFunctions, DoubleClickWithZeroTimesAndPauses)
{
    const auto start = std::chrono::steady_clock::now();
    m_input->DoMouseFunc(kMouseDoubleClick, true, false);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(elapsed, std::chrono::milliseconds(60));
    EXPECT_EQ(events(kPenNode), keys({{BTN_LEFT, 1}, {BTN_LEFT, 0}, {BTN_LEFT, 1}, {BTN_LEFT, 0}}));
    for (const input_event &event : rawEvents(kPenNode)) {
        EXPECT_EQ(event.input_event_sec, 0);
        EXPECT_EQ(event.input_event_usec, 0);
    }
}

TEST_F(MouseFunctions, WheelStepsAlwaysGoToTheMouse)
{
    m_input->DoMouseFunc(kMouseWheelUp, true, false);
    m_input->DoMouseFunc(kMouseWheelDown, true, false);
    m_input->DoMouseFunc(kMouseWheelUp, true, true);
    m_input->DoMouseFunc(kMouseWheelDown, true, true);
    EXPECT_EQ(events(kMouseNode), (std::vector<Ev>{{EV_REL, REL_WHEEL, 1},
                                                   {EV_SYN, 0, 0},
                                                   {EV_REL, REL_WHEEL, -1},
                                                   {EV_SYN, 0, 0},
                                                   {EV_REL, REL_WHEEL, 0},
                                                   {EV_SYN, 0, 0},
                                                   {EV_REL, REL_WHEEL, 0},
                                                   {EV_SYN, 0, 0}}));
    EXPECT_EQ(bytes(kPenNode), "");
    EXPECT_EQ(m_input->lastDevice(), 0);
}

TEST_F(MouseFunctions, UnknownIdsAndReleasesOfClicksAndStepsWriteNothing)
{
    for (int id : {0, 7, -1, 206}) {
        m_input->DoMouseFunc(id, true, false);
        m_input->DoMouseFunc(id, false, false);
    }
    clearLogs();
    for (int id = kMouseDoubleClick; id <= kMouseWheelDown; ++id) {
        m_input->DoMouseFunc(id, false, false);
        m_input->DoMouseFunc(id, false, true);
    }
    EXPECT_TRUE(logs().empty());
    EXPECT_EQ(bytes(kPenNode), "");
    EXPECT_EQ(bytes(kMouseNode), "");
    EXPECT_EQ(bytes(kEraserNode), "");
}

using Libraries = MouseFunctions;

TEST_F(Libraries, ActionLibraryKeys)
{
    const std::vector<std::pair<int, std::vector<int>>> table = {
        {1, {56}}, {2, {57}},     {3, {131}},    {4, {182}},    {5, {48}},
        {6, {18}}, {7, {29, 78}}, {8, {29, 12}}, {9, {29, 46}}, {10, {29, 47}},
    };
    for (const auto &[id, codes] : table) {
        const size_t skip = bytes(kMouseNode).size();
        m_input->ActionLibrary(id, true);
        m_input->ActionLibrary(id, false);
        std::vector<std::pair<int, int>> changes;
        for (int code : codes)
            changes.push_back({code, 1});
        for (int code : codes)
            changes.push_back({code, 0});
        EXPECT_EQ(events(kMouseNode, skip), keys(changes)) << "id " << id;
    }
    const size_t before = bytes(kMouseNode).size();
    for (int id : {0, 11, -1, 100})
        m_input->ActionLibrary(id, true);
    EXPECT_EQ(bytes(kMouseNode).size(), before);
}

TEST_F(Libraries, RingActionLibraryTapsByDirection)
{
    struct Case {
        int id;
        bool up;
        std::vector<std::pair<int, int>> changes;
    };
    const std::vector<Case> cases = {
        {0, true, {{12, 1}, {12, 0}}},
        {0, false, {{13, 1}, {13, 0}}},
        {1, true, {{29, 1}, {12, 1}, {29, 0}, {12, 0}}},
        {1, false, {{29, 1}, {13, 1}, {29, 0}, {13, 0}}},
        {2, true, {{109, 1}, {109, 0}}},
        {2, false, {{104, 1}, {104, 0}}},
        {3, true, {{29, 1}, {106, 1}, {29, 0}, {106, 0}}},
        {3, false, {{29, 1}, {105, 1}, {29, 0}, {105, 0}}},
        {4, true, {{29, 1}, {108, 1}, {29, 0}, {108, 0}}},
        {4, false, {{29, 1}, {103, 1}, {29, 0}, {103, 0}}},
    };
    for (const Case &c : cases) {
        const size_t skip = bytes(kMouseNode).size();
        m_input->RingActionLibrary(c.id, c.up);
        EXPECT_EQ(events(kMouseNode, skip), keys(c.changes)) << "id " << c.id << " up " << c.up;
    }
    const size_t before = bytes(kMouseNode).size();
    for (int id : {-1, 5, 10}) {
        m_input->RingActionLibrary(id, true);
        m_input->RingActionLibrary(id, false);
    }
    EXPECT_EQ(bytes(kMouseNode).size(), before);
}

} // namespace
