#include "caction.h"
#include "cglobaldata.h"
#include "deviceattributes.h"
#include "tabletdata.h"
#include "uinputfixture.h"

#include <QRect>
#include <QTime>
#include <algorithm>
#include <cstdlib>
#include <tuple>

// Geometry of every case unless it says otherwise: a tablet of 10000 x 8000 counts at 1000 lpi
// (10 x 8 inches, 10 counts per hundredth), its full area mapped to the right screen
// (1000..1999 x 0..799) of a desktop of two 1000 x 800 screens. So fx = x / 10 + 1000,
// fy = y / 10, digitX = fx * 52324 / 2000 = fx * 26.162 and digitY = fy * 29600 / 800 = fy * 37.
namespace
{

constexpr uint8_t kHover = 0xA0;
constexpr uint8_t kTouch = 0xA1;
constexpr uint8_t kEraserHover = 0xA8;
constexpr uint8_t kEraserTouch = 0xA9;
constexpr uint8_t kLeave = 0xC0;

std::vector<Ev> penFrame(int tool, bool inRange, int x, int y, int press, int tiltX, int tiltY)
{
    return {{EV_KEY, static_cast<uint16_t>(tool), inRange},
            {EV_ABS, ABS_X, x},
            {EV_ABS, ABS_Y, y},
            {EV_ABS, ABS_PRESSURE, press},
            {EV_ABS, ABS_TILT_X, tiltX},
            {EV_ABS, ABS_TILT_Y, tiltY},
            {EV_KEY, BTN_TOUCH, press != 0},
            {EV_SYN, SYN_REPORT, 0}};
}

// Where a frame lands: screen position and virtual position.
struct Mapped {
    double fx, fy;
    int64_t digitX, digitY;
};

void expectMapped(const _MultiData &out, const Mapped &expected)
{
    EXPECT_EQ(out.screenPosX, expected.fx);
    EXPECT_EQ(out.screenPosY, expected.fy);
    EXPECT_EQ(out.digitX, expected.digitX);
    EXPECT_EQ(out.digitY, expected.digitY);
}

class PenMapping : public UinputTest
{
protected:
    void SetUp() override
    {
        UinputTest::SetUp();
        ASSERT_EQ(CGlobalData::MyInputDriver.Init(), 1);
        clearLogs();
        CGlobalData::ScreenArray[0] = QRect(0, 0, 2000, 800);
        CGlobalData::ScreenArray[1] = QRect(0, 0, 1000, 800);
        CGlobalData::ScreenArray[2] = QRect(1000, 0, 1000, 800);
        setDevice(10000, 8000, 1000);
        m_device.MaxPressure = 2047;
        stTablet_XMLData &settings = *m_settings;
        settings.ScreenId = 2;
        settings.SX = settings.SW = settings.TW = 1000;
        settings.SH = settings.TH = 800;
        settings.fKX = settings.fKY = settings.fXLC = settings.fYLC = 1;
        for (stPenConfig &pen : settings.CommonAPP.Pen) {
            pen.Speed = 5;
            pen.P1X = pen.P1Y = 0.5f; // the straight line
            pen.P2 = 1;
        }
    }

    void TearDown() override
    {
        CGlobalData::MyInputDriver.CloseUinput();
        UinputTest::TearDown();
    }

    void setDevice(int64_t maxX, int64_t maxY, int lpi)
    {
        m_device.MaxX = maxX;
        m_device.MaxY = maxY;
        m_device.LPI = lpi;
        m_device.Width = static_cast<int>(maxX * 100 / lpi);
        m_device.Height = static_cast<int>(maxY * 100 / lpi);
    }

    _MultiData feed(uint8_t status, int64_t x, int64_t y, int pressure = 0, int8_t tiltX = 0,
                    int8_t tiltY = 0)
    {
        m_report = {};
        m_report.eventFlags = kEventPen;
        m_report.penStatus = status;
        m_report.x = x;
        m_report.y = y;
        m_report.pressure = pressure;
        m_report.tiltX = static_cast<uint8_t>(tiltX);
        m_report.tiltY = static_cast<uint8_t>(tiltY);
        m_report.penId = m_penId;
        return m_action.ActionTabletData(m_report, m_device, m_settings.get(), m_apps);
    }

    stPenConfig &pen(int id = 0) { return m_settings->CommonAPP.Pen[id]; }

    static std::vector<Ev> lastEvents(int node, size_t count)
    {
        const std::vector<Ev> all = events(node);
        return all.size() < count ? all : std::vector<Ev>(all.end() - count, all.end());
    }

