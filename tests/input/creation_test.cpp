#include "actionids.h"
#include "fakeuinput.h"
#include "myinput.h"

#include <QTemporaryDir>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <sstream>

namespace
{

using Calls = std::set<std::string>;
using Logs = std::vector<std::string>;

const std::string kOpenOk = "D open uinput ok \n";
const std::string kOpenFailed = "D open uinput failed \n";
const std::string kOldKernel = "I driver ver < 5";
const std::string kShortRecord = "D Error initializing the input device.\n";

Logs &logLines()
{
    static Logs lines;
    return lines;
}

void captureLog(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    logLines().push_back((type == QtInfoMsg ? "I " : "D ") + text.toStdString());
}

// "EVBIT 0 1, KEYBIT 320-322": one call per bit.
Calls bits(const std::string &spec)
{
    Calls result;
    std::istringstream groups(spec);
    for (std::string group; std::getline(groups, group, ',');) {
        std::istringstream words(group);
        std::string kind, range;
        words >> kind;
        while (words >> range) {
            const size_t dash = range.find('-');
            const int first = std::stoi(range.substr(0, dash));
            const int last = dash == std::string::npos ? first : std::stoi(range.substr(dash + 1));
            for (int bit = first; bit <= last; ++bit)
                result.insert(kind + " " + std::to_string(bit));
        }
    }
    return result;
}

Calls operator+(Calls a, const Calls &b)
{
    a.insert(b.begin(), b.end());
    return a;
}

Calls setup(const std::string &name)
{
    return {"GET_VERSION", "DEV_CREATE", "DEV_SETUP '" + name + "' 3 5a3c 2 100"};
}

const Calls kPenAxes =
    bits("EVBIT 0 1 3, ABSBIT 0 1 24 26 27") +
    Calls{"ABS_SETUP 0 0 52324 200", "ABS_SETUP 1 0 29600 200", "ABS_SETUP 24 0 8191 0",
          "ABS_SETUP 26 -63 64 0", "ABS_SETUP 27 -63 64 0"};
// Version 5 is the first modern one; the eraser has no wheel axis.
const Calls kModern[] = {
    setup("NORVA Pen") + kPenAxes + Calls{"ABS_SETUP 8 0 71 0"} +
        bits("KEYBIT 320-322 330 331 177 178 272-274"),
    setup("NORVA Mouse") + bits("EVBIT 0 1 2, RELBIT 0 1 8, KEYBIT 0-256 272-274"),
    setup("NORVA Eraser") + kPenAxes + bits("KEYBIT 321 330 331 272-274"),
};
// The old protocol sets no axes up by ioctl: they are in the record written before creation,
// without the wheel and without resolutions.
const Calls kOldRanges = {"RECORD_ABS 0 0 52324 0", "RECORD_ABS 1 0 29600 0",
                          "RECORD_ABS 24 0 8191 0", "RECORD_ABS 26 -63 64 0",
                          "RECORD_ABS 27 -63 64 0"};
const Calls kOld[] = {
    Calls{"GET_VERSION"} + bits("EVBIT 0 1 3, ABSBIT 0 1 24 26 27, KEYBIT 320-328 330 331 272-274"),
    Calls{"GET_VERSION"} + bits("EVBIT 0 1 2, RELBIT 0 1 8, KEYBIT 0-256 272-274"),
    Calls{"GET_VERSION"} + bits("EVBIT 0 1 3, ABSBIT 0 1 24 26 27, KEYBIT 320-335 272-274"),
};
const Calls kOldRecords[] = {
    Calls{"RECORD 'NORVA Pen' 3 5a3c 2 1"} + kOldRanges,
    Calls{"RECORD 'NORVA Mouse' 3 5a3c 2 1"},
    Calls{"RECORD 'NORVA Eraser' 3 5a3c 2 1"} + kOldRanges,
};

class Creation : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.isValid());
        logLines().clear();
        m_previousHandler = qInstallMessageHandler(captureLog);
    }

    void TearDown() override
    {
        m_input.reset();
        fakeuinput::stop();
        qInstallMessageHandler(m_previousHandler);
    }

    void make(int version, unsigned openFailures = 0)
    {
        m_input.reset();
        fakeuinput::start(m_folder.path().toStdString());
        fakeuinput::options().version = version;
        fakeuinput::options().openFailures = openFailures;
        logLines().clear();
        m_input = std::make_unique<MyInput>();
    }

    static Calls callSet(int node)
    {
        const std::vector<std::string> &calls = fakeuinput::nodes().at(node).calls;
        return Calls(calls.begin(), calls.end());
    }

    static std::string lastCall(int node) { return fakeuinput::nodes().at(node).calls.back(); }

    void expectDescriptors(int pen, int mouse, int eraser)
    {
        EXPECT_EQ(std::tuple(m_input->absFd(), m_input->relFd(), m_input->eraserFd()),
                  std::tuple(pen, mouse, eraser));
    }

    QTemporaryDir m_folder;
    QtMessageHandler m_previousHandler = nullptr;
    std::unique_ptr<MyInput> m_input;
};

