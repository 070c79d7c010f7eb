#include "actionids.h"
#include "eventprinter.h"
#include "uinputfixture.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <regex>
#include <sstream>
#include <sys/time.h>

// Runs myinput_cases.txt: each case opens the three devices (some may fail to open), makes
// the calls it lists and compares what the devices received, as the replay tool prints it,
// device by device, then "last" and the last device; the log too ("log I text", "log D
// text") where the case calls "log". Every write must be one whole report with one time,
// taken when it is written; "zero-time" says a write carries none.
namespace
{

const char *const kNodeNames[] = {"pen", "mouse", "eraser"};

struct Script {
    std::string name;
    std::vector<std::string> calls;
    std::vector<std::string> expected;
};

std::vector<Script> readScripts()
{
    std::vector<Script> scripts;
    std::ifstream in(MYINPUT_CASES);
    bool expecting = false;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        if (line.rfind("case ", 0) == 0) {
            scripts.push_back({line.substr(5), {}, {}});
            expecting = false;
        } else if (line == "expect:") {
            expecting = true;
        } else if (!scripts.empty()) {
            (expecting ? scripts.back().expected : scripts.back().calls).push_back(line);
        }
    }
    return scripts;
}

int descriptor(const MyInput &input, const std::string &device)
{
    return device == "pen" ? input.absFd() : device == "mouse" ? input.relFd() : 0;
}

void call(MyInput &input, const std::string &line)
{
    std::istringstream in(line);
    std::string verb, text;
    int a = 0, b = 0, c = 0, d = 0, e = 0, f = 0;
    in >> verb;
    if (verb == "digit") {
        in >> text >> a >> b >> c >> d >> e >> f;
        input.UpdateDigit(std::stoi(text, nullptr, 16), a, b, c, d, e, f);
    } else if (verb == "rel") {
        in >> a >> b >> c;
        input.UpdateRelMouse(a, b, c);
    } else if (verb == "wheel") {
        in >> text >> a;
        input.UpdateWheelRel(descriptor(input, text), a);
    } else if (verb == "key") {
        in >> a >> b;
        input.KeyEvent(a, b);
    } else if (verb == "mouse") {
        in >> a >> b >> c;
        input.DoMouseFunc(a, b, c);
    } else if (verb == "library") {
        in >> a >> b;
        input.ActionLibrary(a, b);
    } else if (verb == "ring") {
        in >> a >> b;
        input.RingActionLibrary(a, b);
    } else {
        ADD_FAILURE() << "unknown call: " << line;
    }
}

class MyInputCases : public UinputTest
{
protected:
    // The events of each device as printed lines; checks how they were written.
    std::vector<std::string> written(const timeval &before)
    {
        char *text = nullptr;
        size_t size = 0;
        FILE *out = open_memstream(&text, &size);
        EventPrinter printer(out);
        bool zeroTime = false;
        for (int node = 0; node < 3; ++node) {
            if (!fakeuinput::nodeOpened(node))
                continue;
            const std::vector<input_event> all = rawEvents(node);
            size_t first = 0;
            for (size_t bytes : fakeuinput::writeSizes(node)) {
                const std::vector<input_event> one(
                    all.begin() + first, all.begin() + first + bytes / sizeof(input_event));
                first += one.size();
                EXPECT_TRUE(sameTime(one) && one.back().type == EV_SYN) << kNodeNames[node];
                zeroTime |= one.front().input_event_sec == 0 && one.front().input_event_usec == 0;
                EXPECT_TRUE(zeroTime || one.front().input_event_sec >= before.tv_sec);
            }
            for (const input_event &event : all)
                printer.printEvent(kNodeNames[node], event);
        }
        std::fclose(out);
        std::vector<std::string> lines;
        std::istringstream in(std::string(text, size));
        std::free(text);
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        if (zeroTime)
            lines.push_back("zero-time");
        return lines;
    }
};

TEST_F(MyInputCases, Run)
{
    const std::vector<Script> scripts = readScripts();
    ASSERT_FALSE(scripts.empty()) << MYINPUT_CASES;
    for (const Script &script : scripts) {
        SCOPED_TRACE(script.name);
        fakeuinput::start(m_folder.path().toStdString());
        for (const std::string &line : script.calls) {
            if (line.rfind("fail ", 0) == 0)
                fakeuinput::setOpenFailures(line == "fail pen" ? 1 : 4);
        }
        initDevices();
        timeval before{};
        gettimeofday(&before, nullptr);
        for (const std::string &line : script.calls) {
            if (line.rfind("fail ", 0) != 0 && line != "log")
                call(*m_input, line);
        }
        std::vector<std::string> actual = written(before);
        actual.push_back("last " + std::to_string(m_input->lastDevice()));
        const bool withLog =
            std::any_of(script.expected.begin(), script.expected.end(),
                        [](const std::string &l) { return l.rfind("log ", 0) == 0; });
        for (const LogLine &line : withLog ? logs() : std::vector<LogLine>{})
            actual.push_back(std::string("log ") + (line.type == QtInfoMsg ? "I " : "D ") +
                             line.text);
        EXPECT_EQ(actual, script.expected);
        EXPECT_EQ(fakeuinput::strayCalls(), 0);
        m_input.reset();
    }
}

using MouseFunctions = UinputTest;

TEST_F(MouseFunctions, RightButtonLogsItsStateAndTime)
{
    initDevices();
    m_input->DoMouseFunc(kMouseRightClick, true, false);
    m_input->DoMouseFunc(kMouseRightClick, false, false);
    const std::vector<LogLine> lines = logs();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], (LogLine{QtInfoMsg, "DoMouseFunc 2 true"}));
    for (int i : {1, 2}) {
        EXPECT_EQ(lines[i].type, QtDebugMsg);
        const std::string state = i == 1 ? "true" : "false";
        EXPECT_TRUE(std::regex_match(lines[i].text,
                                     std::regex("BTN_RIGHT " + state + " \\d\\d:\\d\\d:\\d\\d\\d")))
            << lines[i].text;
    }
}

TEST_F(MouseFunctions, DoubleClickPauses)
{
    initDevices();
    const auto start = std::chrono::steady_clock::now();
    m_input->DoMouseFunc(kMouseDoubleClick, true, false);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
}

} // namespace
