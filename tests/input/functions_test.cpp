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

TEST_F(MouseFunctions, LeftButtonGoesToThePenAtFirst)
{
    m_input->DoMouseFunc(1, true, false);
    m_input->DoMouseFunc(1, false, false);
    std::vector<Ev> expected = button(BTN_LEFT, 1);
    const std::vector<Ev> release = button(BTN_LEFT, 0);
    expected.insert(expected.end(), release.begin(), release.end());
    EXPECT_EQ(events(kPenNode), expected);
    std::vector<input_event> press = rawEvents(kPenNode);
    press.resize(3);
    EXPECT_TRUE(sameTime(press));
    EXPECT_NE(press.front().input_event_sec, 0);
    EXPECT_EQ(bytes(kMouseNode), "");
    EXPECT_EQ(logs(), (std::vector<LogLine>{{QtInfoMsg, "DoMouseFunc 1 true"}}));
}

TEST_F(MouseFunctions, RightButtonLogsItsStateAndTime)
{
    m_input->DoMouseFunc(2, true, false);
    m_input->DoMouseFunc(2, false, false);
    std::vector<Ev> expected = button(BTN_RIGHT, 1);
    const std::vector<Ev> release = button(BTN_RIGHT, 0);
    expected.insert(expected.end(), release.begin(), release.end());
    EXPECT_EQ(events(kPenNode), expected);
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

TEST_F(MouseFunctions, MiddleButtonAlsoPressesTheStylusButton)
{
    m_input->DoMouseFunc(3, true, false);
    m_input->DoMouseFunc(3, false, false);
    EXPECT_EQ(events(kPenNode), (std::vector<Ev>{{EV_KEY, BTN_TOOL_PEN, 1},
                                                 {EV_KEY, BTN_MIDDLE, 1},
                                                 {EV_KEY, BTN_STYLUS, 1},
                                                 {EV_SYN, 0, 0},
                                                 {EV_KEY, BTN_TOOL_PEN, 1},
                                                 {EV_KEY, BTN_MIDDLE, 0},
                                                 {EV_KEY, BTN_STYLUS, 0},
                                                 {EV_SYN, 0, 0}}));
    std::vector<input_event> press = rawEvents(kPenNode);
    press.resize(4);
    EXPECT_TRUE(sameTime(press));
}

TEST_F(MouseFunctions, ButtonsFollowTheMouseInMouseMode)
{
    m_input->UpdateRelMouse(0, 0, 0);
    const size_t skip = bytes(kMouseNode).size();
    m_input->DoMouseFunc(1, true, false);
    EXPECT_EQ(events(kMouseNode, skip), button(BTN_LEFT, 1));
    EXPECT_EQ(bytes(kPenNode), "");
}

TEST_F(MouseFunctions, EraserFramesDoNotTakeButtonsBackFromTheMouse)
{
    m_input->UpdateRelMouse(0, 0, 0);
    m_input->UpdateDigit(kTouching, 1, 1, 1, 0, 0, true);
    const size_t skip = bytes(kMouseNode).size();
    m_input->DoMouseFunc(2, true, false);
    EXPECT_EQ(events(kMouseNode, skip), button(BTN_RIGHT, 1));
    EXPECT_EQ(bytes(kPenNode), "");
}

TEST_F(MouseFunctions, PenFrameTakesButtonsBackToThePen)
{
    m_input->UpdateRelMouse(0, 0, 0);
    m_input->UpdateDigit(kTouching, 1, 1, 1, 0, 0, false);
    const size_t skip = bytes(kPenNode).size();
    const size_t mouseBytes = bytes(kMouseNode).size();
    m_input->DoMouseFunc(1, true, false);
    EXPECT_EQ(events(kPenNode, skip), button(BTN_LEFT, 1));
    EXPECT_EQ(bytes(kMouseNode).size(), mouseBytes);
}

TEST_F(MouseFunctions, DoubleClickWithZeroTimesAndPauses)
{
    const auto start = std::chrono::steady_clock::now();
    m_input->DoMouseFunc(4, true, false);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(elapsed, std::chrono::milliseconds(60));
    EXPECT_EQ(events(kPenNode), keys({{BTN_LEFT, 1}, {BTN_LEFT, 0}, {BTN_LEFT, 1}, {BTN_LEFT, 0}}));
    for (const input_event &event : rawEvents(kPenNode)) {
        EXPECT_EQ(event.input_event_sec, 0);
        EXPECT_EQ(event.input_event_usec, 0);
    }
}

TEST_F(MouseFunctions, DoubleClickGoesToTheMouseInMouseMode)
{
    m_input->UpdateRelMouse(0, 0, 0);
    const size_t skip = bytes(kMouseNode).size();
    m_input->DoMouseFunc(4, true, false);
    EXPECT_EQ(events(kMouseNode, skip),
              keys({{BTN_LEFT, 1}, {BTN_LEFT, 0}, {BTN_LEFT, 1}, {BTN_LEFT, 0}}));
}

TEST_F(MouseFunctions, ReleaseOfDoubleClickAndWheelWritesNothing)
{
    for (int id = 4; id <= 6; ++id) {
        m_input->DoMouseFunc(id, false, false);
        m_input->DoMouseFunc(id, false, true);
    }
    EXPECT_EQ(bytes(kPenNode), "");
    EXPECT_EQ(bytes(kMouseNode), "");
    EXPECT_TRUE(logs().empty());
}

TEST_F(MouseFunctions, WheelStepsAlwaysGoToTheMouse)
{
    m_input->DoMouseFunc(5, true, false);
    m_input->DoMouseFunc(6, true, false);
    m_input->DoMouseFunc(5, true, true);
    m_input->DoMouseFunc(6, true, true);
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

TEST_F(MouseFunctions, UnknownIdsWriteNothing)
{
    for (int id : {0, 7, -1, 206}) {
        m_input->DoMouseFunc(id, true, false);
        m_input->DoMouseFunc(id, false, false);
    }
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
}

TEST_F(Libraries, ActionLibraryIgnoresOtherIds)
{
    for (int id : {0, 11, -1, 100})
        m_input->ActionLibrary(id, true);
    EXPECT_EQ(bytes(kMouseNode), "");
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
}

TEST_F(Libraries, RingActionLibraryIgnoresOtherIds)
{
    for (int id : {-1, 5, 10}) {
        m_input->RingActionLibrary(id, true);
        m_input->RingActionLibrary(id, false);
    }
    EXPECT_EQ(bytes(kMouseNode), "");
}

} // namespace
