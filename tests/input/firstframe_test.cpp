#include "myinput.h"

#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// The remembered tool is process-wide and starts at 0, so this program holds only a test that
// writes no frame itself: each leave runs in a child forked from that fresh state.
namespace
{

// The events the pen and the eraser got, as (code, value) pairs.
std::vector<std::vector<std::pair<int, int>>> leaveFirst(bool eraser)
{
    const int pen = memfd_create("pen", 0), other = memfd_create("eraser", 0);
    const pid_t child = fork();
    if (child == 0) {
        MyInput input;
        input.AttachDevices(pen, 0, other);
        input.UpdateDigit(0xC0, 11, 22, 333, 4, -5, eraser);
        input.AttachDevices(0, 0, 0);
        _exit(0);
    }
    int status = 1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    std::vector<std::vector<std::pair<int, int>>> result(2);
    for (int device : {0, 1}) {
        const int fd = device == 0 ? pen : other;
        input_event event{};
        for (off_t at = 0; pread(fd, &event, sizeof event, at) == sizeof event; at += sizeof event)
            result[device].push_back({event.code, event.value});
        close(fd);
    }
    return result;
}

TEST(FirstFrame, LeaveBeforeAnyFrameFollowsTheEraserFlag)
{
    const auto frame = [](int tool) {
        return std::vector<std::pair<int, int>>{
            {tool, 0},       {ABS_X, 11},      {ABS_Y, 22},    {ABS_PRESSURE, 0},
            {ABS_TILT_X, 4}, {ABS_TILT_Y, -5}, {BTN_TOUCH, 0}, {SYN_REPORT, 0}};
    };
    EXPECT_EQ(leaveFirst(false), (std::vector{frame(BTN_TOOL_PEN), {}}));
    EXPECT_EQ(leaveFirst(true),
              (std::vector{std::vector<std::pair<int, int>>{}, frame(BTN_TOOL_RUBBER)}));
}

} // namespace