TEST_F(Creation, ModernInitOpensAndSetsUpPenMouseEraser)
{
    make(5);
    EXPECT_EQ(m_input->Init(), 1);
    ASSERT_EQ(fakeuinput::nodes().size(), 3u);
    for (int node = 0; node < 3; ++node) {
        EXPECT_EQ(fakeuinput::nodes()[node].flags, O_WRONLY | O_NONBLOCK);
        EXPECT_EQ(callSet(node), kModern[node]) << node;
        EXPECT_EQ(lastCall(node), "DEV_CREATE");
    }
    const std::vector<fakeuinput::Node> &nodes = fakeuinput::nodes();
    expectDescriptors(nodes[0].fd, nodes[1].fd, nodes[2].fd);
    EXPECT_EQ(m_input->lastDevice(), 0);
    EXPECT_EQ(logLines(), (Logs{kOpenOk, kOpenOk, kOpenOk}));
}

// A failing version query takes the old path too.
TEST_F(Creation, OldProtocolWritesARecordThenCreates)
{
    for (int version : {4, -1}) {
        make(version);
        EXPECT_EQ(m_input->Init(), 1);
        for (int node = 0; node < 3; ++node) {
            EXPECT_EQ(callSet(node), kOld[node] + kOldRecords[node] + Calls{"DEV_CREATE"})
                << version << " " << node;
            EXPECT_EQ(lastCall(node), "DEV_CREATE");
        }
        if (version == 4) {
            EXPECT_EQ(logLines(), (Logs{kOldKernel, kOpenOk, kOpenOk, kOpenOk}));
        }
    }
}

TEST_F(Creation, ShortRecordWriteFailsAndKeepsTheDescriptor)
{
    make(4);
    fakeuinput::options().writeLimit = 1000;
    EXPECT_EQ(m_input->OpenAbsUinput(), 0);
    EXPECT_EQ(m_input->OpenRelUinput(), 0);
    EXPECT_EQ(m_input->OpenAbsEraserUinput(), 0);
    const std::vector<fakeuinput::Node> &nodes = fakeuinput::nodes();
    for (int node = 0; node < 3; ++node)
        EXPECT_EQ(callSet(node), kOld[node] + kOldRecords[node]) << node;
    expectDescriptors(nodes[0].fd, nodes[1].fd, nodes[2].fd);
    EXPECT_EQ(logLines(), (Logs{kOldKernel, kShortRecord, kShortRecord, kShortRecord}));
    m_input->CloseUinput();
    EXPECT_EQ(lastCall(0), "DEV_DESTROY");
    EXPECT_EQ(m_input->absFd(), 0);
}

// The pen tells nothing when its open fails; devices that did not open drop everything.
TEST_F(Creation, FailedOpensLeaveZeroDescriptorsAndDropEverything)
{
    make(5, 0b111);
    EXPECT_EQ(m_input->OpenAbsUinput(), 0);
    EXPECT_EQ(m_input->OpenRelUinput(), 0);
    EXPECT_EQ(m_input->OpenAbsEraserUinput(), 0);
    make(5, 0b111);
    EXPECT_EQ(m_input->Init(), 1);
    expectDescriptors(0, 0, 0);
    EXPECT_EQ(fakeuinput::nodes().size(), 3u);
    EXPECT_EQ(logLines(), (Logs{kOpenFailed, kOpenFailed}));
    m_input->UpdateDigit(0xA1, 100, 200, 300, 1, 2, false);
    m_input->UpdateDigit(0xA1, 100, 200, 300, 1, 2, true);
    m_input->UpdateDigit(0xC0, 100, 200, 300, 1, 2, false);
    m_input->UpdateRelMouse(1, 3, 4);
    m_input->KeyEvent(30, true);
    for (int id = kMouseLeftClick; id <= kMouseWheelDown; ++id)
        m_input->DoMouseFunc(id, true, false);
    m_input->RingActionLibrary(1, true);
    m_input->CloseUinput();
    EXPECT_EQ(fakeuinput::strayCalls(), 0);
}

TEST_F(Creation, PenOpenFailureIsSilentAndOtherDevicesStillOpen)
{
    make(5, 0b001);
    EXPECT_EQ(m_input->Init(), 1);
    EXPECT_EQ(m_input->absFd(), 0);
    EXPECT_EQ(callSet(1), kModern[1]);
    EXPECT_EQ(callSet(2), kModern[2]);
    EXPECT_EQ(logLines(), (Logs{kOpenOk, kOpenOk}));
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
            expectDescriptors(0, 0, 0);
        }
        for (const fakeuinput::Node &node : fakeuinput::nodes()) {
            EXPECT_EQ(node.calls.back(), "DEV_DESTROY");
            EXPECT_EQ(std::count(node.calls.begin(), node.calls.end(), "DEV_DESTROY"), 1);
            errno = 0;
            EXPECT_EQ(fcntl(node.fd, F_GETFD), -1) << "descriptor still open";
            EXPECT_EQ(errno, EBADF);
        }
        EXPECT_EQ(fakeuinput::strayCalls(), 0);
    }
}

} // namespace
