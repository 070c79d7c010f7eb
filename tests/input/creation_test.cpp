#include "actionids.h"
#include "uinputfixture.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <sstream>
#include <unistd.h>

namespace
{

using Calls = std::set<std::string>;

const LogLine kOpenOk{QtDebugMsg, "open uinput ok \n"};
const LogLine kOpenFailed{QtDebugMsg, "open uinput failed \n"};
const LogLine kOldKernel{QtInfoMsg, "driver ver < 5"};
const LogLine kShortRecord{QtDebugMsg, "Error initializing the input device.\n"};

// "EVBIT 0 1, KEYBIT 320-322": one call per bit, as calls() describes them.
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

Calls setup(const char *name)
{
    return {"GET_VERSION", "DEV_CREATE",
            std::string("DEV_SETUP '") + name +
                "' bus=3 vendor=0x5a3c product=0x2 version=0x100 ff=0"};
}

const Calls kPenAxes =
    bits("EVBIT 0 1 3, ABSBIT 0 1 24 26 27") +
    Calls{absSetup(0, 0, 52324, 200), absSetup(1, 0, 29600, 200), absSetup(24, 0, 8191, 0),
          absSetup(26, -63, 64, 0), absSetup(27, -63, 64, 0)};
// Version 5 is the first modern one; the eraser has no wheel axis.
const Calls kModern[] = {
    setup("NORVA Pen") + kPenAxes + Calls{absSetup(8, 0, 71, 0)} +
        bits("KEYBIT 320-322 330 331 177 178 272-274"),
    setup("NORVA Mouse") + bits("EVBIT 0 1 2, RELBIT 0 1 8, KEYBIT 0-256 272-274"),
    setup("NORVA Eraser") + kPenAxes + bits("KEYBIT 321 330 331 272-274"),
};
// The old protocol sets no axes up by ioctl: they are in the record written before creation.
const Calls kOld[] = {
    Calls{"GET_VERSION"} + bits("EVBIT 0 1 3, ABSBIT 0 1 24 26 27, KEYBIT 320-328 330 331 272-274"),
    Calls{"GET_VERSION"} + bits("EVBIT 0 1 2, RELBIT 0 1 8, KEYBIT 0-256 272-274"),
    Calls{"GET_VERSION"} + bits("EVBIT 0 1 3, ABSBIT 0 1 24 26 27, KEYBIT 320-335 272-274"),
};

std::string padded(const char *name)
{
    std::string expected(UINPUT_MAX_NAME_SIZE, '\0');
    return expected.replace(0, std::strlen(name), name);
}

class Creation : public UinputTest
{
protected:
    static Calls callSet(int node)
    {
        const std::vector<std::string> all = calls(node);
        return Calls(all.begin(), all.end());
    }

    void make(int version)
    {
        fakeuinput::setVersion(version);
        m_input = std::make_unique<MyInput>();
    }

