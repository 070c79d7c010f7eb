#include "actionids.h"
#include "actionmessages.h"
#include "caction.h"
#include "cglobaldata.h"
#include "ctipsink.h"
#include "deviceattributes.h"
#include "tabletdata.h"
#include "uinputfixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QThread>
#include <algorithm>
#include <array>
#include <cstring>
#include <tuple>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

// Language texts of the fixture: "Actions.n" is "An", "TR.Item.n" is "Rn"; the config's path
// is "common", and the engine posts as device 3.
namespace
{

struct RecordedTips : CTipSink {
    void EmitInfo(QString text) override { texts.push_back(text); }
    void EmitRingLrcInfo(QStringList, int) override {}
    QStringList texts;
};

using Texts = std::vector<std::string>;
using IntMsgs = std::vector<std::pair<int, int>>;
using TextMsgs = std::vector<std::pair<int, std::string>>;

constexpr uint8_t kHover = 0xA0;
constexpr uint8_t kTouch = 0xA1;
constexpr uint8_t kEraserTouch = 0xA9;

std::vector<Ev> taps(const std::vector<int> &codes, bool pressed)
{
    std::vector<Ev> result;
    for (int code : codes)
        result.push_back({EV_KEY, static_cast<uint16_t>(code), pressed});
    return result;
}

std::vector<Ev> operator+(std::vector<Ev> a, const std::vector<Ev> &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::vector<Ev> tap(const std::vector<int> &codes)
{
    return taps(codes, true) + taps(codes, false);
}

const Ev kWheelUp{EV_REL, REL_WHEEL, 1};
const Ev kWheelDown{EV_REL, REL_WHEEL, -1};

class Functions : public UinputTest
{
protected:
    void SetUp() override
    {
        UinputTest::SetUp();
        ASSERT_EQ(CGlobalData::MyInputDriver.Init(), 1);
        auto *language = new QSettings(m_folder.filePath("language.ini"), QSettings::IniFormat);
        for (int id = 0; id <= 212; ++id)
            language->setValue(QStringLiteral("Actions.%1").arg(id), QStringLiteral("A%1").arg(id));
        for (int item = 1; item <= 4; ++item)
            language->setValue(QStringLiteral("TR.Item.%1").arg(item),
                               QStringLiteral("R%1").arg(item));
        CGlobalData::Language_Config = language;
        CGlobalData::Show_Info = &m_tip;
        m_action = std::make_unique<CAction>();
        m_action->setDeviceIndex(3);
        m_ints = std::make_unique<QSignalSpy>(m_action.get(),
                                              qOverload<int, int, int>(&CAction::PostActionMsg));
        m_texts = std::make_unique<QSignalSpy>(
            m_action.get(), qOverload<int, int, QString>(&CAction::PostActionMsg));
        std::strcpy(common().path, "common");
    }

    void TearDown() override
    {
        CGlobalData::Show_Info = nullptr;
        delete CGlobalData::Language_Config;
        CGlobalData::Language_Config = nullptr;
        CGlobalData::MyInputDriver.CloseUinput();
        UinputTest::TearDown();
    }

    _stAppConfigNode &common() { return m_settings->CommonAPP; }

    void run(QByteArray function, bool pressed)
    {
        m_action->ParseCustomFunction(function.data(), pressed, 0);
    }

    _MultiData report(TabletDataEX &data)
    {
        return m_action->ActionTabletData(data, m_device, m_settings.get(), m_apps);
    }

    _MultiData keys(std::initializer_list<int> numbers, bool down)
    {
        TabletDataEX data{};
        data.eventFlags = kEventKeys;
        for (int number : numbers) {
            data.keys.current[number - 1] = down;
            data.keys.previous[number - 1] = !down;
        }
        return report(data);
    }

    void wheel(short index, short direction)
    {
        TabletDataEX data{};
        data.eventFlags = kEventWheel;
        data.wheelIndex = index;
        data.wheelDirection = direction;
        report(data);
    }

    void penButtons(uint8_t status, uint8_t mask, uint8_t state, uint8_t pen = 0)
    {
        TabletDataEX data{};
        data.eventFlags = kEventPen | kEventPenButtons;
        data.penStatus = status;
        data.penButtonMask = mask;
        data.penButtonState = state;
        data.penId = pen;
        report(data);
    }

    // Keys, buttons and wheel steps written since the last call, in time order; the tool and
    // touch bits of pen frames left out.
    std::vector<Ev> output()
    {
        std::vector<input_event> all;
        for (int node : {kPenNode, kMouseNode}) {
            const std::vector<input_event> fresh = rawEvents(node, m_seen[node]);
            m_seen[node] = bytes(node).size();
            all.insert(all.end(), fresh.begin(), fresh.end());
        }
        std::stable_sort(all.begin(), all.end(), [](const input_event &a, const input_event &b) {
            return std::tie(a.input_event_sec, a.input_event_usec) <
                   std::tie(b.input_event_sec, b.input_event_usec);
        });
        std::vector<Ev> result;
        for (const input_event &event : all) {
            const bool toolBit = event.code == BTN_TOOL_PEN || event.code == BTN_TOUCH ||
                                 event.code == BTN_TOOL_RUBBER;
            if ((event.type == EV_KEY && !toolBit) || event.type == EV_REL)
                result.push_back({event.type, event.code, event.value});
        }
        return result;
    }

    Texts tips()
    {
        Texts result;
        for (const QString &text : m_tip.texts)
            result.push_back(text.toStdString());
        m_tip.texts.clear();
        return result;
    }

    IntMsgs intMsgs()
    {
        IntMsgs result;
        for (const QList<QVariant> &call : *m_ints) {
            EXPECT_EQ(call[0].toInt(), 3);
            result.push_back({call[1].toInt(), call[2].toInt()});
        }
        m_ints->clear();
        return result;
    }

    TextMsgs textMsgs()
    {
        TextMsgs result;
        for (const QList<QVariant> &call : *m_texts) {
            EXPECT_EQ(call[0].toInt(), 3);
            result.push_back({call[1].toInt(), call[2].toString().toStdString()});
        }
        m_texts->clear();
        return result;
    }

    void forget()
    {
        output();
        tips();
        intMsgs();
        textMsgs();
    }

    RecordedTips m_tip;
    std::unique_ptr<CAction> m_action;
    std::unique_ptr<QSignalSpy> m_ints, m_texts;
    std::unique_ptr<stTablet_XMLData> m_settings = std::make_unique<stTablet_XMLData>();
    _DEVICE_ATTRIBUTES m_device{};
    QMap<QString, _stAppConfigNode *> m_apps;
    size_t m_seen[2] = {0, 0};
};

TEST_F(Functions, FunctionStrings)
{
    struct Case {
        const char *function;
        bool pressed;
        std::vector<Ev> out;
        Texts tips;
        IntMsgs ints;
    };
    const Case cases[] = {
        {"1|Copy|Ctrl+C|29:37+46:54", true, taps({29, 46}, true), {"Copy"}, {}},
        {"1|Copy|Ctrl+C|29:37+46:54", false, taps({29, 46}, false), {}, {}},
        {"1|ab|a,b|30:38,48:56", true, tap({30}) + tap({48}), {"ab"}, {}},
        {"1|ab|a,b|30:38,48:56", false, {}, {}, {}},
        // tokens without one colon are skipped, numbers that do not parse are 0, and codes
        // beyond 16 bits are not sent
        {"1|Ä名|k|29:37+46+1:2:3+x:y+99999999999:1+65566:1",
         true,
         taps({29, 0, 0}, true),
         {"Ä名"},
         {}},
        {"1|empty|k|", true, {}, {}, {}},
        {"1|three|29:37", true, {}, {"three"}, {}},
        {"0|four|a|29:37", true, {}, {"four"}, {}},
        {"7|other|x", true, {}, {"other"}, {}},
        {"1|five|a|29:37|x", true, {}, {}, {}},
        {"4|ring|a|b|29:37|30:38", true, {}, {}, {}},
        {"1|two", true, {}, {}, {}},
        {"", true, {}, {}, {}},
        {"3|Settings|1", true, {}, {"Settings"}, {{kMsgShowDriver, 1}}},
        {"3|Settings|1", false, {}, {}, {}},
        {"3|Mapping|2", true, {}, {"Mapping"}, {{kMsgScreenMapping, 0}}},
        {"3|Switch|3", true, {}, {"Eraser"}, {{kMsgPenEraser, 1}}},
        {"3|Fine|4", true, {}, {}, {{kMsgFineMode, 0}}},
        {"3|Pad|7", true, {}, {"Pad"}, {{kMsgTrackPad, 0}}},
        {"3|BE|9", true, tap({48}), {"[B]"}, {}},
        {"3|none|99999", true, {}, {"none"}, {}},
        {"3|empty|", true, {}, {}, {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.function << " " << c.pressed);
        run(c.function, c.pressed);
        EXPECT_EQ(output(), c.out);
        EXPECT_EQ(tips(), c.tips);
        EXPECT_EQ(intMsgs(), c.ints);
        EXPECT_EQ(textMsgs(), TextMsgs{});
    }
}

TEST_F(Functions, FieldWithoutNulIsReadToItsEndOnly)
{
    char field[kFuncSize + 16] = {};
    std::string text = "1|n|k|";
    while (text.size() < kFuncSize)
        text += "30:38+";
    text += "48:56";
    std::memcpy(field, text.data(), text.size());
    // The field's 1024 bytes hold 169 tokens and "30:3"; the rest, "8+48:56", is not read.
    m_action->ParseCustomFunction(field, true, 0);
    EXPECT_EQ(output(), std::vector<Ev>(170, Ev{EV_KEY, 30, 1}));
}

// Form 0 holds its ids in order and lets them go in reverse, 10 ms apart.
TEST_F(Functions, ModifierAndMouseIds)
{
    run("0|Drag|4+6", true);
    EXPECT_EQ(output(), (std::vector<Ev>{{EV_KEY, KEY_LEFTCTRL, 1}, {EV_KEY, BTN_LEFT, 1}}));
    EXPECT_EQ(tips(), Texts{"Drag"});
    run("0|Drag|4+6", false);
    EXPECT_EQ(output(), (std::vector<Ev>{{EV_KEY, BTN_LEFT, 0}, {EV_KEY, KEY_LEFTCTRL, 0}}));
    EXPECT_EQ(tips(), Texts{});
}

// The first id of a dispatch turns the wheel one step more, whatever id comes first.
TEST_F(Functions, FirstWheelIdOfADispatchStepsTwice)
{
    const std::pair<const char *, std::vector<Ev>> cases[] = {
        {"0|w|10+11", {kWheelUp, kWheelUp, kWheelDown}},
        {"0|w|11", {kWheelDown, kWheelDown}},
        {"0|w|1+10", {{EV_KEY, KEY_LEFTSHIFT, 1}, kWheelUp}},
    };
    common().Key[0] = {1, {}, 1, 0, 1};
    for (const auto &[function, out] : cases) {
        std::strcpy(common().Key[0].func, function);
        keys({1}, true);
        EXPECT_EQ(output(), out) << function;
    }
    run("0|w|10", true);
    EXPECT_EQ(output(), std::vector<Ev>{kWheelUp});
}

// Keys go down in the listed order and come up in the same order.
TEST_F(Functions, ActionLibraryKeys)
{
    const std::pair<int, std::vector<int>> cases[] = {
        {1, {48}},          {2, {18}},
        {3, {56}},          {4, {57}},
        {5, {29, 31}},      {6, {29, 44}},
        {7, {29, 56, 44}},  {8, {29, 42, 44}},
        {9, {47}},          {10, {38}},
        {11, {29, 24}},     {12, {29, 49}},
        {13, {29, 42, 49}}, {14, {29, 18}},
        {15, {33}},         {16, {32}},
        {17, {45}},         {18, {29, 111}},
        {19, {29, 46}},     {20, {29, 47}},
        {21, {29, 13}},     {22, {29, 12}},
        {23, {15}},         {24, {63}},
        {25, {26}},         {26, {27}},
        {201, {42}},        {202, {56}},
        {203, {100}},       {204, {29}},
        {205, {57}},        {206, {BTN_LEFT}},
        {207, {BTN_RIGHT}}, {208, {BTN_MIDDLE, BTN_STYLUS}},
    };
    for (const auto &[id, codes] : cases) {
        m_action->ActionLibrary(id, true, 0);
        EXPECT_EQ(output(), taps(codes, true)) << id;
        m_action->ActionLibrary(id, false, 0);
        EXPECT_EQ(output(), taps(codes, false)) << id;
    }
}

// Acts on the press only, unless the output on release says otherwise.
TEST_F(Functions, ActionLibraryCommands)
{
    struct Case {
        int id;
        std::vector<Ev> press, release;
        IntMsgs ints;
        TextMsgs texts;
    };
    std::vector<Case> cases = {
        {kActionDoubleClick, tap({BTN_LEFT}) + tap({BTN_LEFT}), {}, {}, {}},
        {kActionWheelUp, {kWheelUp}, {}, {}, {}},
        {kActionWheelDown, {kWheelDown}, {}, {}, {}},
        {kActionShowDriver, {}, {}, {{kMsgShowDriver, 1}}, {}},
        {kActionScreenMapping, {}, {}, {{kMsgScreenMapping, 0}}, {}},
        {kActionPenEraser, {}, {}, {{kMsgPenEraser, 1}}, {}},
        {kActionFineMode, {}, {}, {{kMsgFineMode, 0}}, {}},
        {kActionRing1, {}, {}, {}, {{kMsgRingFunctions, "common"}}},
        {kActionRing2, {}, {}, {}, {{kMsgRingFunctions + 1, "common"}}},
        {kActionTrackPad, {}, {}, {{kMsgTrackPad, 0}}, {}},
        {kActionPressBE, tap({48}), tap({18}), {}, {}},
        {kActionKeyGroup, {}, {}, {}, {{kMsgKeyGroup, "common"}}},
        {kActionKeyPreview, {}, {}, {}, {{kMsgKeyPreview, "common"}}},
    };
    for (int id : {-1, 0, 27, 100, 108, 112, 200, 212, 1000})
        cases.push_back({id, {}, {}, {}, {}});
    keys({}, true); // a report sets the current config
    for (const Case &c : cases) {
        SCOPED_TRACE(c.id);
        m_action->ActionLibrary(c.id, true, 0);
        EXPECT_EQ(output(), c.press);
        m_action->ActionLibrary(c.id, false, 0);
        EXPECT_EQ(output(), c.release);
        EXPECT_EQ(intMsgs(), c.ints);
        EXPECT_EQ(textMsgs(), c.texts);
    }
}

TEST_F(Functions, PenEraserSwitchAndToggle)
{
    m_action->ChangeBEKey(true, false);
    m_action->ChangeBEKey(false, false);
    m_action->ChangeBEKey(true, false);
    m_action->ChangeBEKey(true, true);
    EXPECT_EQ(intMsgs(), (IntMsgs{{kMsgPenEraser, 1}, {kMsgPenEraser, 0}}));
    EXPECT_EQ(tips(), (Texts{"Eraser", "Pen"}));
    for (bool pressed : {true, false, true, false})
        m_action->PressBEKey(pressed);
    EXPECT_EQ(output(), tap({48}) + tap({18}) + tap({18}) + tap({48}));
    EXPECT_EQ(tips(), (Texts{"[B]", "[E]", "[E]", "[B]"}));
}

TEST_F(Functions, NextKeyGroupSkipsDisabledGroups)
{
    struct Case {
        std::array<uint8_t, 4> enabled;
        int16_t from, to;
    };
    const Case cases[] = {
        {{1, 0, 1, 0}, 0, 2}, {{1, 0, 1, 0}, 2, 0}, {{0, 0, 0, 0}, 1, 1},
        {{0, 1, 0, 0}, 1, 1}, {{0, 0, 0, 1}, 7, 3},
    };
    keys({}, true);
    for (const Case &c : cases) {
        for (int group = 0; group < 4; ++group)
            common().KeyGroup[group].bEnable = c.enabled[group];
        common().SelectID = c.from;
        m_action->ChangeKeyFunctions(true);
        m_action->ChangeKeyFunctions(false);
        EXPECT_EQ(common().SelectID, c.to) << c.from;
        EXPECT_EQ(textMsgs(), (TextMsgs{{kMsgKeyGroup, "common"}}));
    }
}

// Temporary programs only: a script that writes its environment, and an opener that stands in
// for the desktop's, first in PATH.
TEST_F(Functions, ProgramStart)
{
    const QString folder = m_folder.path();
    const auto writeProgram = [](const QString &path, const QByteArray &text) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                            QFileDevice::ExeOwner | QFileDevice::ReadGroup | QFileDevice::ExeGroup);
    };
    const QByteArray quoted = "\"" + folder.toLocal8Bit();
    writeProgram(folder + "/run.sh", "#!/bin/sh\nenv > " + quoted + "/env.tmp\"\nmv " + quoted +
                                         "/env.tmp\" " + quoted + "/env.txt\"\n");
    writeProgram(folder + "/xdg-open", "#!/bin/sh\necho \"$1\" >> " + quoted + "/opened.txt\"\n");
    QFile(folder + "/notes.txt").open(QIODevice::WriteOnly);
    const QByteArray path = qgetenv("PATH");
    const QByteArray libraryPath = qgetenv("LD_LIBRARY_PATH");
    qputenv("PATH", folder.toLocal8Bit() + ":" + path);
    qputenv("LD_LIBRARY_PATH", "/nowhere");
    qputenv("SCRIBORA_TEST_MARK", "kept");
#if defined(__SANITIZE_ADDRESS__)
    __lsan_disable(); // the engine never deletes its processes
#endif
    for (bool pressed : {false, true}) {
        run(("2|Run|" + folder + "/run.sh").toUtf8(), pressed);
        run(("2|Doc|" + folder + "/notes.txt").toUtf8(), pressed);
    }
#if defined(__SANITIZE_ADDRESS__)
    __lsan_enable();
#endif
    qputenv("PATH", path);
    qputenv("LD_LIBRARY_PATH", libraryPath);
    qunsetenv("SCRIBORA_TEST_MARK");
    QFile environment(folder + "/env.txt");
    QFile opened(folder + "/opened.txt");
    QElapsedTimer timer;
    timer.start();
    while ((!environment.exists() || !opened.exists()) && timer.elapsed() < 10000) {
        QCoreApplication::processEvents();
        QThread::msleep(20);
    }
    ASSERT_TRUE(environment.open(QIODevice::ReadOnly));
    const QByteArray variables = environment.readAll();
    EXPECT_TRUE(variables.contains("SCRIBORA_TEST_MARK=kept\n")) << variables.toStdString();
    EXPECT_FALSE(variables.contains("LD_LIBRARY_PATH=")) << variables.toStdString();
    ASSERT_TRUE(opened.open(QIODevice::ReadOnly));
    EXPECT_EQ(opened.readAll(), folder.toUtf8() + "/notes.txt\n");
    EXPECT_EQ(tips(), (Texts{"Run", "Doc"}));
}

// Eight keys, record i answering key i + 1 with action 0.
TEST_F(Functions, KeyIndexFollowsRotation)
{
    struct Case {
        int16_t direction, orientation, groups;
        int key;
        short index;
        uint16_t state;
    };
    const Case cases[] = {
        {0, 2, 0, 1, 7, 1},
        {0, 1, 0, 1, 7, 1},
        {0, 0, 0, 1, 0, 1},
        {0, 3, 0, 3, 2, 1},
        {1, 1, 0, 1, 0, 1},
        {1, 2, 0, 2, 6, 1},
        {1, 3, 0, 8, 0, 1},
        {0, 2, 1, 1, 0, 1},
        // a key without record is mirrored from -1 to the key count
        {0, 2, 0, 20, 8, 1},
        {0, 0, 0, 20, 0, 0},
    };
    m_settings->DeviceKeyNum = 8;
    common().KeyGroup[0].bEnable = 1;
    for (short i = 0; i < 8; ++i)
        common().Key[i].Motid = common().KeyGroup[0].Key[i].Motid = i + 1;
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.direction << " " << c.orientation << " " << c.key);
        m_settings->DeviceKeyDirection = c.direction;
        m_settings->Orientation = c.orientation;
        m_settings->SupportGroupKeys = c.groups;
        const _MultiData out = keys({c.key}, true);
        EXPECT_EQ(out.keyIndex, c.index);
        EXPECT_EQ(out.keyState, c.state);
    }
    clearLogs();
    m_settings->Orientation = 0;
    EXPECT_EQ(keys({2, 5}, true).keyIndex, 4);
    const std::vector<LogLine> lines = logs();
    for (const char *line : {"KeyDown: 2", "KeyDown: 5", "id down: 1", "id down: 4"})
        EXPECT_NE(std::find(lines.begin(), lines.end(), LogLine{QtDebugMsg, line}), lines.end());
}

