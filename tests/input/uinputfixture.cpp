#include "uinputfixture.h"

#include <QFile>
#include <cstring>
#include <sstream>

namespace
{

std::vector<LogLine> &capturedLogs()
{
    static std::vector<LogLine> lines;
    return lines;
}

void captureLog(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    capturedLogs().push_back({type, text.toStdString()});
}

std::string describe(const fakeuinput::IoctlCall &call)
{
    std::ostringstream out;
    switch (call.request) {
    case UI_GET_VERSION:
        return "GET_VERSION";
    case UI_DEV_CREATE:
        return "DEV_CREATE";
    case UI_DEV_DESTROY:
        return "DEV_DESTROY";
    case UI_SET_EVBIT:
        return "EVBIT " + std::to_string(call.value);
    case UI_SET_KEYBIT:
        return "KEYBIT " + std::to_string(call.value);
    case UI_SET_ABSBIT:
        return "ABSBIT " + std::to_string(call.value);
    case UI_SET_RELBIT:
        return "RELBIT " + std::to_string(call.value);
    case UI_ABS_SETUP: {
        const input_absinfo &info = call.absSetup.absinfo;
        out << "ABS_SETUP " << call.absSetup.code << " value=" << info.value
            << " min=" << info.minimum << " max=" << info.maximum << " fuzz=" << info.fuzz
            << " flat=" << info.flat << " res=" << info.resolution;
        return out.str();
    }
    case UI_DEV_SETUP: {
        const uinput_setup &setup = call.setup;
        out << "DEV_SETUP '" << std::string(setup.name, strnlen(setup.name, sizeof setup.name))
            << "' bus=" << setup.id.bustype << std::hex << " vendor=0x" << setup.id.vendor
            << " product=0x" << setup.id.product << " version=0x" << setup.id.version << std::dec
            << " ff=" << setup.ff_effects_max;
        return out.str();
    }
    default:
        out << "ioctl 0x" << std::hex << call.request;
        return out.str();
    }
}

} // namespace

bool operator==(const Ev &a, const Ev &b)
{
    return a.type == b.type && a.code == b.code && a.value == b.value;
}

void PrintTo(const Ev &event, std::ostream *out)
{
    *out << "{" << event.type << ", " << event.code << ", " << event.value << "}";
}

bool operator==(const LogLine &a, const LogLine &b)
{
    return a.type == b.type && a.text == b.text;
}

void PrintTo(const LogLine &line, std::ostream *out)
{
    *out << "{" << line.type << ", \"" << line.text << "\"}";
}

void UinputTest::SetUp()
{
    ASSERT_TRUE(m_folder.isValid());
    clearLogs();
    m_previousHandler = qInstallMessageHandler(captureLog);
    fakeuinput::start(m_folder.path().toStdString());
}

void UinputTest::TearDown()
{
    m_input.reset();
    fakeuinput::stop();
    qInstallMessageHandler(m_previousHandler);
}

void UinputTest::initDevices()
{
    m_input = std::make_unique<MyInput>();
    ASSERT_EQ(m_input->Init(), 1);
    clearLogs();
}

std::string UinputTest::bytes(int node)
{
    QFile file(QString::fromStdString(fakeuinput::nodePath(node)));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().toStdString();
}

std::vector<input_event> UinputTest::rawEvents(int node, size_t skip)
{
    const std::string data = bytes(node);
    std::vector<input_event> result;
    for (size_t offset = skip; offset + sizeof(input_event) <= data.size();
         offset += sizeof(input_event)) {
        input_event event{};
        std::memcpy(&event, data.data() + offset, sizeof event);
        result.push_back(event);
    }
    EXPECT_EQ((data.size() - skip) % sizeof(input_event), 0u) << "node " << node;
    return result;
}

std::vector<Ev> UinputTest::events(int node, size_t skip)
{
    std::vector<Ev> result;
    for (const input_event &event : rawEvents(node, skip))
        result.push_back({event.type, event.code, event.value});
    return result;
}

std::vector<std::string> UinputTest::calls(int node)
{
    std::vector<std::string> result;
    for (const fakeuinput::IoctlCall &call : fakeuinput::ioctls(node))
        result.push_back(describe(call));
    return result;
}

std::vector<LogLine> UinputTest::logs()
{
    return capturedLogs();
}

void UinputTest::clearLogs()
{
    capturedLogs().clear();
}

std::string absSetup(int code, int minimum, int maximum, int resolution)
{
    return "ABS_SETUP " + std::to_string(code) + " value=0 min=" + std::to_string(minimum) +
           " max=" + std::to_string(maximum) + " fuzz=0 flat=0 res=" + std::to_string(resolution);
}

bool sameTime(const std::vector<input_event> &events)
{
    for (const input_event &event : events) {
        if (event.input_event_sec != events.front().input_event_sec ||
            event.input_event_usec != events.front().input_event_usec)
            return false;
    }
    return true;
}
