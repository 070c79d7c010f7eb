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
#include <fstream>
#include <libevdev/libevdev.h>
#include <map>
#include <sstream>
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

// Runs cactionfunctions_cases.txt: a case lists "> command" lines, each followed by what it
// gives: events ("EV_KEY KEY_C 1"; no tool, touch, axis or frame events), then "tip TEXT",
// "msg ID VALUE", "text ID VALUE". "compare:" names the kinds a case checks.
struct Script {
    std::string name;
    std::string compared;
    std::vector<std::pair<std::string, std::vector<std::string>>> steps;
};

void PrintTo(const Script &script, std::ostream *out)
{
    *out << script.name;
}

std::vector<Script> readScripts()
{
    std::vector<Script> scripts;
    std::ifstream in(CACTION_CASES);
    if (!in) // a case that fails, naming the file
        scripts.push_back({"NoCases", "", {{"read " CACTION_CASES, {"-"}}}});
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        if (line.rfind("case ", 0) == 0)
            scripts.push_back({line.substr(5), "events tips msgs texts", {}});
        else if (line.rfind("compare: ", 0) == 0)
            scripts.back().compared = line.substr(9);
        else if (line.rfind("> ", 0) == 0)
            scripts.back().steps.push_back({line.substr(2), {}});
        else
            scripts.back().steps.back().second.push_back(line);
    }
    return scripts;
}

class Scripted : public Functions, public ::testing::WithParamInterface<Script>
{
protected:
    // Sets a field of the settings or calls the engine, as the command says.
    void command(const std::string &line)
    {
        std::istringstream in(line);
        std::string verb, text;
        int a = 0, b = 0, c = 0, d = 0, e = 0;
        in >> verb;
        const std::streampos start = in.tellg();
        if (!(in >> a)) { // the command's first word is no number
            in.clear();
            in.seekg(start);
        }
        const auto rest = [&in]() {
            std::string text;
            std::getline(in >> std::ws, text);
            return text;
        };
        if (verb == "func") {
            run(QByteArray::fromStdString(rest()), a);
        } else if (verb == "library") {
            in >> b;
            m_action->ActionLibrary(a, b, 0);
        } else if (verb == "keys" || verb == "keyindex") {
            std::vector<int> numbers;
            while (in >> b)
                numbers.push_back(b);
            TabletDataEX data{};
            data.eventFlags = kEventKeys;
            for (int number : numbers) {
                data.keys.current[number - 1] = a;
                data.keys.previous[number - 1] = !a;
            }
            const _MultiData out = report(data);
            if (verb == "keyindex")
                m_shown.push_back("index " + std::to_string(out.keyIndex) + " state " +
                                  std::to_string(out.keyState));
        } else if (verb == "wheel") {
            in >> b;
            wheel(a, b);
        } else if (verb == "pen") {
            in >> b >> c >> d;
            penButtons(a, b, c, d);
        } else if (verb == "bekey") {
            in >> b;
            m_action->ChangeBEKey(a, b);
        } else if (verb == "pressbe") {
            m_action->PressBEKey(a);
        } else if (verb == "group") {
            m_action->ChangeKeyFunctions(a);
        } else if (verb == "key" || verb == "groupkey") {
            in >> b >> c >> d;
            if (verb == "groupkey")
                in >> e;
            stKeyConfig &key = verb == "key" ? common().Key[a] : common().KeyGroup[a].Key[b];
            key = verb == "key" ? stKeyConfig{int16_t(b), {}, 1, int16_t(c), int16_t(d)}
                                : stKeyConfig{int16_t(c), {}, 1, int16_t(d), int16_t(e)};
            std::strcpy(key.func, rest().c_str());
        } else if (verb == "enable") {
            in >> b;
            common().KeyGroup[a].bEnable = b;
        } else if (verb == "select") {
            common().SelectID = a;
        } else if (verb == "forget") {
            forget();
        } else if (verb == "selected") {
            m_shown.push_back("select " + std::to_string(common().SelectID));
        } else if (verb == "setting") {
            static const std::map<std::string, int16_t stTablet_XMLData::*> fields = {
                {"keys", &stTablet_XMLData::DeviceKeyNum},
                {"direction", &stTablet_XMLData::DeviceKeyDirection},
                {"orientation", &stTablet_XMLData::Orientation},
                {"groups", &stTablet_XMLData::SupportGroupKeys}};
            in >> text >> b;
            m_settings.get()->*fields.at(text) = b;
        } else if (verb == "clearlog") {
            clearLogs();
        } else if (verb == "logged") {
            const std::vector<LogLine> lines = logs();
            const LogLine wanted{QtDebugMsg, rest()};
            EXPECT_NE(std::find(lines.begin(), lines.end(), wanted), lines.end()) << wanted.text;
        } else if (verb == "ring") {
            in >> b >> c >> d;
            common().Ring[a] = {};
            common().Ring[a].type = b;
            common().Ring[a].id = c;
            common().Ring[a].mode = d;
        } else if (verb == "ringitem") {
            in >> b >> c;
            common().Ring[a].Item[b].id = c;
            std::strcpy(common().Ring[a].Item[b].func, rest().c_str());
        } else if (verb == "penbtn") {
            in >> b >> c;
            common().Pen[a].PenBtn[b].Actid = c;
        } else {
            ADD_FAILURE() << "unknown command: " << line;
        }
    }

    std::vector<std::string> m_shown;

    std::vector<std::string> given(const std::string &compared)
    {
        std::vector<std::string> lines;
        lines.swap(m_shown);
        for (const Ev &event : output()) {
            const char *name = libevdev_event_code_get_name(event.type, event.code);
            lines.push_back(std::string(event.type == EV_KEY ? "EV_KEY " : "EV_REL ") +
                            (name ? name : std::to_string(event.code)) + " " +
                            std::to_string(event.value));
        }
        for (const std::string &tip : tips())
            lines.push_back("tip " + tip);
        for (const auto &[id, value] : intMsgs())
            lines.push_back("msg " + std::to_string(id) + " " + std::to_string(value));
        for (const auto &[id, value] : textMsgs())
            lines.push_back("text " + std::to_string(id) + " " + value);
        const std::string kinds[] = {"EV_", "tip ", "msg ", "text "};
        const std::string words[] = {"events", "tips", "msgs", "texts"};
        for (int kind = 0; kind < 4; ++kind) {
            if (compared.find(words[kind]) != std::string::npos)
                continue;
            lines.erase(
                std::remove_if(lines.begin(), lines.end(),
                               [&](const std::string &l) { return l.rfind(kinds[kind], 0) == 0; }),
                lines.end());
        }
        return lines;
    }
};

// A command without lines after it adds what it gives to the next one's; "-" is nothing.
TEST_P(Scripted, Steps)
{
    for (const auto &[line, expected] : GetParam().steps) {
        command(line);
        if (expected.empty())
            continue;
        const bool nothing = expected == std::vector<std::string>{"-"};
        EXPECT_EQ(given(GetParam().compared), nothing ? std::vector<std::string>{} : expected)
            << line;
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, Scripted, ::testing::ValuesIn(readScripts()),
                         [](const auto &info) { return info.param.name; });

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

TEST_F(Functions, RingUsageRecord)
{
    common().Ring[0].mode = 1;
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

} // namespace
