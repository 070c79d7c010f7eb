#include "capturedlog.h"
#include "fakeuinput.h"
#include "myinput.h"

#include <QTemporaryDir>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using Calls = std::set<std::string>;
using Logs = std::vector<std::string>;

const std::string kOpenOk = "log D open uinput ok \n";
const std::string kOpenFailed = "log D open uinput failed \n";
const std::string kOldKernel = "log I driver ver < 5";
const std::string kShortRecord = "log D Error initializing the input device.\n";

// creation_calls.txt by section, "modern 0" to "old 2".
std::map<std::string, Calls> readCalls()
{
    std::map<std::string, Calls> sets;
    std::ifstream in(CREATION_CALLS);
    std::string section;
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::string kind, bit;
        words >> kind;
        if (line.empty() || line[0] == '#')
            continue;
        if (line[0] == '[')
            section = line.substr(1, line.size() - 2);
        else if (kind.find("BIT") == std::string::npos)
            sets[section].insert(line);
        while (kind.find("BIT") != std::string::npos && words >> bit)
            sets[section].insert(kind + " " + bit);
    }
    return sets;
}

const std::map<std::string, Calls> kCalls = readCalls();

// What the node was asked, as a set, against its section.
void expectCalls(const std::string &protocol, int node, bool created = true)
{
    const std::vector<std::string> &calls = fakeuinput::state().nodes.at(node).calls;
    Calls wanted = kCalls.at(protocol + " " + std::to_string(node));
    if (!created)
        wanted.erase("DEV_CREATE");
    EXPECT_EQ(Calls(calls.begin(), calls.end()), wanted) << node;
}

class Creation : public ::testing::Test
{
protected:
    void TearDown() override
    {
        m_input.reset();
        fakeuinput::stop();
    }

    void make(int version, unsigned openFailures = 0)
    {
        m_input.reset();
        fakeuinput::start(m_folder.path().toStdString());
        fakeuinput::state().version = version;
        fakeuinput::state().openFailures = openFailures;
        capturedlog::install();
        m_input = std::make_unique<MyInput>();
    }

    auto fds() const { return std::tuple(m_input->absFd(), m_input->relFd(), m_input->eraserFd()); }

    QTemporaryDir m_folder;
    std::unique_ptr<MyInput> m_input;
};

// A failing version query takes the old path too; the pen tells nothing when its open fails,
// and the other devices still open.
TEST_F(Creation, InitOpensAndSetsUpPenMouseEraser)
{
    const struct {
        int version;
        unsigned openFailures;
        const char *protocol;
        Logs logs;
    } cases[] = {{5, 0, "modern", {kOpenOk, kOpenOk, kOpenOk}},
                 {4, 0, "old", {kOldKernel, kOpenOk, kOpenOk, kOpenOk}},
                 {-1, 0, "old", {kOldKernel, kOpenOk, kOpenOk, kOpenOk}},
                 {5, 0b001, "modern", {kOpenOk, kOpenOk}}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.version);
        make(c.version, c.openFailures);
        EXPECT_EQ(m_input->Init(), 1);
        const std::vector<fakeuinput::Node> &nodes = fakeuinput::state().nodes;
        ASSERT_EQ(nodes.size(), 3u);
        for (int node = int(c.openFailures); node < 3; ++node) {
            EXPECT_EQ(nodes[node].flags, O_WRONLY | O_NONBLOCK);
            expectCalls(c.protocol, node);
            EXPECT_EQ(nodes[node].calls.back(), "DEV_CREATE");
        }
        EXPECT_EQ(fds(), std::tuple(std::max(nodes[0].fd, 0), nodes[1].fd, nodes[2].fd));
        EXPECT_EQ(m_input->lastDevice(), 0);
        EXPECT_EQ(capturedlog::lines(), c.logs);
    }
}

TEST_F(Creation, ShortRecordWriteFailsAndKeepsTheDescriptor)
{
    make(4);
    fakeuinput::state().writeLimit = 1000;
    EXPECT_EQ(m_input->OpenAbsUinput(), 0);
    EXPECT_EQ(m_input->OpenRelUinput(), 0);
    EXPECT_EQ(m_input->OpenAbsEraserUinput(), 0);
    const std::vector<fakeuinput::Node> &nodes = fakeuinput::state().nodes;
    for (int node = 0; node < 3; ++node)
        expectCalls("old", node, false);
    EXPECT_EQ(fds(), std::tuple(nodes[0].fd, nodes[1].fd, nodes[2].fd));
    EXPECT_EQ(capturedlog::lines(), (Logs{kOldKernel, kShortRecord, kShortRecord, kShortRecord}));
    m_input->CloseUinput();
    EXPECT_EQ(fakeuinput::state().nodes[0].calls.back(), "DEV_DESTROY");
    EXPECT_EQ(m_input->absFd(), 0);
}