// Group 0 taps B, group 1 is off, group 2 taps E; each on key 1.
TEST_F(Functions, KeyGroups)
{
    m_settings->SupportGroupKeys = 1;
    for (int group : {0, 1, 2}) {
        common().KeyGroup[group].bEnable = group != 1;
        common().KeyGroup[group].Key[0] = {0, {}, 1, static_cast<int16_t>(group ? 2 : 1), 1};
    }
    common().SelectID = 1;
    keys({1}, true);
    keys({1}, false);
    EXPECT_EQ(output(), std::vector<Ev>{});
    EXPECT_EQ(textMsgs(), TextMsgs{});
    common().SelectID = 0;
    keys({1}, true);
    common().SelectID = 2;
    keys({1}, false);
    EXPECT_EQ(output(), taps({48}, 1) + taps({18}, 0));
    EXPECT_EQ(tips(), Texts{"A1"});
}

TEST_F(Functions, KeyTipsAndUsageRecords)
{
    common().Key[0] = {0, {}, 1, kActionKeyPreview, 1};
    common().Key[1] = {0, {}, 1, kActionKeyGroup, 2};
    common().Key[2] = {1, "3|Grp|10", 1, 0, 3};
    common().Key[3] = {1, "3|Sys|1", 1, 0, 4};
    common().KeyGroup[0].bEnable = common().KeyGroup[2].bEnable = 1;
    keys({1}, true);
    EXPECT_EQ(textMsgs(), (TextMsgs{{kMsgKeyPreview, "common"}}));
    keys({1}, false);
    EXPECT_EQ(textMsgs(),
              (TextMsgs{{kMsgUsage, "\"DoKeyAction\":{\"custom\":\"\",\"id\":\"0\",\"curapp\":"
                                    "\"common\",\"KeyID\":\"0\",\"TabletKeyState\":\"0\"}"}}));
    keys({2}, true);
    EXPECT_EQ(common().SelectID, 2);
    EXPECT_EQ(tips(), Texts{"A110-III"});
    EXPECT_EQ(textMsgs().size(), 2u);

    m_settings->DisableInfo = 1;
    for (int key : {1, 3, 4}) {
        keys({key}, true);
        keys({key}, false);
    }
    EXPECT_EQ(common().SelectID, 0);
    EXPECT_EQ(tips(), (Texts{"Grp-I", "Grp-I"}));
    EXPECT_EQ(intMsgs(), (IntMsgs{{kMsgShowDriver, 1}}));
    const TextMsgs texts = textMsgs();
    EXPECT_EQ(
        std::count_if(texts.begin(), texts.end(), [](auto &m) { return m.first == kMsgUsage; }), 6);
}

