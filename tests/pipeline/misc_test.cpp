#include "decoderfixture.h"

namespace
{

constexpr int kTablet = 0x0B2;
constexpr int kKeyboardRemote = 0x3E1;

struct KindCase {
    const char *name;
    int productId;
    unsigned char kind;
    int result;
    int flags;
};

const KindCase kKindCases[] = {
    {"PenA0", kTablet, 0xA0, 1, 1},
    {"Pen20", kTablet, 0x20, 1, 1},
    {"Pen60", kTablet, 0x60, 1, 1},
    {"PenE0", kTablet, 0xE0, 1, 1},
    {"Pen2FWithButtons", kTablet, 0x2F, 1, 9},
    {"PenLeaveC0", kTablet, 0xC0, 1, 1},
    {"PenIdentityF6", kTablet, 0xF6, 1, 0},
    {"KeysF0", kTablet, 0xF0, 1, 0},
    {"UnknownB0", kTablet, 0xB0, 0, 32},
    {"Unknown90", kTablet, 0x90, 0, 32},
    {"UnknownF1", kTablet, 0xF1, 0, 32},
    {"Unknown00", kTablet, 0x00, 0, 32},
    {"Unknown01", kTablet, 0x01, 0, 32},
    {"Unknown02", kTablet, 0x02, 0, 32},
    {"KeyboardIdle01", kKeyboardRemote, 0x01, 0, 0},
    {"KeyboardNoKey02", kKeyboardRemote, 0x02, 1, 0},
    {"KeyboardNoKeyB0", kKeyboardRemote, 0xB0, 1, 0},
    {"KeyboardRemotePenA0", kKeyboardRemote, 0xA0, 1, 1},
};

using KindTest = DecoderCaseTest<KindCase>;

TEST_P(KindTest, SortsByKind)
{
    const KindCase &c = GetParam();
    const Decoded d = decode(decoder, {0x02, c.kind}, 64, c.productId);
    EXPECT_EQ(d.result, c.result);
    EXPECT_EQ(d.data.eventFlags, c.flags);
}

INSTANTIATE_TEST_SUITE_P(Kind, KindTest, ::testing::ValuesIn(kKindCases), caseName<KindCase>);

TEST_F(DecoderTest, NullPointersGiveZero)
{
    unsigned char report[kReportBufferSize] = {0x02, 0xA0, 0x10, 0x00};
    TabletKeyData keys{};
    const int results[] = {
        decoder.ParseData(report, 10, nullptr),
        decoder.ParseData(nullptr, 10, nullptr),
        decoder.ChangeDataToKeyState(nullptr, keys),
        decoder.ChangeM07DataToKeyState(nullptr, keys, true),
        decoder.ChangeToKeyBoard(nullptr, keys),
    };
    for (size_t i = 0; i < std::size(results); ++i)
        EXPECT_EQ(results[i], 0) << "call " << i;
    TabletDataEX out{};
    EXPECT_EQ(decoder.ParseData(nullptr, 10, &out), 0);
    EXPECT_EQ(out.eventFlags, 0);
}

struct HexCase {
    const wchar_t *text;
    int value;
};

const HexCase kHexCases[] = {
    {L"0", 0},        {L"9", 9},     {L"a", 10},  {L"F", 15},       {L"5A3C", 23100}, {L"3e1", 993},
    {L"ffff", 65535}, {L"0A1", 161}, {L"", 0},    {L"12345", 4660}, {L"1234G", 4660}, {L"12G4", -1},
    {L"g", -1},       {L" 12", -1},  {L"-1", -1}, {L"0x12", -1},    {L"123 ", -1},    {nullptr, -1},
};

TEST(StrToInt, HexDigits)
{
    for (const HexCase &c : kHexCases) {
        SCOPED_TRACE(c.text ? std::wstring(c.text) : std::wstring(L"(null)"));
        EXPECT_EQ(CParseTabletData::str_to_int(c.text), c.value);
    }
}

} // namespace
