#include "actionids.h"
#include "uinputfixture.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace
{

const LogLine kOpenOk{QtDebugMsg, "open uinput ok \n"};
const LogLine kOpenFailed{QtDebugMsg, "open uinput failed \n"};
const LogLine kOldKernel{QtInfoMsg, "driver ver < 5"};
const LogLine kShortRecord{QtDebugMsg, "Error initializing the input device.\n"};

std::vector<std::string> modernPenCalls()
{
    std::vector<std::string> expected = {
        "GET_VERSION",
        absSetup(0, 0, 52324, 200),
        absSetup(1, 0, 29600, 200),
        absSetup(24, 0, 8191, 0),
        absSetup(8, 0, 71, 0),
        absSetup(26, -63, 64, 0),
        absSetup(27, -63, 64, 0),
        "EVBIT 0",
        "EVBIT 1",
        "EVBIT 3",
        "ABSBIT 0",
        "ABSBIT 1",
        "ABSBIT 24",
        "ABSBIT 26",
        "ABSBIT 27",
        "KEYBIT 320",
        "KEYBIT 321",
        "KEYBIT 322",
        "KEYBIT 330",
        "KEYBIT 331",
        "KEYBIT 177",
        "KEYBIT 178",
        "KEYBIT 272",
        "KEYBIT 273",
        "KEYBIT 274",
        "DEV_SETUP 'NORVA Pen' bus=3 vendor=0x5a3c product=0x2 version=0x100 ff=0",
        "DEV_CREATE",
    };
    return expected;
}

// The mouse enables EV_KEY a second time just before its keys.
std::vector<std::string> mouseCapabilityCalls()
{
    std::vector<std::string> expected = {"EVBIT 0",  "EVBIT 1",  "EVBIT 2", "RELBIT 0",
                                         "RELBIT 1", "RELBIT 8", "EVBIT 1"};
    append(expected, bitRange("KEYBIT", 0, 256));
    append(expected, {"KEYBIT 272", "KEYBIT 273", "KEYBIT 274"});
    return expected;
}

std::vector<std::string> modernMouseCalls()
{
    std::vector<std::string> expected = {"GET_VERSION"};
    append(expected, mouseCapabilityCalls());
    append(expected, {"DEV_SETUP 'NORVA Mouse' bus=3 vendor=0x5a3c product=0x2 version=0x100 ff=0",
                      "DEV_CREATE"});
    return expected;
}

std::vector<std::string> modernEraserCalls()
{
    return {
        "GET_VERSION",
        absSetup(0, 0, 52324, 200),
        absSetup(1, 0, 29600, 200),
        absSetup(24, 0, 8191, 0),
        absSetup(26, -63, 64, 0),
        absSetup(27, -63, 64, 0),
        "EVBIT 0",
        "EVBIT 1",
        "EVBIT 3",
        "ABSBIT 0",
        "ABSBIT 1",
        "ABSBIT 24",
        "ABSBIT 26",
        "ABSBIT 27",
        "KEYBIT 321",
        "KEYBIT 330",
        "KEYBIT 331",
        "KEYBIT 272",
        "KEYBIT 273",
        "KEYBIT 274",
        "DEV_SETUP 'NORVA Eraser' bus=3 vendor=0x5a3c product=0x2 version=0x100 ff=0",
        "DEV_CREATE",
    };
}

std::vector<std::string> oldPenCalls()
{
    std::vector<std::string> expected = {"GET_VERSION", "EVBIT 0",   "EVBIT 1",
                                         "EVBIT 3",     "ABSBIT 0",  "ABSBIT 1",
                                         "ABSBIT 24",   "ABSBIT 26", "ABSBIT 27"};
    append(expected, bitRange("KEYBIT", 320, 328));
    append(expected, {"KEYBIT 331", "KEYBIT 330", "KEYBIT 272", "KEYBIT 273", "KEYBIT 274"});
    return expected;
}

std::vector<std::string> oldMouseCalls()
{
    std::vector<std::string> expected = {"GET_VERSION"};
    append(expected, mouseCapabilityCalls());
    return expected;
}

// The eraser of the old path enables EV_KEY twice too, and 321 twice.
std::vector<std::string> oldEraserCalls()
{
    std::vector<std::string> expected = {"GET_VERSION", "EVBIT 0",  "EVBIT 1",   "EVBIT 3",
                                         "ABSBIT 0",    "ABSBIT 1", "ABSBIT 24", "ABSBIT 26",
                                         "ABSBIT 27",   "EVBIT 1",  "KEYBIT 321"};
    append(expected, bitRange("KEYBIT", 320, 335));
    append(expected, {"KEYBIT 272", "KEYBIT 273", "KEYBIT 274"});
    return expected;
}

std::vector<std::string> withCreate(std::vector<std::string> calls)
{
    calls.push_back("DEV_CREATE");
    return calls;
}

std::vector<int> values(const int32_t (&array)[ABS_CNT])
{
    return std::vector<int>(array, array + ABS_CNT);
}

// Absolute ranges of the old record: no ABS_WHEEL there.
std::vector<int> oldAbsMax()
{
    std::vector<int> expected(ABS_CNT, 0);
    expected[0] = 52324;
    expected[1] = 29600;
    expected[24] = 8191;
    expected[26] = 64;
    expected[27] = 64;
    return expected;
}

std::vector<int> oldAbsMin()
{
    std::vector<int> expected(ABS_CNT, 0);
    expected[26] = -63;
    expected[27] = -63;
    return expected;
}

std::string paddedName(const char *name)
{
    std::string expected(UINPUT_MAX_NAME_SIZE, '\0');
    expected.replace(0, std::strlen(name), name);
    return expected;
}

class Creation : public UinputTest
{
protected:
    void useOldProtocol(int version)
    {
        fakeuinput::setVersion(version);
        m_input = std::make_unique<MyInput>();
    }

    static uinput_user_dev record(int node)
    {
        uinput_user_dev result{};
        const std::string data = bytes(node);
        EXPECT_GE(data.size(), sizeof result);
        std::memcpy(&result, data.data(), std::min(data.size(), sizeof result));
        return result;
    }

    static void expectIdentity(const uinput_user_dev &device, const char *name)
    {
        EXPECT_EQ(std::string(device.name, sizeof device.name), paddedName(name));
        EXPECT_EQ(device.id.bustype, 3);
        EXPECT_EQ(device.id.vendor, 0x5A3C);
        EXPECT_EQ(device.id.product, 2);
        EXPECT_EQ(device.id.version, 1);
        EXPECT_EQ(device.ff_effects_max, 0u);
        EXPECT_EQ(values(device.absfuzz), std::vector<int>(ABS_CNT, 0));
        EXPECT_EQ(values(device.absflat), std::vector<int>(ABS_CNT, 0));
    }
};

TEST_F(Creation, InitOpensPenMouseEraserWriteOnlyAndNonBlocking)
{
    m_input = std::make_unique<MyInput>();
    EXPECT_EQ(m_input->Init(), 1);
    ASSERT_EQ(fakeuinput::nodeCount(), 3);
    for (int node = 0; node < 3; ++node)
        EXPECT_EQ(fakeuinput::nodeFlags(node), O_WRONLY | O_NONBLOCK) << node;
    EXPECT_EQ(fakeuinput::nodeOf(m_input->absFd()), kPenNode);
    EXPECT_EQ(fakeuinput::nodeOf(m_input->relFd()), kMouseNode);
    EXPECT_EQ(fakeuinput::nodeOf(m_input->eraserFd()), kEraserNode);
    EXPECT_EQ(m_input->lastDevice(), 0);
    EXPECT_EQ(logs(), (std::vector<LogLine>{kOpenOk, kOpenOk, kOpenOk}));
}

// Version 5 is the first modern one; the eraser has no wheel axis.
TEST_F(Creation, ModernSetupSetsUpAxesBitsAndIdentity)
{
    fakeuinput::setVersion(5);
    m_input = std::make_unique<MyInput>();
    EXPECT_EQ(m_input->Init(), 1);
    EXPECT_EQ(calls(kPenNode), modernPenCalls());
    EXPECT_EQ(calls(kMouseNode), modernMouseCalls());
    EXPECT_EQ(calls(kEraserNode), modernEraserCalls());
    for (int node = 0; node < 3; ++node)
        EXPECT_EQ(bytes(node), "") << node;
}

TEST_F(Creation, ModernSetupNamesAreZeroPadded)
{
    initDevices();
    const char *names[] = {"NORVA Pen", "NORVA Mouse", "NORVA Eraser"};
    for (int node = 0; node < 3; ++node) {
        const std::vector<fakeuinput::IoctlCall> all = fakeuinput::ioctls(node);
        ASSERT_GE(all.size(), 2u);
        const fakeuinput::IoctlCall &setup = all[all.size() - 2];
        ASSERT_EQ(setup.request, UI_DEV_SETUP);
        EXPECT_EQ(std::string(setup.setup.name, sizeof setup.setup.name), paddedName(names[node]));
    }
}

TEST_F(Creation, OldPenWritesItsRecordThenCreates)
{
    useOldProtocol(4);
    EXPECT_EQ(m_input->OpenAbsUinput(), 1);
    EXPECT_EQ(calls(0), withCreate(oldPenCalls()));
    EXPECT_EQ(fakeuinput::writeSizes(0), std::vector<size_t>{1116});
    ASSERT_EQ(bytes(0).size(), 1116u);
    const uinput_user_dev device = record(0);
    expectIdentity(device, "NORVA Pen");
    EXPECT_EQ(values(device.absmax), oldAbsMax());
    EXPECT_EQ(values(device.absmin), oldAbsMin());
    EXPECT_EQ(logs(), (std::vector<LogLine>{kOldKernel, kOpenOk}));
}

TEST_F(Creation, OldMouseRecordHasNoAxes)
{
    useOldProtocol(4);
    EXPECT_EQ(m_input->OpenRelUinput(), 1);
    EXPECT_EQ(calls(0), withCreate(oldMouseCalls()));
    ASSERT_EQ(bytes(0).size(), 1116u);
    const uinput_user_dev device = record(0);
    expectIdentity(device, "NORVA Mouse");
    EXPECT_EQ(values(device.absmax), std::vector<int>(ABS_CNT, 0));
    EXPECT_EQ(values(device.absmin), std::vector<int>(ABS_CNT, 0));
    EXPECT_EQ(logs(), std::vector<LogLine>{kOpenOk});
}

TEST_F(Creation, OldEraserRecordAndKeys)
{
    useOldProtocol(4);
    EXPECT_EQ(m_input->OpenAbsEraserUinput(), 1);
    EXPECT_EQ(calls(0), withCreate(oldEraserCalls()));
    ASSERT_EQ(bytes(0).size(), 1116u);
    const uinput_user_dev device = record(0);
    expectIdentity(device, "NORVA Eraser");
    EXPECT_EQ(values(device.absmax), oldAbsMax());
    EXPECT_EQ(values(device.absmin), oldAbsMin());
    EXPECT_EQ(logs(), std::vector<LogLine>{kOpenOk});
}

TEST_F(Creation, FailingVersionQueryTakesTheOldPath)
{
    useOldProtocol(-1);
    EXPECT_EQ(m_input->Init(), 1);
    EXPECT_EQ(calls(kPenNode), withCreate(oldPenCalls()));
    EXPECT_EQ(calls(kMouseNode), withCreate(oldMouseCalls()));
    EXPECT_EQ(calls(kEraserNode), withCreate(oldEraserCalls()));
    for (int node = 0; node < 3; ++node)
        EXPECT_EQ(bytes(node).size(), 1116u) << node;
}

TEST_F(Creation, ShortRecordWriteFailsAndKeepsTheDescriptor)
{
    useOldProtocol(4);
    fakeuinput::setWriteLimit(1000);
    EXPECT_EQ(m_input->OpenAbsUinput(), 0);
    EXPECT_EQ(m_input->OpenRelUinput(), 0);
    EXPECT_EQ(m_input->OpenAbsEraserUinput(), 0);
    EXPECT_EQ(calls(kPenNode), oldPenCalls());
    EXPECT_EQ(calls(kMouseNode), oldMouseCalls());
    EXPECT_EQ(calls(kEraserNode), oldEraserCalls());
    EXPECT_EQ(fakeuinput::nodeOf(m_input->absFd()), kPenNode);
    EXPECT_EQ(fakeuinput::nodeOf(m_input->relFd()), kMouseNode);
    EXPECT_EQ(fakeuinput::nodeOf(m_input->eraserFd()), kEraserNode);
    EXPECT_EQ(logs(), (std::vector<LogLine>{kOldKernel, kShortRecord, kShortRecord, kShortRecord}));
}

TEST_F(Creation, FailedOpensLeaveZeroDescriptorsAndDropEverything)
{
    fakeuinput::setOpenFailures(0b111);
    m_input = std::make_unique<MyInput>();
    EXPECT_EQ(m_input->Init(), 1);
    EXPECT_EQ(m_input->absFd(), 0);
    EXPECT_EQ(m_input->relFd(), 0);
    EXPECT_EQ(m_input->eraserFd(), 0);
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
    EXPECT_TRUE(fakeuinput::callOrder().empty());
}

TEST_F(Creation, SingleOpenFailuresReturnZero)
{
    fakeuinput::setOpenFailures(0b111);
    m_input = std::make_unique<MyInput>();
    EXPECT_EQ(m_input->OpenAbsUinput(), 0);
    EXPECT_EQ(m_input->OpenRelUinput(), 0);
    EXPECT_EQ(m_input->OpenAbsEraserUinput(), 0);
}

TEST_F(Creation, PenOpenFailureIsSilentAndOtherDevicesStillOpen)
{
    fakeuinput::setOpenFailures(0b001);
    m_input = std::make_unique<MyInput>();
    EXPECT_EQ(m_input->Init(), 1);
    EXPECT_EQ(m_input->absFd(), 0);
    EXPECT_FALSE(fakeuinput::nodeOpened(kPenNode));
    EXPECT_EQ(calls(kMouseNode), modernMouseCalls());
    EXPECT_EQ(calls(kEraserNode), modernEraserCalls());
    EXPECT_EQ(logs(), (std::vector<LogLine>{kOpenOk, kOpenOk}));
}

TEST_F(Creation, CloseDestroysAndClosesInOrderOnce)
{
    initDevices();
    const int fds[] = {m_input->absFd(), m_input->relFd(), m_input->eraserFd()};
    const size_t before = fakeuinput::callOrder().size();
    m_input->CloseUinput();
    const std::vector<fakeuinput::NodeCall> order = fakeuinput::callOrder();
    ASSERT_EQ(order.size(), before + 3);
    for (int node = 0; node < 3; ++node) {
        EXPECT_EQ(order[before + node].node, node);
        EXPECT_EQ(order[before + node].request, UI_DEV_DESTROY);
        errno = 0;
        EXPECT_EQ(fcntl(fds[node], F_GETFD), -1) << "descriptor still open: " << node;
        EXPECT_EQ(errno, EBADF);
    }
    EXPECT_EQ(m_input->absFd(), 0);
    EXPECT_EQ(m_input->relFd(), 0);
    EXPECT_EQ(m_input->eraserFd(), 0);

    m_input->CloseUinput();
    EXPECT_EQ(fakeuinput::callOrder().size(), before + 3);
    EXPECT_EQ(fakeuinput::strayCalls(), 0);
}

TEST_F(Creation, DestructorClosesTheDevices)
{
    initDevices();
    m_input.reset();
    for (int node = 0; node < 3; ++node)
        EXPECT_EQ(calls(node).back(), "DEV_DESTROY") << node;
}

TEST_F(Creation, CloseAfterShortRecordStillDestroysTheOpenDescriptor)
{
    useOldProtocol(4);
    fakeuinput::setWriteLimit(1000);
    m_input->OpenAbsUinput();
    m_input->CloseUinput();
    EXPECT_EQ(calls(kPenNode).back(), "DEV_DESTROY");
    EXPECT_EQ(m_input->absFd(), 0);
}

} // namespace