// Button 0 taps V, 1 taps B, 2 taps E.
TEST_F(Functions, PenButtons)
{
    struct Case {
        uint8_t status, mask, state;
        std::vector<Ev> out;
    };
    const Case cases[] = {
        {kTouch, 3, 1, taps({48}, 1)},
        {kEraserTouch, 3, 1, taps({47, 48}, 1)},
        {kHover, 4, 0, taps({18}, 0)},
        {kHover, 1, 1, {}},
    };
    for (int button = 0; button < 3; ++button)
        common().Pen[0].PenBtn[button].Actid = static_cast<int16_t>(button == 0 ? 9 : button);
    for (const Case &c : cases) {
        penButtons(c.status, c.mask, c.state);
        EXPECT_EQ(output(), c.out) << int(c.status) << " " << int(c.mask);
    }
    forget();
    const std::pair<int16_t, Texts> tipCases[] = {
        {1, {"A1"}}, {27, {}}, {127, {}}, {kActionPenEraser, {"Eraser"}}, {72, {"A72"}}};
    for (const auto &[id, expected] : tipCases) {
        common().Pen[7].PenBtn[1].Actid = id;
        penButtons(kHover, 2, 1, 7);
        EXPECT_EQ(tips(), expected) << id;
    }
    EXPECT_EQ(textMsgs().back(), (std::pair<int, std::string>{
                                     kMsgUsage, "\"DoPenBtnAction\":{\"custom\":\"\",\"id\":\"0\","
                                                "\"curapp\":\"common\",\"PenID\":\"7\","
                                                "\"PenKeyState\":\"1\"}"}));
}

