#include "capturedlog.h"
#include "cparsetabletdata.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>

// Runs decoder_cases.txt: each step decodes one report, as the dispatcher does (a zeroed
// 64-byte buffer and a record holding only the product id), and compares the fields its line
// names.
namespace
{

std::string keysDown(const uint8_t (&states)[kTabletKeyCount])
{
    std::string down;
    for (int key = 0; key < kTabletKeyCount; ++key)
        if (states[key])
            down += (down.empty() ? "" : ",") + std::to_string(key);
    return down.empty() ? "-" : down;
}

std::string joined(const std::vector<std::string> &lines)
{
    std::string all;
    for (const std::string &line : lines) // without "log D "
        all += (all.empty() ? "" : ",") + line.substr(6);
    std::replace(all.begin(), all.end(), ' ', '_');
    return all.empty() ? "-" : all;
}

std::map<std::string, std::string> fields(int result, const TabletDataEX &d)
{
    const CParseTabletData::WheelHistory history = CParseTabletData::wheelHistory();
    std::ostringstream out;
    out << "result=" << result << " flags=" << d.eventFlags << " x=" << d.x << " y=" << d.y
        << " pressure=" << d.pressure << " tilt=" << +d.tiltX << "," << +d.tiltY
        << " status=" << +d.penStatus << " mask=" << +d.penButtonMask
        << " state=" << +d.penButtonState << " pen=" << +d.penId << " pid=" << d.productId
        << " keys=" << keysDown(d.keys.current) << " prev=" << keysDown(d.keys.previous)
        << " wheel=" << d.wheelIndex << "," << d.wheelDirection << " last=" << history.lastWhell
        << " lnum=" << history.lnum << " rnum=" << history.rnum
        << " log=" << joined(capturedlog::lines());
    std::map<std::string, std::string> named;
    std::istringstream words(out.str());
    for (std::string word; words >> word;)
        named[word.substr(0, word.find('='))] = word.substr(word.find('=') + 1);
    return named;
}

// "[@N] LENGTH PID BYTES... => NAME=VALUE...": decoder N (0 unless named), PID hexadecimal.
void runStep(const std::string &line, CParseTabletData *decoders)
{
    std::istringstream in(line);
    std::string word;
    in >> word;
    size_t which = 0;
    if (word[0] == '@') {
        which = std::stoul(word.substr(1));
        ASSERT_LT(which, 2u) << line;
        in >> word;
    }
    const int length = std::stoi(word);
    in >> word;
    std::array<unsigned char, kReportBufferSize> buffer{};
    TabletDataEX data{};
    data.productId = std::stoi(word, nullptr, 16);
    for (size_t i = 0; in >> word && word != "=>"; ++i)
        buffer.at(i) = static_cast<unsigned char>(std::stoi(word, nullptr, 16));
    capturedlog::lines().clear();
    const std::map<std::string, std::string> actual =
        fields(decoders[which].ParseData(buffer.data(), length, &data), data);
    while (in >> word) {
        const size_t equals = word.find('=');
        ASSERT_NE(equals, std::string::npos) << word;
        const auto field = actual.find(word.substr(0, equals));
        ASSERT_NE(field, actual.end()) << word;
        EXPECT_EQ(field->second, word.substr(equals + 1)) << field->first;
    }
}

TEST(Decoder, Cases)
{
    std::ifstream cases(DECODER_CASES);
    capturedlog::install();
    std::unique_ptr<CParseTabletData[]> decoders(new CParseTabletData[2]);
    std::string name;
    int total = 0;
    for (std::string line; std::getline(cases, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        if (line.rfind("case ", 0) == 0) {
            // The wheel history is process-wide: every case starts as a new process.
            name = line.substr(5);
            CParseTabletData::resetWheelState();
            decoders.reset(new CParseTabletData[2]);
            continue;
        }
        SCOPED_TRACE(name + ": " + line);
        ++total;
        runStep(line, decoders.get());
    }
    EXPECT_GT(total, 0) << DECODER_CASES;
}

TEST(Decoder, NullPointersGiveZero)
{
    CParseTabletData decoder;
    unsigned char report[kReportBufferSize] = {0x02, 0xA0, 0x10, 0x00};
    TabletKeyData keys{};
    EXPECT_EQ(decoder.ParseData(report, 10, nullptr), 0);
    EXPECT_EQ(decoder.ParseData(nullptr, 10, nullptr), 0);
    EXPECT_EQ(decoder.ChangeDataToKeyState(nullptr, keys), 0);
    EXPECT_EQ(decoder.ChangeM07DataToKeyState(nullptr, keys, true), 0);
    EXPECT_EQ(decoder.ChangeToKeyBoard(nullptr, keys), 0);
    TabletDataEX out{};
    EXPECT_EQ(decoder.ParseData(nullptr, 10, &out), 0);
    EXPECT_EQ(out.eventFlags, 0);
}

// Bits, result, then current and previous of the four buttons.
TEST(Decoder, PenButtonStateSequence)
{
    CParseTabletData decoder;
    for (const char *step : {"0 0 0000 0000", "9 1 1001 0000", "9 1 1001 1001", "2 1 0100 1001",
                             "0 1 0000 0100", "0 0 0000 0000", "16 0 0000 0000"}) {
        PenBtnData buttons;
        const int bits = std::atoi(step);
        std::string states = std::to_string(bits) + " " +
                             std::to_string(int(decoder.ChangeToPenBtnState(bits, buttons)));
        for (const uint8_t *row : {buttons.current, buttons.previous}) {
            states += " ";
            for (int b = 0; b < kPenButtonCount; ++b)
                states += std::to_string(row[b]);
        }
        EXPECT_EQ(states, step);
    }
}

TEST(Decoder, HexDigits)
{
    const std::pair<const wchar_t *, int> cases[] = {
        {L"0", 0},        {L"9", 9},        {L"a", 10},    {L"F", 15},   {L"5A3C", 23100},
        {L"3e1", 993},    {L"ffff", 65535}, {L"0A1", 161}, {L"", 0},     {L"12345", 4660},
        {L"1234G", 4660}, {L"12G4", -1},    {L"g", -1},    {L" 12", -1}, {L"-1", -1},
        {L"0x12", -1},    {L"123 ", -1},    {nullptr, -1}};
    for (const auto &[text, value] : cases)
        EXPECT_EQ(CParseTabletData::str_to_int(text), value) << (text ? text : L"(null)");
}

} // namespace