// The pen tells nothing when its open fails; closing leaves devices that did not open alone.
// (What they are sent is dropped: the driver cases.)
TEST_F(Creation, FailedOpensLeaveZeroDescriptorsAndDropEverything)
{
    make(5, 0b111);
    EXPECT_EQ(m_input->OpenAbsUinput(), 0);
    EXPECT_EQ(m_input->OpenRelUinput(), 0);
    EXPECT_EQ(m_input->OpenAbsEraserUinput(), 0);
    make(5, 0b111);
    EXPECT_EQ(m_input->Init(), 1);
    EXPECT_EQ(fds(), std::tuple(0, 0, 0));
    EXPECT_EQ(fakeuinput::state().nodes.size(), 3u);
    EXPECT_EQ(capturedlog::lines(), (Logs{kOpenFailed, kOpenFailed}));
    m_input->CloseUinput();
    EXPECT_EQ(fakeuinput::state().strayCalls, 0);
}

TEST_F(Creation, CloseDestroysAndClosesOnceAsDoesTheDestructor)
{
    for (bool destructor : {false, true}) {
        make(5);
        m_input->Init();
        if (destructor) {
            m_input.reset();
        } else {
            m_input->CloseUinput();
            m_input->CloseUinput();
            EXPECT_EQ(fds(), std::tuple(0, 0, 0));
        }
        for (const fakeuinput::Node &node : fakeuinput::state().nodes) {
            EXPECT_EQ(node.calls.back(), "DEV_DESTROY");
            EXPECT_EQ(std::count(node.calls.begin(), node.calls.end(), "DEV_DESTROY"), 1);
            errno = 0;
            EXPECT_EQ(fcntl(node.fd, F_GETFD), -1) << "descriptor still open";
            EXPECT_EQ(errno, EBADF);
        }
        EXPECT_EQ(fakeuinput::state().strayCalls, 0);
    }
}

// A device answers for exactly the bits it asked uinput for.
TEST_F(Creation, DeclaresWhatTheModernSetUpAsked)
{
    make(5);
    m_input->Init();
    const std::pair<uint16_t, std::string> kinds[] = {
        {EV_KEY, "KEYBIT "}, {EV_ABS, "ABSBIT "}, {EV_REL, "RELBIT "}};
    for (const fakeuinput::Node &node : fakeuinput::state().nodes) {
        const Calls calls(node.calls.begin(), node.calls.end());
        for (const auto &[type, bit] : kinds) {
            const bool typeAsked = calls.count("EVBIT " + std::to_string(type)) != 0;
            for (uint16_t code = 0; code <= KEY_MAX; ++code) {
                const bool asked = typeAsked && calls.count(bit + std::to_string(code)) != 0;
                EXPECT_EQ(m_input->Declares(node.fd, type, code), asked) << bit << code;
            }
        }
    }
}

// The remembered tool is process-wide and starts at 0, and no test here writes a frame: each
// leave runs in a child forked from that fresh state, with only the watched device open.
// What that device got, as (code, value) pairs.
std::vector<std::pair<int, int>> firstLeave(bool eraser, bool watchEraser)
{
    const int fd = memfd_create("device", 0);
    if (fork() == 0) {
        MyInput input;
        input.AttachDevices(watchEraser ? 0 : fd, 0, watchEraser ? fd : 0);
        input.UpdateDigit(0xC0, 11, 22, 333, 4, -5, eraser);
        input.AttachDevices(0, 0, 0);
        _exit(0);
    }
    wait(nullptr);
    std::vector<std::pair<int, int>> events;
    input_event event{};
    for (off_t at = 0; pread(fd, &event, sizeof event, at) == sizeof event; at += sizeof event)
        events.push_back({event.code, event.value});
    close(fd);
    return events;
}

TEST(FirstFrame, LeaveBeforeAnyFrameFollowsTheEraserFlag)
{
    const auto frame = [](int tool) {
        return std::vector<std::pair<int, int>>{
            {tool, 0},       {ABS_X, 11},      {ABS_Y, 22},    {ABS_PRESSURE, 0},
            {ABS_TILT_X, 4}, {ABS_TILT_Y, -5}, {BTN_TOUCH, 0}, {SYN_REPORT, 0}};
    };
    EXPECT_EQ(firstLeave(false, false), frame(BTN_TOOL_PEN));
    EXPECT_TRUE(firstLeave(false, true).empty());
    EXPECT_TRUE(firstLeave(true, false).empty());
    EXPECT_EQ(firstLeave(true, true), frame(BTN_TOOL_RUBBER));
}

} // namespace