TEST_F(Functions, RingKinds)
{
    struct Case {
        short wheel;
        int16_t type, item;
        short direction;
        std::vector<Ev> out;
        Texts tips;
    };
    const Case cases[] = {
        {0, 0, 0, 1, tap({29, 13}), {"R1"}},
        {0, 0, 0, -1, tap({29, 12}), {"R1"}},
        {0, 0, 1, 1, {kWheelUp}, {"R2"}},
        {0, 0, 2, -1, tap({27}), {"R3"}},
        {1, 0, 0, 1, taps({56, 183}, 1) + taps({56, 56}, 0), {"R4"}},
        {1, 0, 0, -1, taps({56, 184}, 1) + taps({56, 184}, 0), {"R4"}},
        {0, 1, 1, 1, tap({26}), {"R3"}},
        {1, 1, 2, 1, {kWheelUp}, {"R2"}},
        {0, 3, 3, -1, tap({29, 12}), {"R1"}},
        {0, 3, 0, 1, {kWheelUp}, {"R2"}},
        {1, 3, 0, 1, tap({29, 13}), {}}, // t = 4 takes the item as the kind, with no tip
        {0, 0, 0, 2, {}, {"R1"}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.wheel << " " << c.type << " " << c.item);
        common().Ring[c.wheel].type = c.type;
        common().Ring[c.wheel].id = c.item;
        wheel(c.wheel, c.direction);
        EXPECT_EQ(output(), c.out);
        EXPECT_EQ(tips(), c.tips);
    }
    common().Ring[0].mode = 1;
    common().Ring[0].id = 0;
    wheel(0, 1);
    EXPECT_EQ(tips(), Texts{});
    EXPECT_EQ(textMsgs().back(), (std::pair<int, std::string>{
                                     kMsgUsage, "\"DoRingAction\":{\"custom\":\"\",\"id\":\"0\","
                                                "\"curapp\":\"common\",\"RingID\":\"0\","
                                                "\"RingDirection\":\"1\"}"}));
}

TEST_F(Functions, SlowRingsShareOneRateLimit)
{
    wheel(0, 1); // a fast step leaves the flag set
    common().Ring[0].Speed = common().Ring[1].Speed = 1;
    forget();
    for (short step : {0, 1, 0, 1}) {
        wheel(step, 1);
        EXPECT_EQ(textMsgs().size(), step == 1 ? 1u : 0u) << step;
    }
}

TEST_F(Functions, CustomRingFunctions)
{
    std::strcpy(common().Ring[1].Item[0].func, "4|Brush|a|b||48:56");
    common().Ring[1].Item[0].id = 2;
    wheel(1, -1);
    EXPECT_EQ(output(), std::vector<Ev>{});
    wheel(1, 1);
    EXPECT_EQ(output(), tap({48}));
    EXPECT_EQ(tips(), Texts{"Brush"});
    std::strcpy(common().Ring[1].Item[0].func, "1|Brush|b|48:56");
    wheel(1, 1);
    EXPECT_EQ(output(), std::vector<Ev>{});
    EXPECT_EQ(textMsgs().size(), 3u);
}

} // namespace
