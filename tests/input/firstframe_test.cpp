#include "fakeuinput.h"
#include "myinput.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstring>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// The remembered tool is process-wide and starts at 0, so this program holds only tests that
// run before any other frame; each case runs in a child forked from that fresh state.
namespace
{

struct Ev {
    uint16_t type;
    uint16_t code;
    int32_t value;
    bool operator==(const Ev &other) const
    {
        return type == other.type && code == other.code && value == other.value;
    }
};

void PrintTo(const Ev &event, std::ostream *out)
{
    *out << "{" << event.type << ", " << event.code << ", " << event.value << "}";
}

void leaveFirstInChild(const std::string &folder, bool eraser)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        fakeuinput::start(folder);
        MyInput input;
        input.Init();
        input.UpdateDigit(0xC0, 11, 22, 333, 4, -5, eraser);
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    ASSERT_EQ(WEXITSTATUS(status), 0);
}

std::vector<Ev> eventsIn(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray data = file.readAll();
    EXPECT_EQ(data.size() % static_cast<int>(sizeof(input_event)), 0);
    std::vector<Ev> result;
    for (int offset = 0; offset + static_cast<int>(sizeof(input_event)) <= data.size();
         offset += sizeof(input_event)) {
        input_event event{};
        std::memcpy(&event, data.constData() + offset, sizeof event);
        result.push_back({event.type, event.code, event.value});
    }
    return result;
}

std::vector<Ev> leaveFrame(uint16_t tool)
{
    return {{EV_KEY, tool, 0},         {EV_ABS, ABS_X, 11},     {EV_ABS, ABS_Y, 22},
            {EV_ABS, ABS_PRESSURE, 0}, {EV_ABS, ABS_TILT_X, 4}, {EV_ABS, ABS_TILT_Y, -5},
            {EV_KEY, BTN_TOUCH, 0},    {EV_SYN, SYN_REPORT, 0}};
}

TEST(FirstFrame, LeaveBeforeAnyFrameFollowsTheEraserFlag)
{
    QTemporaryDir penFolder;
    QTemporaryDir eraserFolder;
    ASSERT_TRUE(penFolder.isValid() && eraserFolder.isValid());
    leaveFirstInChild(penFolder.path().toStdString(), false);
    leaveFirstInChild(eraserFolder.path().toStdString(), true);

    EXPECT_EQ(eventsIn(penFolder.filePath("uinput0")), leaveFrame(BTN_TOOL_PEN));
    EXPECT_EQ(eventsIn(penFolder.filePath("uinput2")), std::vector<Ev>{});
    EXPECT_EQ(eventsIn(eraserFolder.filePath("uinput0")), std::vector<Ev>{});
    EXPECT_EQ(eventsIn(eraserFolder.filePath("uinput2")), leaveFrame(BTN_TOOL_RUBBER));
}

} // namespace
