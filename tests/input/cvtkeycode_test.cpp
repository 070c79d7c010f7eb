#include "cvtkeycode.h"

#include <QMetaEnum>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

// Runs keycodes.txt.
TEST(KeyTable, CodesAndCapturedKeys)
{
    const QMetaEnum qtKeys = QMetaEnum::fromType<Qt::Key>();
    std::ifstream in(KEYCODE_CASES);
    ASSERT_TRUE(in) << KEYCODE_CASES;
    cvtKeyCode::init();
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::string kind, key, combination, token, name;
        unsigned scanCode = 0, virtualKey = 0;
        int code = 0;
        words >> kind >> key;
        const int qtKey = qtKeys.keyToValue(key.c_str());
        EXPECT_TRUE(kind.empty() || kind[0] == '#' || qtKey != -1) << line;
        if (kind == "code") {
            words >> code;
            EXPECT_EQ(cvtKeyCode::getInputKeyCode(qtKey), code) << line;
        } else if (kind == "capture") {
            words >> scanCode >> std::hex >> virtualKey >> combination >> token >> name;
            const CapturedKey captured = cvtKeyCode::captureKey(
                qtKey, scanCode, virtualKey,
                QString::fromStdString(combination == "~" ? "" : combination));
            EXPECT_EQ(captured.token.toStdString(), token) << line;
            EXPECT_EQ(captured.name.toStdString(), name == "~" ? "" : name) << line;
        }
    }
    EXPECT_EQ(cvtKeyCode::getInputKeyMap().size(), 97);
    cvtKeyCode::init(); // a second load changes nothing
    EXPECT_EQ(cvtKeyCode::getInputKeyCode(Qt::Key_Shift), 42);
    EXPECT_EQ(cvtKeyCode::getInputKeyMap().size(), 97);
    cvtKeyCode::release();
    EXPECT_TRUE(cvtKeyCode::getInputKeyMap().isEmpty());
    EXPECT_EQ(cvtKeyCode::getInputKeyCode(Qt::Key_A), 0);
}

} // namespace