    CAction m_action;
    _DEVICE_ATTRIBUTES m_device{};
    std::unique_ptr<stTablet_XMLData> m_settings = std::make_unique<stTablet_XMLData>();
    QMap<QString, _stAppConfigNode *> m_apps;
    TabletDataEX m_report{};
    uint8_t m_penId = 0;
};

// Orientation 1 turns the axes to 8000 x 10000 counts, the work area to 800 x 1000 hundredths.
// Report (2000, 1000) -> (8000 - 1000, 2000): fx = 1000 * 7000 / 8000 + 1000 = 1875, fy = 800 *
// 2000 / 10000; digitX 49053.75, digitY 5920. After the mapping tilt and report are turned once
// more: tilt (10, 20) -> (-20, 10) -> (-10, -20), report (8000 - 2000, 7000).
TEST_F(PenMapping, RotationTurnsPositionAndTiltTwice)
{
    m_settings->Orientation = 1;
    m_settings->TW = 800;
    m_settings->TH = 1000;
    _MultiData out = feed(kHover, 2000, 1000, 0, 10, 20);
    EXPECT_EQ(std::tuple(out.tiltX, out.tiltY, m_report.x, m_report.y),
              std::tuple(int8_t{-10}, int8_t{-20}, int64_t{6000}, int64_t{7000}));
    EXPECT_EQ(lastEvents(kPenNode, 8), penFrame(BTN_TOOL_PEN, true, 49053, 5920, 0, -10, -20));
    m_settings->DisableSlope = 1;
    out = feed(kHover, 2000, 1000, 0, 10, 20);
    EXPECT_EQ(std::pair(out.tiltX, out.tiltY), std::pair(int8_t{0}, int8_t{0}));
}

// Work area TX 100, TY 100, TW 500, TH 400: counts 1000..5999 x 1000..4999, scaled by 2.
TEST_F(PenMapping, LeavingTheWorkAreaFreezesAndWritesNothing)
{
    m_settings->TX = m_settings->TY = 100;
    m_settings->TW = 500;
    m_settings->TH = 400;
    // (5999, 3000) -> (9998, 4000): fx 1999.8, clamped to the screen's right 1999, digitX
    // 52318.8; fy 400
    _MultiData out = feed(kHover, 5999, 3000);
    EXPECT_EQ(out.screenPosX, 1999);
    const std::vector<Ev> written = events(kPenNode);
    EXPECT_EQ(written, penFrame(BTN_TOOL_PEN, true, 52318, 14800, 0, 0, 0));

    out = feed(kTouch, 6000, 3000, 500);
    EXPECT_EQ(m_report.penStatus, 0);
    EXPECT_EQ(std::pair(out.digitX, out.digitY), std::pair(int64_t{52318}, int64_t{14800}));
    EXPECT_EQ(events(kPenNode), written);

    // Back at (3000, 2000) -> (4000, 2000): fx 1400, digitX 36626.8; fy 200
    feed(kHover, 3000, 2000);
    EXPECT_EQ(lastEvents(kPenNode, 8), penFrame(BTN_TOOL_PEN, true, 36626, 7400, 0, 0, 0));

    // A profile with no width of work area maps nothing at all.
    const std::vector<Ev> before = events(kPenNode);
    m_settings->TW = 0;
    out = feed(kHover, 3000, 2000);
    EXPECT_EQ(out.digitX, 0);
    EXPECT_EQ(events(kPenNode), before);
}

// On a pen display (1000, 2000) is calibrated to (-4000 / 1.25 + 3750, -2000 / 2 + 5000) =
// (550, 4000): digitX 1055 * 26.162 = 27600.9. A tablet maps it as it is: digitX 28778.2.
TEST_F(PenMapping, OnlyPenDisplaysAreCalibrated)
{
    m_settings->fKX = 1.25f;
    m_settings->fKY = 2;
    m_settings->fXLC = 0.75f;
    m_settings->fYLC = 1.25f;
    m_device.DeviceType = 2;
    expectMapped(feed(kHover, 1000, 2000), {1055, 400, 27600, 14800});
    m_device.DeviceType = 1;
    expectMapped(feed(kHover, 1000, 2000), {1100, 200, 28778, 7400});
}

// The first frame of a stroke only sets the starting point; a leave ends the stroke. Speed 5:
// 35 counts a step.
TEST_F(PenMapping, MouseModeStrokesStepTheMouse)
{
    pen().bRelativeCoords = 1;
    for (int stroke = 0; stroke < 2; ++stroke) {
        SCOPED_TRACE(stroke);
        feed(kLeave, 1000, 1000);
        clearLogs();
        feed(kHover, 1000, 1000);
        EXPECT_EQ(logs(), (std::vector<LogLine>{{QtDebugMsg, "penStatus == 0)  第一次进入"},
                                                {QtDebugMsg, "Relative: 0 0"}}));
        feed(kHover, 1070, 1035);
        EXPECT_EQ(lastEvents(kMouseNode, 4), (std::vector<Ev>{{EV_REL, REL_X, 2},
                                                              {EV_REL, REL_Y, 1},
                                                              {EV_KEY, BTN_LEFT, 0},
                                                              {EV_SYN, SYN_REPORT, 0}}));
        EXPECT_EQ(logs().back().text, "Relative: 2 1");
    }
    EXPECT_EQ(bytes(kPenNode), "");
}

// The button follows bit 0 of the status, but the eraser end with another function moves
// with the button up.
TEST_F(PenMapping, MouseModeButtonFollowsTheEraserEnd)
{
    const std::tuple<uint8_t, int16_t, int> cases[] = {
        {kTouch, 1, 1}, {kEraserTouch, 0, 1}, {kEraserTouch, 1, 0}, {kHover, 0, 0}};
    pen().bRelativeCoords = 1;
    feed(kLeave, 1000, 1000);
    feed(kHover, 1000, 1000);
    for (const auto &[status, eraserFunction, button] : cases) {
        pen().PenBtn[0].id = eraserFunction;
        feed(status, 1000, 1000, 300);
        EXPECT_EQ(lastEvents(kMouseNode, 2)[0], (Ev{EV_KEY, BTN_LEFT, button}))
            << int(status) << " " << eraserFunction;
    }
}

// At 5080 lpi 152400 x 101600 is 3/4 across and 4/5 down: fx 1750, fy 640, digitX 45783.5
TEST_F(PenMapping, CountRangeOf24Bits)
{
    setDevice(203200, 127000, 5080);
    m_settings->TW = static_cast<int16_t>(m_device.Width);
    m_settings->TH = static_cast<int16_t>(m_device.Height);
    feed(kHover, 152400, 101600);
    EXPECT_EQ(lastEvents(kPenNode, 8), penFrame(BTN_TOOL_PEN, true, 45783, 23680, 0, 0, 0));
}

// (5000, 4000): fx 1500, digitX 39243, digitY 14800; pressure 1024 of 2047 on the line: 4097.
TEST_F(PenMapping, TouchAndLeaveFramesOnThePenDevice)
{
    feed(kTouch, 5000, 4000, 1024, 3, -4);
    feed(kLeave, 5000, 4000, 0, 3, -4);
    std::vector<Ev> expected = penFrame(BTN_TOOL_PEN, true, 39243, 14800, 4097, 3, -4);
    const std::vector<Ev> leave = penFrame(BTN_TOOL_PEN, false, 39243, 14800, 0, 3, -4);
    expected.insert(expected.end(), leave.begin(), leave.end());
    EXPECT_EQ(events(kPenNode), expected);
    EXPECT_EQ(fakeuinput::writeSizes(kPenNode), (std::vector<size_t>{192, 192}));
    EXPECT_EQ(bytes(kMouseNode), "");
    EXPECT_EQ(bytes(kEraserNode), "");
    EXPECT_TRUE(logs().empty());
}

TEST_F(PenMapping, LeaveProximityLiftsOnlyAPenStillHeld)
{
    m_action.LeaveProximity();
    EXPECT_EQ(bytes(kPenNode), "") << "nothing was in range";
    feed(kTouch, 5000, 4000, 1024, 3, -4);
    m_action.LeaveProximity();
    m_action.LeaveProximity();
    EXPECT_EQ(lastEvents(kPenNode, 8), penFrame(BTN_TOOL_PEN, false, 39243, 14800, 0, 0, 0));
    EXPECT_EQ(events(kPenNode).size(), 16u) << "one lift, however often asked";
    pen().PenBtn[0].id = 0;
    feed(kEraserTouch, 5000, 4000, 1024);
    feed(kLeave, 5000, 4000);
    const size_t written = events(kEraserNode).size();
    m_action.LeaveProximity();
    EXPECT_EQ(events(kEraserNode).size(), written) << "the eraser had already left";
}

TEST_F(PenMapping, LeaveProximityReleasesAMouseModeButton)
{
    pen().bRelativeCoords = 1;
    feed(kHover, 1000, 1000);
    feed(kTouch, 1000, 1000, 300);
    m_action.LeaveProximity();
    m_action.LeaveProximity();
    const std::vector<Ev> release = {
        {EV_REL, REL_X, 0}, {EV_REL, REL_Y, 0}, {EV_KEY, BTN_LEFT, 0}, {EV_SYN, SYN_REPORT, 0}};
    EXPECT_EQ(lastEvents(kMouseNode, 4), release);
    EXPECT_EQ(events(kMouseNode).size(), 12u) << "hover, touch and one release";
}

TEST_F(PenMapping, EraserEndRules)
{
    struct Case {
        uint8_t status;
        int16_t eraserFunction;
        int node;
        int pressure;
    };
    const Case cases[] = {
        {kEraserTouch, 0, kEraserNode, 4097}, // the end erases
        {kEraserTouch, 1, kPenNode, 0},       // another function: no ink
        {kEraserHover, 0, kEraserNode, 0},
        {kTouch, 1, kPenNode, 4097},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << int(c.status) << " " << c.eraserFunction);
        pen().PenBtn[0].id = c.eraserFunction;
        const size_t otherBefore = events(kPenNode + kEraserNode - c.node).size();
        const int reported = c.status == kEraserHover ? 0 : 1024;
        EXPECT_EQ(feed(c.status, 5000, 4000, reported).pressure, c.pressure);
        const int tool = c.node == kEraserNode ? BTN_TOOL_RUBBER : BTN_TOOL_PEN;
        EXPECT_EQ(lastEvents(c.node, 8), penFrame(tool, true, 39243, 14800, c.pressure, 0, 0));
        EXPECT_EQ(events(kPenNode + kEraserNode - c.node).size(), otherBefore);
    }
}