    void expectDescriptors(int pen, int mouse, int eraser)
    {
        EXPECT_EQ(fakeuinput::nodeOf(m_input->absFd()), pen);
        EXPECT_EQ(fakeuinput::nodeOf(m_input->relFd()), mouse);
        EXPECT_EQ(fakeuinput::nodeOf(m_input->eraserFd()), eraser);
    }
};

TEST_F(Creation, ModernInitOpensAndSetsUpPenMouseEraser)
{
    make(5);
    EXPECT_EQ(m_input->Init(), 1);
    ASSERT_EQ(fakeuinput::nodeCount(), 3);
    const char *names[] = {"NORVA Pen", "NORVA Mouse", "NORVA Eraser"};
    for (int node = 0; node < 3; ++node) {
        SCOPED_TRACE(node);
        EXPECT_EQ(fakeuinput::nodeFlags(node), O_WRONLY | O_NONBLOCK);
        EXPECT_EQ(callSet(node), kModern[node]);
        EXPECT_EQ(calls(node).back(), "DEV_CREATE");
        EXPECT_EQ(bytes(node), "");
        const std::vector<fakeuinput::IoctlCall> all = fakeuinput::ioctls(node);
        const fakeuinput::IoctlCall &named = all[all.size() - 2];
        EXPECT_EQ(std::string(named.setup.name, sizeof named.setup.name), padded(names[node]));
    }
    expectDescriptors(kPenNode, kMouseNode, kEraserNode);
    EXPECT_EQ(m_input->lastDevice(), 0);
    EXPECT_EQ(logs(), (std::vector<LogLine>{kOpenOk, kOpenOk, kOpenOk}));
}

// A failing version query takes the old path too. Absolute ranges of the old record: no
// ABS_WHEEL there, none for the mouse.
TEST_F(Creation, OldProtocolWritesARecordThenCreates)
{
    const char *names[] = {"NORVA Pen", "NORVA Mouse", "NORVA Eraser"};
    std::vector<int> absMax(ABS_CNT, 0), absMin(ABS_CNT, 0), none(ABS_CNT, 0);
    absMax[0] = 52324;
    absMax[1] = 29600;
    absMax[24] = 8191;
    absMax[26] = absMax[27] = 64;
    absMin[26] = absMin[27] = -63;
    for (int version : {4, -1}) {
        fakeuinput::start(m_folder.path().toStdString());
        clearLogs();
        make(version);
        EXPECT_EQ(m_input->Init(), 1);
        for (int node = 0; node < 3; ++node) {
            SCOPED_TRACE(testing::Message() << version << " " << node);
            EXPECT_EQ(callSet(node), kOld[node] + Calls{"DEV_CREATE"});
            EXPECT_EQ(calls(node).back(), "DEV_CREATE");
            EXPECT_EQ(fakeuinput::writeSizes(node), std::vector<size_t>{1116});
            uinput_user_dev device{};
            const std::string data = bytes(node);
            ASSERT_EQ(data.size(), sizeof device);
            std::memcpy(&device, data.data(), sizeof device);
            EXPECT_EQ(std::string(device.name, sizeof device.name), padded(names[node]));
            EXPECT_EQ(std::tuple(device.id.bustype, device.id.vendor, device.id.product,
                                 device.id.version, device.ff_effects_max),
                      std::tuple(3, 0x5A3C, 2, 1, 0u));
            const bool axes = node != kMouseNode;
            EXPECT_EQ(std::vector<int>(device.absmax, device.absmax + ABS_CNT),
                      axes ? absMax : none);
            EXPECT_EQ(std::vector<int>(device.absmin, device.absmin + ABS_CNT),
                      axes ? absMin : none);
            EXPECT_EQ(std::vector<int>(device.absfuzz, device.absfuzz + ABS_CNT), none);
            EXPECT_EQ(std::vector<int>(device.absflat, device.absflat + ABS_CNT), none);
        }
        if (version == 4) {
            EXPECT_EQ(logs(), (std::vector<LogLine>{kOldKernel, kOpenOk, kOpenOk, kOpenOk}));
        }
        m_input.reset();
    }
}

TEST_F(Creation, ShortRecordWriteFailsAndKeepsTheDescriptor)
{
    make(4);
    fakeuinput::setWriteLimit(1000);
    EXPECT_EQ(m_input->OpenAbsUinput(), 0);
    EXPECT_EQ(m_input->OpenRelUinput(), 0);
    EXPECT_EQ(m_input->OpenAbsEraserUinput(), 0);
    for (int node = 0; node < 3; ++node)
        EXPECT_EQ(callSet(node), kOld[node]) << node;
    expectDescriptors(kPenNode, kMouseNode, kEraserNode);
    EXPECT_EQ(logs(), (std::vector<LogLine>{kOldKernel, kShortRecord, kShortRecord, kShortRecord}));
    m_input->CloseUinput();
    EXPECT_EQ(calls(kPenNode).back(), "DEV_DESTROY");
    EXPECT_EQ(m_input->absFd(), 0);
}

TEST_F(Creation, FailedOpensLeaveZeroDescriptorsAndDropEverything)
{
    fakeuinput::setOpenFailures(0b111);
    make(5);
    EXPECT_EQ(m_input->OpenAbsUinput(), 0);
    EXPECT_EQ(m_input->OpenRelUinput(), 0);
    EXPECT_EQ(m_input->OpenAbsEraserUinput(), 0);
    m_input.reset();
    fakeuinput::start(m_folder.path().toStdString());
    fakeuinput::setOpenFailures(0b111);
    clearLogs();
    make(5);
    EXPECT_EQ(m_input->Init(), 1);
    EXPECT_EQ(std::tuple(m_input->absFd(), m_input->relFd(), m_input->eraserFd()),
              std::tuple(0, 0, 0));
    EXPECT_EQ(fakeuinput::nodeCount(), 3);
    // The pen tells nothing when its open fails.
    EXPECT_EQ(logs(), (std::vector<LogLine>{kOpenFailed, kOpenFailed}));

    m_input->UpdateDigit(0xA1, 100, 200, 300, 1, 2, false);
    m_input->UpdateDigit(0xA1, 100, 200, 300, 1, 2, true);
    m_input->UpdateDigit(0xC0, 100, 200, 300, 1, 2, false);
    m_input->UpdateRelMouse(1, 3, 4);
    m_input->UpdateWheelRel(m_input->relFd(), 1);
    m_input->KeyEvent(30, true);
    for (int id = kMouseLeftClick; id <= kMouseWheelDown; ++id)
        m_input->DoMouseFunc(id, true, false);
    m_input->ActionLibrary(7, true);
    m_input->RingActionLibrary(1, true);
    m_input->CloseUinput();
    EXPECT_EQ(fakeuinput::strayCalls(), 0);
}

TEST_F(Creation, PenOpenFailureIsSilentAndOtherDevicesStillOpen)
{
    fakeuinput::setOpenFailures(0b001);
    make(5);
    EXPECT_EQ(m_input->Init(), 1);
    EXPECT_EQ(m_input->absFd(), 0);
    EXPECT_FALSE(fakeuinput::nodeOpened(kPenNode));
    EXPECT_EQ(callSet(kMouseNode), kModern[kMouseNode]);
    EXPECT_EQ(callSet(kEraserNode), kModern[kEraserNode]);
    EXPECT_EQ(logs(), (std::vector<LogLine>{kOpenOk, kOpenOk}));
}

TEST_F(Creation, CloseDestroysAndClosesOnce)
{
    initDevices();
    const int fds[] = {m_input->absFd(), m_input->relFd(), m_input->eraserFd()};
    m_input->CloseUinput();
    m_input->CloseUinput();
    for (int node = 0; node < 3; ++node) {
        const std::vector<std::string> all = calls(node);
        EXPECT_EQ(all.back(), "DEV_DESTROY") << node;
        EXPECT_EQ(std::count(all.begin(), all.end(), "DEV_DESTROY"), 1) << node;
        errno = 0;
        EXPECT_EQ(fcntl(fds[node], F_GETFD), -1) << "descriptor still open: " << node;
        EXPECT_EQ(errno, EBADF);
    }
    EXPECT_EQ(std::tuple(m_input->absFd(), m_input->relFd(), m_input->eraserFd()),
              std::tuple(0, 0, 0));
    EXPECT_EQ(fakeuinput::strayCalls(), 0);
}

TEST_F(Creation, DestructorClosesTheDevices)
{
    initDevices();
    m_input.reset();
    for (int node = 0; node < 3; ++node)
        EXPECT_EQ(calls(node).back(), "DEV_DESTROY") << node;
}

} // namespace
