#include "cvtkeycode.h"

#include <gtest/gtest.h>
#include <iterator>
#include <utility>

namespace
{

class KeyTable : public ::testing::Test
{
protected:
    void SetUp() override { cvtKeyCode::init(); }
    void TearDown() override { cvtKeyCode::release(); }
};

// Printable keys are looked up by their upper-case character.
constexpr char kPrintableKeys[] = " '*+,-./0123456789;=ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]`";
constexpr int kPrintableCodes[] = {57, 40, 55, 78, 51, 12, 52, 53, 11, 2,  3,  4,  5,
                                   6,  7,  8,  9,  10, 39, 13, 30, 48, 46, 32, 18, 33,
                                   34, 35, 23, 36, 37, 38, 50, 49, 24, 25, 16, 19, 31,
                                   20, 22, 47, 17, 45, 21, 44, 26, 43, 27, 41};
static_assert(sizeof kPrintableKeys - 1 == std::size(kPrintableCodes), "one code per key");

const std::pair<int, int> kNamed[] = {
    {Qt::Key_Escape, 1},      {Qt::Key_Tab, 15},      {Qt::Key_Backspace, 14},
    {Qt::Key_Return, 28},     {Qt::Key_Enter, 28},    {Qt::Key_Insert, 110},
    {Qt::Key_Delete, 111},    {Qt::Key_Pause, 119},   {Qt::Key_Home, 102},
    {Qt::Key_End, 107},       {Qt::Key_Left, 105},    {Qt::Key_Up, 103},
    {Qt::Key_Right, 106},     {Qt::Key_Down, 108},    {Qt::Key_PageUp, 104},
    {Qt::Key_PageDown, 109},  {Qt::Key_Shift, 42},    {Qt::Key_Control, 29},
    {Qt::Key_Alt, 56},        {Qt::Key_CapsLock, 58}, {Qt::Key_NumLock, 69},
    {Qt::Key_ScrollLock, 70}, {Qt::Key_F1, 59},       {Qt::Key_F2, 60},
    {Qt::Key_F3, 61},         {Qt::Key_F4, 62},       {Qt::Key_F5, 63},
    {Qt::Key_F6, 64},         {Qt::Key_F7, 65},       {Qt::Key_F8, 66},
    {Qt::Key_F9, 67},         {Qt::Key_F10, 68},      {Qt::Key_F11, 87},
    {Qt::Key_F12, 88},        {Qt::Key_F13, 183},     {Qt::Key_F14, 184},
    {Qt::Key_F15, 185},       {Qt::Key_F16, 186},     {Qt::Key_F17, 187},
    {Qt::Key_F18, 188},       {Qt::Key_F19, 189},     {Qt::Key_F20, 190},
    {Qt::Key_F21, 191},       {Qt::Key_F22, 192},     {Qt::Key_F23, 193},
    {Qt::Key_F24, 194},       {Qt::Key_Menu, 127},
};

TEST_F(KeyTable, HoldsEveryKeyWithItsLinuxCode)
{
    for (size_t i = 0; i < std::size(kPrintableCodes); ++i)
        EXPECT_EQ(cvtKeyCode::getInputKeyCode(kPrintableKeys[i]), kPrintableCodes[i])
            << kPrintableKeys[i];
    for (const auto &[qtKey, code] : kNamed)
        EXPECT_EQ(cvtKeyCode::getInputKeyCode(qtKey), code) << std::hex << qtKey;
    EXPECT_EQ(cvtKeyCode::getInputKeyMap().size(), 97);
}

TEST_F(KeyTable, KeysOutsideTheTableAndAfterReleaseGiveZero)
{
    EXPECT_EQ(cvtKeyCode::getInputKeyCode(Qt::Key_Meta), 0);
    EXPECT_EQ(cvtKeyCode::getInputKeyCode(Qt::Key_Exclam), 0);
    cvtKeyCode::init(); // a second load changes nothing
    EXPECT_EQ(cvtKeyCode::getInputKeyCode(Qt::Key_Shift), 42);
    cvtKeyCode::release();
    EXPECT_TRUE(cvtKeyCode::getInputKeyMap().isEmpty());
    EXPECT_EQ(cvtKeyCode::getInputKeyCode(Qt::Key_A), 0);
}

TEST_F(KeyTable, CapturedTokensAndNames)
{
    struct Case {
        int qtKey;
        quint32 scanCode;
        quint32 virtualKey;
        const char *combination;
        const char *token;
        const char *name;
    };
    const Case cases[] = {
        {Qt::Key_A, 38, 'a', "", "30:38", "A"},
        // a letter keeps its table entry with Shift held
        {Qt::Key_A, 38, 'A', "42:50", "30:38", "A"},
        // the shifted digit row and punctuation come from the scan code
        {Qt::Key_Exclam, 10, '!', "42:50", "2:10", "!"},
        {Qt::Key_Bar, 51, '|', "29:37+42:50", "43:51", "\\"},
        {Qt::Key_Colon, 47, ':', "42:62", "39:47", ":"},
        {Qt::Key_Question, 61, '?', "42:50", "53:61", "?"},
        // the same key with no Shift before it stays unknown
        {Qt::Key_Exclam, 10, '!', "29:37", "0:10", "!"},
        {Qt::Key_Exclam, 10, '!', "", "0:10", "!"},
        // keypad minus
        {Qt::Key_Minus, 82, 0xFFAD, "", "74:82", "-"},
        {Qt::Key_Minus, 20, '-', "", "12:20", "-"},
        {Qt::Key_Plus, 86, 0xFFAB, "29:37", "78:86", "+"},
        {Qt::Key_F5, 71, 0xFFC2, "", "63:71", "F5"},
        {Qt::Key_Shift, 50, 0xFFE1, "", "42:50", "Shift"},
        {Qt::Key_Control, 37, 0xFFE3, "", "29:37", "Ctrl"},
        {Qt::Key_Alt, 64, 0xFFE9, "", "56:64", "Alt"},
        {Qt::Key_Meta, 133, 0xFFEB, "", "0:133", ""},
        {Qt::Key_unknown, 200, 0x1FFFFFF, "", "0:200", "UN"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.token);
        const CapturedKey key =
            cvtKeyCode::captureKey(c.qtKey, c.scanCode, c.virtualKey, c.combination);
        EXPECT_EQ(key.token, c.token);
        EXPECT_EQ(key.name, QString::fromUtf8(c.name));
    }
}

} // namespace
