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
        m_device.MaxX = 10000;
        m_device.MaxY = 8000;
        m_device.LPI = 1000;
        m_device.Width = 1000;
        m_device.Height = 800;
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

// Frames through the whole report path are replay captures (tests/replay/cases/map-*.txt);
// here what a profile cannot express. Orientation 1: after the mapping tilt (10, 20) and
// report (2000, 1000) are turned once more, to (-10, -20) and (8000 - 2000, 7000).
TEST_F(PenMapping, RotationTurnsTheReportBack)
{
    m_settings->Orientation = 1;
    m_settings->TW = 800;
    m_settings->TH = 1000;
    const _MultiData out = feed(kHover, 2000, 1000, 0, 10, 20);
    EXPECT_EQ(std::tuple(out.tiltX, out.tiltY, m_report.x, m_report.y),
              std::tuple(int8_t{-10}, int8_t{-20}, int64_t{6000}, int64_t{7000}));
}

// Loading a profile fills an empty work area; an empty one maps nothing at all.
TEST_F(PenMapping, NoWorkAreaMapsNothing)
{
    m_settings->TW = 0;
    EXPECT_EQ(feed(kHover, 3000, 2000).digitX, 0);
    EXPECT_EQ(bytes(kPenNode), "");
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
