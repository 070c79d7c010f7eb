#include "decoderfixture.h"

#include <QString>

namespace
{

constexpr int kTablet = 0x0B2;

struct PenLengthCase {
    const char *name;
    ReportBytes bytes;
    int length;
    int64_t x;
    int64_t y;
    int pressure;
    int tiltX;
    int tiltY;
    int penId;
};

// 02 A0 | X 1234 | Y 5678 | P 34 45 | tilt 2A D6 | X,Y high 07 09 | unused 77 | P high FD
const ReportBytes kMixedPen = {0x02, 0xA0, 0x34, 0x12, 0x78, 0x56, 0x34,
                               0x45, 0x2A, 0xD6, 0x07, 0x09, 0x77, 0xFD};
const ReportBytes kFullScalePen = {0x02, 0xA0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                   0xFF, 0x80, 0x7F, 0xFF, 0xFF, 0x00, 0x07};

const PenLengthCase kPenLengthCases[] = {
    {"Length9NoTilt", kMixedPen, 9, 4660, 22136, 1332, 0, 0, 2},
    {"Length10Tilt", kMixedPen, 10, 4660, 22136, 1332, 42, 214, 2},
    {"Length11Still16Bit", kMixedPen, 11, 4660, 22136, 1332, 42, 214, 2},
    {"Length12Wide", kMixedPen, 12, 463412, 611960, 1332, 42, 214, 2},
    {"Length13Still13BitPressure", kMixedPen, 13, 463412, 611960, 1332, 42, 214, 2},
    {"Length14Pressure16Bit", kMixedPen, 14, 463412, 611960, 42292, 42, 214, 2},
    {"Length64", kMixedPen, 64, 463412, 611960, 42292, 42, 214, 2},
    {"LengthBeyondBuffer", kMixedPen, 1000, 463412, 611960, 42292, 42, 214, 2},
    {"FullScale10", kFullScalePen, 10, 65535, 65535, 8191, 128, 127, 7},
    {"FullScale14", kFullScalePen, 14, 16777215, 16777215, 65535, 128, 127, 7},
};

using PenLengthTest = DecoderCaseTest<PenLengthCase>;

TEST_P(PenLengthTest, DecodesByLength)
{
    const PenLengthCase &c = GetParam();
    const Decoded d = decode(decoder, c.bytes, c.length, kTablet);
    EXPECT_EQ(d.result, 1);
    EXPECT_EQ(d.data.eventFlags, 1);
    EXPECT_EQ(d.data.x, c.x);
    EXPECT_EQ(d.data.y, c.y);
    EXPECT_EQ(d.data.pressure, c.pressure);
    EXPECT_EQ(d.data.tiltX, c.tiltX);
    EXPECT_EQ(d.data.tiltY, c.tiltY);
    EXPECT_EQ(d.data.penId, c.penId);
    EXPECT_EQ(d.data.penStatus, 0xA0);
    EXPECT_EQ(d.data.penButtonMask, 0);
    EXPECT_EQ(d.data.productId, kTablet);
}

INSTANTIATE_TEST_SUITE_P(Pen, PenLengthTest, ::testing::ValuesIn(kPenLengthCases),
                         caseName<PenLengthCase>);

TEST_F(DecoderTest, PenLeaveIsAPenReport)
{
    const Decoded d =
        decode(decoder, {0x02, 0xC0, 0x10, 0x00, 0x20, 0x00, 0x00, 0x00}, 10, kTablet);
    EXPECT_EQ(d.result, 1);
    EXPECT_EQ(d.data.eventFlags, 1);
    EXPECT_EQ(d.data.penStatus, 0xC0);
    EXPECT_EQ(d.data.x, 16);
    EXPECT_EQ(d.data.y, 32);
    EXPECT_EQ(d.data.pressure, 0);
    EXPECT_EQ(d.data.penButtonMask, 0);
}

std::vector<std::string> g_log;

void collectLog(QtMsgType, const QMessageLogContext &, const QString &message)
{
    g_log.push_back(message.toStdString());
}

struct PenButtonStep {
    unsigned char status;
    int flags;
    int mask;
    int state;
    std::vector<std::string> log;
};

struct PenButtonCase {
    const char *name;
    std::vector<PenButtonStep> steps;
};

const PenButtonCase kPenButtonCases[] = {
    {"PressHoldRelease",
     {
         {0xA0, 1, 0x00, 0, {}},
         {0xA1, 9, 0x01, 1, {"PenKey 1 down"}},
         {0xA1, 9, 0x00, 0, {}},
         {0xA3, 9, 0x02, 1, {"PenKey 2 down"}},
         {0xA2, 9, 0x01, 0, {"PenKey 1 up"}},
         {0xA0, 9, 0x02, 0, {"PenKey 2 up"}},
         {0xA0, 1, 0x00, 0, {}},
     }},
    {"TwoChangesKeepTheHigherState",
     {
         {0xA5, 9, 0x05, 1, {"PenKey 1 down", "PenKey 3 down"}},
         {0xA2, 9, 0x07, 0, {"PenKey 1 up", "PenKey 2 down", "PenKey 3 up"}},
         {0xA1, 9, 0x03, 0, {"PenKey 1 down", "PenKey 2 up"}},
         {0xC0, 9, 0x01, 0, {"PenKey 1 up"}},
         {0xC0, 1, 0x00, 0, {}},
     }},
    {"FourthButton",
     {
         {0xA8, 9, 0x08, 1, {"PenKey 4 down"}},
         {0xAF, 9, 0x07, 1, {"PenKey 1 down", "PenKey 2 down", "PenKey 3 down"}},
         {0xA0, 9, 0x0F, 0, {"PenKey 1 up", "PenKey 2 up", "PenKey 3 up", "PenKey 4 up"}},
     }},
};

class PenButtonTest : public DecoderCaseTest<PenButtonCase>
{
protected:
    void SetUp() override
    {
        DecoderCaseTest::SetUp();
        g_log.clear();
        m_previousHandler = qInstallMessageHandler(collectLog);
    }

