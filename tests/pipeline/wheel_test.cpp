#include "decoderfixture.h"

namespace
{

constexpr int kTablet = 0x0B2;
constexpr int kInverted = 0x0A1;

ReportBytes wheelReport(unsigned char state)
{
    return {0x02, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, state};
}

struct LevelCase {
    const char *name;
    int productId;
    unsigned char state;
    int flags;
    int wheelIndex;
    int wheelDirection;
};

const LevelCase kLevelCases[] = {
    {"W01", kTablet, 0x01, 4, 0, 1},           {"W02", kTablet, 0x02, 4, 0, -1},
    {"W04", kTablet, 0x04, 4, 1, 1},           {"W08", kTablet, 0x08, 4, 1, -1},
    {"W10LikeW04", kTablet, 0x10, 4, 1, 1},    {"W20LikeW08", kTablet, 0x20, 4, 1, -1},
    {"W40", kTablet, 0x40, 4, 0, 1},           {"W80", kTablet, 0x80, 4, 0, -1},
    {"WFF", kTablet, 0xFF, 4, 0, -1},          {"W00", kTablet, 0x00, 0, 0, 0},
    {"WC0", kTablet, 0xC0, 0, 0, 0},           {"W03", kTablet, 0x03, 0, 0, 0},
    {"W0C", kTablet, 0x0C, 0, 0, 0},           {"W11", kTablet, 0x11, 0, 0, 0},
    {"W7F", kTablet, 0x7F, 0, 0, 0},           {"InvertedW01", kInverted, 0x01, 4, 0, 1},
    {"InvertedW40", kInverted, 0x40, 4, 0, 1},
};

using WheelLevelTest = DecoderCaseTest<LevelCase>;

TEST_P(WheelLevelTest, FromAFreshProcess)
{
    const LevelCase &c = GetParam();
    const Decoded d = decode(decoder, wheelReport(c.state), 64, c.productId);
    EXPECT_EQ(d.result, 1);
    EXPECT_EQ(d.data.eventFlags, c.flags);
    EXPECT_EQ(d.data.wheelIndex, c.wheelIndex);
    EXPECT_EQ(d.data.wheelDirection, c.wheelDirection);
    EXPECT_EQ(CParseTabletData::wheelHistory().lastWhell, c.state);
}

INSTANTIATE_TEST_SUITE_P(Wheel, WheelLevelTest, ::testing::ValuesIn(kLevelCases),
                         caseName<LevelCase>);

struct WheelStep {
    unsigned char state;
    int flags;
    int wheelIndex;
    int wheelDirection;
    int lnum;
    int rnum;
};

struct WheelCase {
    const char *name;
    int productId;
    std::vector<WheelStep> steps;
};

const WheelCase kWheelCases[] = {
    {"W40ThenW00", kTablet, {{0x40, 4, 0, 1, 0, 0}, {0x00, 4, 0, -1, 1, 0}}},
    {"W40ThenW00Inverted", kInverted, {{0x40, 4, 0, 1, 0, 0}, {0x00, 4, 0, 1, 1, 0}}},
    {"W80ThenWC0", kTablet, {{0x80, 4, 0, -1, 0, 0}, {0xC0, 4, 0, -1, 1, 0}}},
    {"W80ThenWC0Inverted", kInverted, {{0x80, 4, 0, -1, 0, 0}, {0xC0, 4, 0, 1, 1, 0}}},
    {"RunsOfSteps",
     kTablet,
     {
         {0x80, 4, 0, -1, 0, 0},
         {0xC0, 4, 0, -1, 1, 0},
         {0x80, 4, 0, -1, 1, 0},
         {0xC0, 4, 0, -1, 2, 0},
         {0x80, 4, 0, -1, 2, 0},
         {0x00, 4, 0, 1, 0, 1},
         {0x40, 4, 0, 1, 0, 1},
         {0xC0, 4, 0, 1, 0, 2},
         {0x40, 4, 0, 1, 0, 2},
         {0x00, 4, 0, -1, 1, 0},
         {0x00, 0, 0, 0, 1, 0},
     }},
    {"RunsOfStepsInverted",
     kInverted,
     {
         {0x80, 4, 0, -1, 0, 0},
         {0xC0, 4, 0, 1, 1, 0},
         {0x80, 4, 0, -1, 1, 0},
         {0xC0, 4, 0, 1, 2, 0},
         {0x80, 4, 0, -1, 2, 0},
         {0x00, 4, 0, -1, 0, 1},
         {0x40, 4, 0, 1, 0, 1},
         {0xC0, 4, 0, -1, 0, 2},
         {0x40, 4, 0, 1, 0, 2},
         {0x00, 4, 0, 1, 1, 0},
         {0x00, 0, 0, 0, 1, 0},
     }},
    {"NoEdgeNoStep",
     kTablet,
     {
         {0x80, 4, 0, -1, 0, 0},
         {0x80, 4, 0, -1, 0, 0},
         {0x40, 4, 0, 1, 0, 0},
         {0x80, 4, 0, -1, 0, 0},
         {0x01, 4, 0, 1, 0, 0},
         {0x00, 0, 0, 0, 0, 0},
         {0xC0, 0, 0, 0, 0, 0},
         {0x00, 0, 0, 0, 0, 0},
     }},
};

using WheelSequenceTest = DecoderCaseTest<WheelCase>;

TEST_P(WheelSequenceTest, Steps)
{
    const WheelCase &c = GetParam();
    for (size_t i = 0; i < c.steps.size(); ++i) {
        SCOPED_TRACE(i);
        const WheelStep &step = c.steps[i];
        const Decoded d = decode(decoder, wheelReport(step.state), 64, c.productId);
        EXPECT_EQ(d.result, 1);
        EXPECT_EQ(d.data.eventFlags, step.flags);
        EXPECT_EQ(d.data.wheelIndex, step.wheelIndex);
        EXPECT_EQ(d.data.wheelDirection, step.wheelDirection);
        const CParseTabletData::WheelHistory history = CParseTabletData::wheelHistory();
        EXPECT_EQ(history.lastWhell, step.state);
        EXPECT_EQ(history.lnum, step.lnum);
        EXPECT_EQ(history.rnum, step.rnum);
    }
}

INSTANTIATE_TEST_SUITE_P(Wheel, WheelSequenceTest, ::testing::ValuesIn(kWheelCases),
                         caseName<WheelCase>);

struct SharedStep {
    int decoder;
    unsigned char state;
    int flags;
    int wheelDirection;
};

// Two tablets interleave in one wheel history.
const SharedStep kSharedSteps[] = {
    {0, 0x40, 4, 1}, {1, 0x00, 4, -1}, {0, 0x80, 4, -1}, {1, 0xC0, 4, -1}, {0, 0x00, 0, 0},
};

TEST_F(DecoderTest, WheelHistoryIsSharedByAllTablets)
{
    CParseTabletData second;
    CParseTabletData *decoders[] = {&decoder, &second};
    for (size_t i = 0; i < std::size(kSharedSteps); ++i) {
        SCOPED_TRACE(i);
        const SharedStep &step = kSharedSteps[i];
        const Decoded d = decode(*decoders[step.decoder], wheelReport(step.state), 64, kTablet);
        EXPECT_EQ(d.data.eventFlags, step.flags);
        EXPECT_EQ(d.data.wheelDirection, step.wheelDirection);
    }
    EXPECT_EQ(CParseTabletData::wheelHistory().lnum, 2);
}

} // namespace