TEST_F(PenMapping, TargetRectangle)
{
    struct Case {
        int16_t screenId;
        bool fineMode;
        Mapped mapped;
    };
    const Case cases[] = {
        // fine area (200, 100, 500, 400): fx = 500 * 5000 / 10000 + 200, fy = 400 * 4000 /
        // 8000 + 100; digitX 450 * 26.162 = 11772.9
        {2, true, {450, 300, 11772, 11100}},
        {5, false, {0, 0, 0, 0}},  // an empty slot: a frame at 0, 0
        {12, false, {0, 0, 0, 0}}, // beyond the ten slots, read as empty
    };
    m_settings->BERect = {200, 100, 500, 400};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.screenId);
        m_settings->ScreenId = c.screenId;
        m_settings->bBERectOn = c.fineMode;
        const _MultiData out = feed(kTouch, 5000, 4000, 1024);
        expectMapped(out, c.mapped);
        EXPECT_EQ(out.pressure, c.fineMode ? 4097 : 0);
    }
}

TEST_F(PenMapping, FlagsChooseWhatIsFilled)
{
    CGlobalData::LastTabletActionTime = QTime();
    m_report = {};
    EXPECT_EQ(m_action.ActionTabletData(m_report, m_device, nullptr, m_apps).flags, 0);
    EXPECT_EQ(logs(), (std::vector<LogLine>{{QtDebugMsg, "m_pCurAppConfig is nullptr"}}));
    EXPECT_FALSE(CGlobalData::LastTabletActionTime.isValid());

    m_report.eventFlags = kEventWheel;
    m_report.wheelIndex = 1;
    m_report.wheelDirection = -1;
    _MultiData out = m_action.ActionTabletData(m_report, m_device, m_settings.get(), m_apps);
    EXPECT_EQ(out.flags, kEventWheel);
    EXPECT_EQ(out.ringRel1, 1);
    EXPECT_EQ(static_cast<uint16_t>(out.ringRel2), 0xFFFF);
    // Local time of day, as the usage timer on the window reads it.
    const int skewMs = std::abs(CGlobalData::LastTabletActionTime.msecsTo(QTime::currentTime()));
    EXPECT_LT(std::min(skewMs, 86400000 - skewMs), 2000);

    // Pen button bytes come only with a pen report.
    m_report = {};
    m_report.eventFlags = kEventPenButtons;
    m_report.penButtonMask = 2;
    m_report.penButtonState = 1;
    EXPECT_EQ(m_action.ActionTabletData(m_report, m_device, m_settings.get(), m_apps).penBtn1, 0);
    EXPECT_EQ(bytes(kPenNode), "");
    m_report.eventFlags |= kEventPen;
    out = m_action.ActionTabletData(m_report, m_device, m_settings.get(), m_apps);
    EXPECT_EQ(out.penBtn1, 2);
    EXPECT_EQ(out.penBtn2, 1);
}

// Pen ids beyond the eight records wrap onto them; pen 1 is in mouse mode here.
TEST_F(PenMapping, PenIdSelectsThePenRecord)
{
    pen(1).bRelativeCoords = 1;
    const std::pair<uint8_t, int> cases[] = {
        {0, kPenNode}, {1, kMouseNode}, {8, kPenNode}, {9, kMouseNode}, {255, kPenNode}};
    for (const auto &[id, node] : cases) {
        m_penId = id;
        const size_t before = bytes(node).size();
        feed(kHover, 5000, 4000);
        EXPECT_GT(bytes(node).size(), before) << int(id);
    }
}

} // namespace
