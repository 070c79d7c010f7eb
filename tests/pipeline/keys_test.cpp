#include "decoderfixture.h"

namespace
{

constexpr int kTablet = 0x0B2;
constexpr int kKeyboardRemote = 0x3E1;
constexpr int kM07Remote = 0x3E2;

struct KeyStep {
    ReportBytes bytes;
    int result;
    int flags;
    std::vector<int> current;
    std::vector<int> previous;
    int wheelIndex;
    int wheelDirection;
};

struct KeyCase {
    const char *name;
    int productId;
    std::vector<KeyStep> steps;
};

// Key reports: id, 0xF0, key bytes 2 to 6, wheel byte 7.
const KeyCase kKeyCases[] = {
    {"PressHoldRelease",
     kTablet,
     {
         {{0x02, 0xF0, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {0}, {}, 0, 0},
         {{0x02, 0xF0, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {0}, {0}, 0, 0},
         {{0x02, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {}, {0}, 0, 0},
         {{0x02, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 0, {}, {}, 0, 0},
     }},
    {"TwoKeysAtOnce",
     kTablet,
     {
         {{0x02, 0xF0, 0x02, 0x10, 0x00, 0x00, 0x00, 0x00}, 1, 2, {1, 12}, {}, 0, 0},
         {{0x02, 0xF0, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {1}, {1, 12}, 0, 0},
         {{0x02, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {}, {1}, 0, 0},
     }},
    {"LastKeys",
     kTablet,
     {
         {{0x02, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x80, 0x00}, 1, 2, {39}, {}, 0, 0},
         {{0x02, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x81, 0x00}, 1, 2, {32, 39}, {39}, 0, 0},
         {{0x02, 0xF0, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00}, 1, 2, {24}, {32, 39}, 0, 0},
         {{0x02, 0xF0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00}, 1, 2, allKeys(), {24}, 0, 0},
         {{0x02, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {}, allKeys(), 0, 0},
     }},
    {"ReportId3AndWheel",
     kTablet,
     {
         {{0x03, 0xF0, 0x08, 0x00, 0x00, 0x00, 0x00, 0x01}, 1, 6, {3}, {}, 0, 1},
         {{0x03, 0xF0, 0x08, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {3}, {3}, 0, 0},
     }},
    {"KeyboardRemoteKeyReportHeldRepeatsWithPrevious",
     kKeyboardRemote,
     {
         {{0x03, 0xF0, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {2}, {}, 0, 0},
         {{0x03, 0xF0, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {2}, {2}, 0, 0},
     }},
    {"M07HeldKeyRepeats",
     kM07Remote,
     {
         {{0x03, 0xF0, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {2}, {}, 0, 0},
         {{0x03, 0xF0, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {2}, {}, 0, 0},
         {{0x03, 0xF0, 0x04, 0x00, 0x00, 0x00, 0x00, 0x01}, 1, 6, {2}, {2}, 0, 1},
         {{0x03, 0xF0, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {2}, {}, 0, 0},
         {{0x03, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {}, {2}, 0, 0},
         {{0x03, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 0, {}, {}, 0, 0},
     }},
    {"M07ChangesAndWheelSteps",
     kM07Remote,
     {
         {{0x03, 0xF0, 0x01, 0x00, 0x00, 0x00, 0x80, 0x00}, 1, 2, {0, 39}, {}, 0, 0},
         {{0x03, 0xF0, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {0}, {0, 39}, 0, 0},
         {{0x03, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02}, 1, 6, {}, {0}, 0, -1},
         {{0x03, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02}, 1, 4, {}, {}, 0, -1},
         {{0x03, 0xF0, 0x04, 0x00, 0x00, 0x00, 0x00, 0x40}, 1, 6, {2}, {}, 0, 1},
         {{0x03, 0xF0, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 6, {2}, {2}, 0, -1},
         {{0x03, 0xF0, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {2}, {}, 0, 0},
     }},
    {"ReportId6KeysThenUnknownKind",
     kTablet,
     {
         {{0x06, 0x01}, 0, 32, {0}, {}, 0, 0},
         {{0x02, 0xF0, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00}, 1, 2, {0}, {0}, 0, 0},
     }},
    {"ReportId6ThroughTheKeyPath",
     kTablet,
     {
         {{0x06, 0xF0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}, 1, 6, {4, 5, 6, 7}, {4, 5, 6, 7}, 0, 1},
     }},
};

using KeyTest = DecoderCaseTest<KeyCase>;

TEST_P(KeyTest, Sequence)
{
    const KeyCase &c = GetParam();
    for (size_t i = 0; i < c.steps.size(); ++i) {
        SCOPED_TRACE(i);
        const KeyStep &step = c.steps[i];
        const Decoded d = decode(decoder, step.bytes, 64, c.productId);
        EXPECT_EQ(d.result, step.result);
        EXPECT_EQ(d.data.eventFlags, step.flags);
        EXPECT_EQ(keyArray(d.data.keys.current), keysDown(step.current));
        EXPECT_EQ(keyArray(d.data.keys.previous), keysDown(step.previous));
        EXPECT_EQ(d.data.wheelIndex, step.wheelIndex);
        EXPECT_EQ(d.data.wheelDirection, step.wheelDirection);
    }
}

INSTANTIATE_TEST_SUITE_P(Keys, KeyTest, ::testing::ValuesIn(kKeyCases), caseName<KeyCase>);

// Keyboard-style remote: id, kind, one unused byte, then keys 0 to 11 in bytes 3 to 14.
const KeyCase kKeyboardCases[] = {
    {"PressHoldRelease",
     kKeyboardRemote,
     {
         {{0x03, 0x01, 0x00, 0x01}, 0, 0, {}, {}, 0, 0},
         {{0x03, 0x02, 0x00, 0x01}, 1, 2, {0}, {}, 0, 0},
         {{0x03, 0x02, 0x00, 0x01}, 1, 2, {0}, {0}, 0, 0},
         {{0x03, 0x02, 0x00, 0x00}, 1, 2, {}, {0}, 0, 0},
         {{0x03, 0x02, 0x00, 0x00}, 1, 0, {}, {}, 0, 0},
         {{0x03, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02}, 1, 0, {}, {}, 0, 0},
         {{0x03, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
           0x01},
          1,
          0,
          {},
          {},
          0,
          0},
     }},
    {"WheelKeysHaveNoRelease",
     kKeyboardRemote,
     {
         {{0x03, 0x02, 0x00, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01}, 1, 4, {9}, {}, 0, 1},
         {{0x03, 0x02, 0x00}, 1, 0, {}, {9}, 0, 0},
         {{0x03, 0x02, 0x00, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x00, 0x01}, 1, 4, {10}, {9}, 0, -1},
         {{0x03, 0x02, 0x00, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01, 0x01}, 1, 4, {9, 10}, {10}, 0, 1},
         {{0x03, 0x02, 0x00, 0, 0, 0, 0x01, 0, 0, 0, 0, 0, 0x00, 0x00, 0x01},
          1,
          2,
          {3, 11},
          {9, 10},
          0,
          0},
         {{0x03, 0x02, 0x00, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01, 0x00, 0x01},
          1,
          4,
          {9, 11},
          {3, 11},
          0,
          1},
         {{0x03, 0x02, 0x00}, 1, 0, {}, {9, 11}, 0, 0},
     }},
};

using KeyboardRemoteTest = DecoderCaseTest<KeyCase>;

TEST_P(KeyboardRemoteTest, Sequence)
{
    const KeyCase &c = GetParam();
    for (size_t i = 0; i < c.steps.size(); ++i) {
        SCOPED_TRACE(i);
        const KeyStep &step = c.steps[i];
        const Decoded d = decode(decoder, step.bytes, 64, c.productId);
        EXPECT_EQ(d.result, step.result);
        EXPECT_EQ(d.data.eventFlags, step.flags);
        EXPECT_EQ(keyArray(d.data.keys.current), keysDown(step.current));
        EXPECT_EQ(keyArray(d.data.keys.previous), keysDown(step.previous));
        EXPECT_EQ(d.data.wheelIndex, step.wheelIndex);
        EXPECT_EQ(d.data.wheelDirection, step.wheelDirection);
    }
}

INSTANTIATE_TEST_SUITE_P(Keys, KeyboardRemoteTest, ::testing::ValuesIn(kKeyboardCases),
                         caseName<KeyCase>);

TEST_F(DecoderTest, ReportId6KeysAndPenTogether)
{
    // Keys come from bytes 1 to 4 (keys 0, 5, 23); the same bytes are a pen report.
    const Decoded d =
        decode(decoder, {0x06, 0x21, 0x00, 0x80, 0x00, 0x01, 0x10, 0x00, 0x00, 0x00}, 10, kTablet);
    EXPECT_EQ(d.result, 1);
    EXPECT_EQ(d.data.eventFlags, 11);
    EXPECT_EQ(keyArray(d.data.keys.current), keysDown({0, 5, 23}));
    EXPECT_EQ(keyArray(d.data.keys.previous), keysDown({}));
    EXPECT_EQ(d.data.x, 32768);
    EXPECT_EQ(d.data.y, 256);
    EXPECT_EQ(d.data.pressure, 16);
    EXPECT_EQ(d.data.penButtonMask, 1);
    EXPECT_EQ(d.data.penButtonState, 1);
    EXPECT_EQ(d.data.penStatus, 0x21);
}

} // namespace