    void TearDown() override { qInstallMessageHandler(m_previousHandler); }

    QtMessageHandler m_previousHandler = nullptr;
};

TEST_P(PenButtonTest, MaskStateAndLog)
{
    const std::vector<PenButtonStep> &steps = GetParam().steps;
    for (size_t i = 0; i < steps.size(); ++i) {
        SCOPED_TRACE(i);
        const PenButtonStep &step = steps[i];
        g_log.clear();
        const Decoded d = decode(decoder, {0x02, step.status, 0x00, 0x00}, 10, kTablet);
        EXPECT_EQ(d.result, 1);
        EXPECT_EQ(d.data.eventFlags, step.flags);
        EXPECT_EQ(d.data.penButtonMask, step.mask);
        EXPECT_EQ(d.data.penButtonState, step.state);
        EXPECT_EQ(d.data.penStatus, step.status);
        EXPECT_EQ(g_log, step.log);
    }
}

INSTANTIATE_TEST_SUITE_P(Pen, PenButtonTest, ::testing::ValuesIn(kPenButtonCases),
                         caseName<PenButtonCase>);

struct ButtonStateStep {
    uint8_t bits;
    bool result;
    std::array<int, 4> current;
    std::array<int, 4> previous;
};

const ButtonStateStep kButtonStateSteps[] = {
    {0x0, false, {0, 0, 0, 0}, {0, 0, 0, 0}},  {0x9, true, {1, 0, 0, 1}, {0, 0, 0, 0}},
    {0x9, true, {1, 0, 0, 1}, {1, 0, 0, 1}},   {0x2, true, {0, 1, 0, 0}, {1, 0, 0, 1}},
    {0x0, true, {0, 0, 0, 0}, {0, 1, 0, 0}},   {0x0, false, {0, 0, 0, 0}, {0, 0, 0, 0}},
    {0x10, false, {0, 0, 0, 0}, {0, 0, 0, 0}},
};

TEST_F(DecoderTest, PenButtonStateSequence)
{
    for (size_t i = 0; i < std::size(kButtonStateSteps); ++i) {
        SCOPED_TRACE(i);
        const ButtonStateStep &step = kButtonStateSteps[i];
        PenBtnData buttons;
        EXPECT_EQ(decoder.ChangeToPenBtnState(step.bits, buttons), step.result);
        for (int b = 0; b < kPenButtonCount; ++b) {
            EXPECT_EQ(buttons.current[b], step.current[b]) << "button " << b;
            EXPECT_EQ(buttons.previous[b], step.previous[b]) << "button " << b;
        }
    }
}

struct PenIdentityCase {
    const char *name;
    unsigned char low;
    unsigned char high;
    int penId;
};

// The pen report that follows says pen 7 in byte 7.
const PenIdentityCase kPenIdentityCases[] = {
    {"Code501", 0x10, 0x50, 2},        {"Code501LowNibbleIgnored", 0x1F, 0x50, 2},
    {"Code801", 0x10, 0x80, 3},        {"Code301", 0x10, 0x30, 1},
    {"Code502Unknown", 0x20, 0x50, 7}, {"Code500Unknown", 0x01, 0x50, 7},
    {"Code051Unknown", 0x10, 0x05, 7}, {"Zero", 0x00, 0x00, 7},
};

using PenIdentityTest = DecoderCaseTest<PenIdentityCase>;

TEST_P(PenIdentityTest, ForcesThePenId)
{
    const PenIdentityCase &c = GetParam();
    const Decoded identity = decode(decoder, {0x02, 0xF6, c.low, c.high}, 64, kTablet);
    EXPECT_EQ(identity.result, 1);
    EXPECT_EQ(identity.data.eventFlags, 0);
    EXPECT_EQ(identity.data.penId, 0);
    const Decoded pen =
        decode(decoder, {0x02, 0xA0, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0}, 10, kTablet);
    EXPECT_EQ(pen.data.penId, c.penId);
}

INSTANTIATE_TEST_SUITE_P(Pen, PenIdentityTest, ::testing::ValuesIn(kPenIdentityCases),
                         caseName<PenIdentityCase>);

struct ForcedIdStep {
    ReportBytes bytes;
    int penId;
};

// Pen reports carry pen 1 in byte 7 (0x20); only a known code replaces the forced id.
const ForcedIdStep kForcedIdSteps[] = {
    {{0x02, 0xA0, 0, 0, 0, 0, 0, 0x20}, 1}, {{0x02, 0xF6, 0x10, 0x50}, 0},
    {{0x02, 0xA0, 0, 0, 0, 0, 0, 0x20}, 2}, {{0x02, 0xF6, 0x20, 0x50}, 0},
    {{0x02, 0xA0, 0, 0, 0, 0, 0, 0x20}, 2}, {{0x02, 0xC0, 0, 0, 0, 0, 0, 0x20}, 2},
    {{0x02, 0xF6, 0x10, 0x80}, 0},          {{0x02, 0xA0, 0, 0, 0, 0, 0, 0x20}, 3},
    {{0x02, 0xF6, 0x10, 0x30}, 0},          {{0x02, 0xA0, 0, 0, 0, 0, 0, 0xE0}, 1},
};

TEST_F(DecoderTest, ForcedPenIdStaysUntilAnotherKnownCode)
{
    for (size_t i = 0; i < std::size(kForcedIdSteps); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(decode(decoder, kForcedIdSteps[i].bytes, 10, kTablet).data.penId,
                  kForcedIdSteps[i].penId);
    }
    CParseTabletData other;
    EXPECT_EQ(decode(other, {0x02, 0xA0, 0, 0, 0, 0, 0, 0xE0}, 10, kTablet).data.penId, 7);
}

} // namespace
