#pragma once

#include "fakeuinput.h"
#include "myinput.h"

#include <QTemporaryDir>
#include <QtGlobal>
#include <cstdint>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

static_assert(sizeof(input_event) == 24, "event records of x86-64");
static_assert(sizeof(uinput_user_dev) == 1116, "record of the old uinput protocol");

// Nodes in the order Init opens them.
constexpr int kPenNode = 0;
constexpr int kMouseNode = 1;
constexpr int kEraserNode = 2;

// One event without its time.
struct Ev {
    uint16_t type;
    uint16_t code;
    int32_t value;
};
bool operator==(const Ev &a, const Ev &b);
void PrintTo(const Ev &event, std::ostream *out);

struct LogLine {
    QtMsgType type;
    std::string text;
};
bool operator==(const LogLine &a, const LogLine &b);
void PrintTo(const LogLine &line, std::ostream *out);

// Runs each test against fresh fake nodes in a temporary folder, with the log captured.
class UinputTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Makes the object under test and opens its three devices.
    void initDevices();

    static std::string bytes(int node);
    static std::vector<input_event> rawEvents(int node, size_t skip = 0);
    static std::vector<Ev> events(int node, size_t skip = 0);
    static std::vector<std::string> calls(int node);
    static std::vector<LogLine> logs();
    static void clearLogs();

    QTemporaryDir m_folder;
    std::unique_ptr<MyInput> m_input;

private:
    QtMessageHandler m_previousHandler = nullptr;
};

// UI_ABS_SETUP as calls() describes it.
std::string absSetup(int code, int minimum, int maximum, int resolution);
bool sameTime(const std::vector<input_event> &events);
