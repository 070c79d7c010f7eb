#include "actionids.h"
#include "caction.h"
#include "capturedlog.h"
#include "cglobaldata.h"
#include "ctipsink.h"
#include "cvtkeycode.h"
#include "deviceattributes.h"
#include "penmath.h"
#include "tabletdata.h"

#include <QCoreApplication>
#include <QMetaEnum>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <libevdev/libevdev.h>
#include <map>
#include <sstream>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

// Runs the case files: a case lists "> command" lines, each followed by what it gives, in
// this order: device frames ("pen EV_KEY BTN_TOOL_PEN 1", device by device) or events
// ("EV_KEY KEY_C 1": keys, buttons and wheel steps of every device in write order), what the
// command shows, "tip TEXT", "msg ID VALUE", "text ID VALUE", "log I|D TEXT". "compare:" names
// the kinds a case checks. A command without lines after it adds what it gives to the next
// one's; "-" is nothing. The devices are memory files that the driver's write hook watches.
namespace
{

const char *const kDevices[] = {"pen", "mouse", "eraser", "unknown"};

struct Script {
    std::string name;
    std::string compared;
    char runner; // 'e'ngine, 'd'river (MyInput), pen 'm'ath or 'k'ey table
    std::vector<std::pair<std::string, std::vector<std::string>>> steps;
};

void PrintTo(const Script &script, std::ostream *out)
{
    *out << script.name;
}

std::vector<Script> readScripts(const char *path, const std::string &compared, char runner)
{
    std::vector<Script> scripts;
    std::ifstream in(path);
    if (!in) // a case that fails, naming the file
        scripts.push_back({"NoCases", "", 'e', {{std::string("read ") + path, {"-"}}}});
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        if (line.rfind("case ", 0) == 0)
            scripts.push_back({line.substr(5), compared, runner, {}});
        else if (line.rfind("compare: ", 0) == 0)
            scripts.back().compared = line.substr(9);
        else if (line.rfind("> ", 0) == 0)
            scripts.back().steps.push_back({line.substr(2), {}});
        else
            scripts.back().steps.back().second.push_back(line);
    }
    return scripts;
}

std::string describe(const input_event &event)
{
    const char *type = libevdev_event_type_get_name(event.type);
    const char *code = libevdev_event_code_get_name(event.type, event.code);
    return (type ? type : std::to_string(event.type)) + " " +
           (code ? code : std::to_string(event.code)) + " " + std::to_string(event.value);
}

// The words of a command after its verb: a first word that is no number, the numbers, the rest.
struct Args {
    std::string line;
    std::string word;
    int n[8] = {};
    int count = 0;
    std::string rest;
};

Args parse(std::istream &in)
{
    Args args;
    std::getline(in >> std::ws, args.line);
    std::istringstream words(args.line);
    std::string word;
    for (std::streampos at = 0; words >> word; at = words.tellg()) {
        const bool number = word.find_first_not_of("-0123456789") == std::string::npos;
        if (!number && args.count == 0 && args.word.empty()) {
            args.word = word;
        } else if (number && args.count < 8) {
            args.n[args.count++] = std::stoi(word);
        } else {
            args.rest = args.line.substr(static_cast<size_t>(at) + (at > 0));
            break;
        }
    }
    return args;
}

struct RecordedTips : CTipSink {
    void EmitInfo(QString text) override { texts.push_back(text.toStdString()); }
    void EmitRingLrcInfo(QStringList, int) override {}
    std::vector<std::string> texts;
};

// Language texts: "Actions.n" is "An", "TR.Item.n" is "Rn"; the config's path is "common",
// and the engine posts as device 3.
class Cases : public ::testing::TestWithParam<Script>
{
public:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.isValid());
        capturedlog::install();
        for (int &fd : m_fds)
            fd = memfd_create("device", 0);
        attach(CGlobalData::MyInputDriver);
        attach(m_input);
        gettimeofday(&m_start, nullptr);
        auto *language = new QSettings(m_folder.filePath("language.ini"), QSettings::IniFormat);
        for (int id = 0; id <= 212; ++id)
            language->setValue(QStringLiteral("Actions.%1").arg(id), QStringLiteral("A%1").arg(id));
        for (int item = 1; item <= 4; ++item)
            language->setValue(QStringLiteral("TR.Item.%1").arg(item),
                               QStringLiteral("R%1").arg(item));
        CGlobalData::Language_Config = language;
        CGlobalData::Show_Info = &m_tip;
        m_action.setDeviceIndex(3);
        CGlobalData::LastTabletActionTime = QTime();
        for (QRect &screen : CGlobalData::ScreenArray)
            screen = QRect();
        std::strcpy(common().path, "common");
    }

    void TearDown() override
    {
        for (int device = 0; device < 3; ++device)
            EXPECT_EQ(lseek(m_fds[device], 0, SEEK_CUR), m_hooked[device]) << kDevices[device];
        for (MyInput *input : {&CGlobalData::MyInputDriver, &m_input}) {
            input->AttachDevices(0, 0, 0);
            input->SetWriteHook(nullptr, nullptr);
        }
        for (int fd : m_fds)
            close(fd);
        CGlobalData::Show_Info = nullptr;
        delete CGlobalData::Language_Config;
        CGlobalData::Language_Config = nullptr;
    }

    // A device that failed to open has descriptor 0.
    void attach(MyInput &input, int failed = -1)
    {
        input.AttachDevices(failed == 0 ? 0 : m_fds[0], failed == 1 ? 0 : m_fds[1],
                            failed == 2 ? 0 : m_fds[2]);
        input.SetWriteHook(&Cases::onWrite, this);
    }

    // Every write is one whole report with one time, taken when it is written, or none.
    static void onWrite(void *context, int fd, const input_event *events, int count)
    {
        Cases &self = *static_cast<Cases *>(context);
        const int device = static_cast<int>(std::find(self.m_fds, self.m_fds + 3, fd) - self.m_fds);
        const timeval time{events[0].input_event_sec, events[0].input_event_usec};
        const bool zero = time.tv_sec == 0 && time.tv_usec == 0;
        self.m_zeroTime |= zero;
        EXPECT_TRUE(zero || time.tv_sec >= self.m_start.tv_sec);
        EXPECT_EQ(events[count - 1].type, EV_SYN);
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(events[i].input_event_usec, time.tv_usec);
            self.m_written.push_back({device, events[i]});
        }
        if (device < 3)
            self.m_hooked[device] += count * sizeof(input_event);
    }

    _stAppConfigNode &common() { return m_settings->CommonAPP; }

    // The kinds named in compared, of what was given since the last call.
    std::vector<std::string> given(const std::string &compared)
    {
        const auto wants = [&compared](const char *kind) {
            return compared.find(kind) != std::string::npos;
        };
        std::vector<std::string> lines;
        for (int device = 0; device < 4 && wants("frames"); ++device)
            for (const auto &[written, event] : m_written)
                if (written == device)
                    lines.push_back(std::string(kDevices[device]) + " " + describe(event));
        for (const auto &[device, event] : m_written) {
            const bool toolBit = event.code == BTN_TOOL_PEN || event.code == BTN_TOUCH ||
                                 event.code == BTN_TOOL_RUBBER;
            if (wants("events") && (event.type == EV_REL || (event.type == EV_KEY && !toolBit)))
                lines.push_back(describe(event));
        }
        if (m_zeroTime && wants("frames"))
            lines.push_back("zero-time");
        lines.insert(lines.end(), m_shown.begin(), m_shown.end());
        for (const std::string &tip : wants("tips") ? m_tip.texts : std::vector<std::string>{})
            lines.push_back("tip " + tip);
        for (const auto &[spy, kind] : {std::pair(&m_ints, "msg"), std::pair(&m_texts, "text")}) {
            for (const QList<QVariant> &call : *spy) {
                EXPECT_EQ(call[0].toInt(), 3);
                if (wants(kind)) // "msgs", "texts"
                    lines.push_back(
                        kind + (" " + call[1].toString() + " " + call[2].toString()).toStdString());
            }
        }
        if (wants("logs"))
            lines.insert(lines.end(), capturedlog::lines().begin(), capturedlog::lines().end());
        m_written.clear();
        m_zeroTime = false;
        m_shown.clear();
        m_tip.texts.clear();
        m_ints.clear();
        m_texts.clear();
        if (wants("logs"))
            capturedlog::lines().clear();
        return lines;
    }

    QTemporaryDir m_folder;
    int m_fds[3] = {};
    size_t m_hooked[3] = {};
    std::vector<std::pair<int, input_event>> m_written;
    bool m_zeroTime = false;
    timeval m_start{};
    std::vector<std::string> m_shown;
    MyInput m_input;
    RecordedTips m_tip;
    CAction m_action;
    QSignalSpy m_ints{&m_action, qOverload<int, int, int>(&CAction::PostActionMsg)};
    QSignalSpy m_texts{&m_action, qOverload<int, int, QString>(&CAction::PostActionMsg)};
    std::unique_ptr<stTablet_XMLData> m_settings = std::make_unique<stTablet_XMLData>();
    _DEVICE_ATTRIBUTES m_device{};
    QMap<QString, _stAppConfigNode *> m_apps;

    TabletDataEX m_report{};
    _MultiData m_out{};

    void driverCall(const std::string &verb, const Args &args)
    {
        const int *n = args.n;
        if (verb == "digit") {
            static const char tablets[3] = {};
            m_input.UpdateDigit(n[0], n[1], n[2], n[3], n[4], n[5], n[6],
                                n[7] > 0 && n[7] < 3 ? &tablets[n[7]] : nullptr);
        } else if (verb == "rel") {
            m_input.UpdateRelMouse(n[0], n[1], n[2]);
        } else if (verb == "wheel") {
            const int fd = args.word == "pen"     ? m_input.absFd()
                           : args.word == "mouse" ? m_input.relFd()
                                                  : 0;
            m_input.UpdateWheelRel(fd, n[0]);
        } else if (verb == "key") {
            m_input.KeyEvent(n[0], n[1]);
        } else if (verb == "mouse") {
            m_input.DoMouseFunc(n[0], n[1], n[2]);
        } else if (verb == "library") {
            m_input.ActionLibrary(n[0], n[1]);
        } else if (verb == "ring") {
            m_input.RingActionLibrary(n[0], n[1]);
        } else if (verb == "fail") {
            attach(m_input,
                   static_cast<int>(std::find(kDevices, kDevices + 3, args.word) - kDevices));
        } else if (verb == "last") {
            m_shown.push_back("last " + std::to_string(m_input.lastDevice()));
        } else {
            ADD_FAILURE() << "unknown call: " << verb;
        }
    }

    void mathCall(const std::string &verb, const Args &args)
    {
        using namespace penmath;
        std::istringstream in(args.line);
        const DeviceExtent device{10000, 8000, 1000, 800};
        std::string axes;
        std::ostringstream out;
        int64_t a = 0, b = 0, c = 0, d = 0;
        float e = 0, f = 0, g = 0, h = 0;
        if (verb == "rotate") {
            in >> a;
            const Position p = rotatedPosition({2000, 1000}, device, a);
            const RotatedAxes r = rotatedAxes(device, a);
            const Tilt t = rotatedTilt({10, 20}, a);
            out << p.x << " " << p.y << " " << r.axisW << " " << r.axisH << " " << r.divW << " "
                << r.divH << " " << int(t.x) << " " << int(t.y);
        } else if (verb == "area") {
            in >> a >> b >> axes >> c >> d;
            const RotatedAxes r = rotatedAxes(device, axes == "turned" ? 1 : 0);
            const WorkArea w = workArea(100, 100, a, b, 1000, r);
            out << w.left << " " << w.top << " " << w.width << " " << w.height << " "
                << holds(w, c, d);
            if (w.width != 0)
                out << " " << normalised(c, w.left, w.width, r.axisW) << " "
                    << normalised(d, w.top, w.height, r.axisH);
        } else if (verb == "calibrate") {
            in >> a >> b >> e >> f;
            out << calibrated(a, b, e, f);
        } else if (verb == "speed") {
            in >> a;
            m_divisor = mouseDivisor(a);
            m_oldPoint = 1000;
            m_carry = 0;
            out << m_divisor;
        } else if (verb == "step") {
            in >> a;
            out << relativeStep(a, m_oldPoint, m_carry, m_divisor);
        } else if (verb == "pressure") {
            in >> e >> f >> g >> h >> a >> b >> c;
            out << curvePressure(b, {e, f, g, h}, a, c);
        } else {
            ADD_FAILURE() << "unknown function: " << verb;
        }
        m_shown.push_back(out.str());
    }

    void keyCall(const std::string &verb, const Args &args)
    {
        std::istringstream in(args.line);
        std::string key, combination;
        unsigned scanCode = 0, virtualKey = 0;
        in >> key >> scanCode >> std::hex >> virtualKey >> combination;
        const int qtKey = QMetaEnum::fromType<Qt::Key>().keyToValue(key.c_str());
        EXPECT_TRUE(key.empty() || qtKey != -1) << args.line;
        if (verb == "init") {
            cvtKeyCode::init();
        } else if (verb == "release") {
            cvtKeyCode::release();
        } else if (verb == "size") {
            m_shown.push_back(std::to_string(cvtKeyCode::getInputKeyMap().size()));
        } else if (verb == "code") {
            m_shown.push_back(std::to_string(cvtKeyCode::getInputKeyCode(qtKey)));
        } else {
            const CapturedKey captured = cvtKeyCode::captureKey(
                qtKey, scanCode, virtualKey,
                QString::fromStdString(combination == "~" ? "" : combination));
            m_shown.push_back(captured.token.toStdString() + " " +
                              (captured.name.isEmpty() ? "~" : captured.name.toStdString()));
        }
    }

    int32_t m_oldPoint = 1000, m_carry = 0;
    int m_divisor = 0;

    void command(const std::string &verb, const Args &args)
    {
        const int *n = args.n;
        stPenConfig &pen = common().Pen[n[0] & 7];
        TabletDataEX data{};
        if (verb == "func") { // a longer text runs on past the field's kFuncSize bytes
            char field[kFuncSize + 64] = {};
            std::memcpy(field, args.rest.data(), std::min(args.rest.size(), sizeof field - 1));
            m_action.ParseCustomFunction(field, n[0], 0);
        } else if (verb == "library") {
            m_action.ActionLibrary(n[0], n[1], 0);
        } else if (verb == "keys" || verb == "keyindex") {
            data.eventFlags = kEventKeys;
            for (int i = 1; i < args.count; ++i) {
                data.keys.current[n[i] - 1] = n[0];
                data.keys.previous[n[i] - 1] = !n[0];
            }
            const _MultiData out =
                m_action.ActionTabletData(data, m_device, m_settings.get(), m_apps);
            if (verb == "keyindex")
                m_shown.push_back("index " + std::to_string(out.keyIndex) + " state " +
                                  std::to_string(out.keyState));
        } else if (verb == "wheel") {
            data.eventFlags = kEventWheel;
            data.wheelIndex = n[0];
            data.wheelDirection = n[1];
            m_out = m_action.ActionTabletData(data, m_device, m_settings.get(), m_apps);
        } else if (verb == "pen") { // a fifth number leaves the pen flag out
            data.eventFlags = n[4] ? kEventPenButtons : kEventPen | kEventPenButtons;
            std::tie(data.penStatus, data.penButtonMask, data.penButtonState, data.penId) =
                std::tuple(n[0], n[1], n[2], n[3]);
            m_out = m_action.ActionTabletData(data, m_device, m_settings.get(), m_apps);
        } else if (verb == "nosettings") {
            m_out = m_action.ActionTabletData(data, m_device, nullptr, m_apps);
        } else if (verb == "result") {
            std::ostringstream out;
            out << "result " << m_out.flags << " " << m_out.ringRel1 << " " << m_out.ringRel2 << " "
                << int(m_out.penBtn1) << " " << int(m_out.penBtn2);
            m_shown.push_back(out.str());
        } else if (verb == "clock") { // the time of the last report, against the local time of day
            const QTime last = CGlobalData::LastTabletActionTime;
            const int skew = last.isValid() ? std::abs(last.msecsTo(QTime::currentTime())) : -1;
            m_shown.push_back(skew < 0                                 ? "clock unset"
                              : std::min(skew, 86400000 - skew) < 2000 ? "clock now"
                                                                       : "clock off");
        } else if (verb == "bekey") {
            m_action.ChangeBEKey(n[0], n[1]);
        } else if (verb == "pressbe") {
            m_action.PressBEKey(n[0]);
        } else if (verb == "group") {
            m_action.ChangeKeyFunctions(n[0]);
        } else if (verb == "key" || verb == "groupkey") {
            const bool grouped = verb == "groupkey";
            stKeyConfig &key = grouped ? common().KeyGroup[n[0]].Key[n[1]] : common().Key[n[0]];
            key = {
                int16_t(n[1 + grouped]), {}, 1, int16_t(n[2 + grouped]), int16_t(n[3 + grouped])};
            std::strcpy(key.func, args.rest.c_str());
        } else if (verb == "enable") {
            common().KeyGroup[n[0]].bEnable = n[1];
        } else if (verb == "select") {
            common().SelectID = n[0];
        } else if (verb == "forget") {
            given("logs");
        } else if (verb == "selected") {
            m_shown.push_back("select " + std::to_string(common().SelectID));
        } else if (verb == "setting") {
            static const std::map<std::string, int16_t stTablet_XMLData::*> fields = {
                {"keys", &stTablet_XMLData::DeviceKeyNum},
                {"direction", &stTablet_XMLData::DeviceKeyDirection},
                {"orientation", &stTablet_XMLData::Orientation},
                {"groups", &stTablet_XMLData::SupportGroupKeys},
                {"noinfo", &stTablet_XMLData::DisableInfo},
                {"screen", &stTablet_XMLData::ScreenId},
                {"fine", &stTablet_XMLData::bBERectOn},
                {"tw", &stTablet_XMLData::TW},
                {"th", &stTablet_XMLData::TH}};
            m_settings.get()->*fields.at(args.word) = n[0];
        } else if (verb == "logged") {
            const std::string wanted = "log D " + args.line;
            EXPECT_NE(std::find(capturedlog::lines().begin(), capturedlog::lines().end(), wanted),
                      capturedlog::lines().end())
                << wanted;
        } else if (verb == "ring") {
            auto &ring = common().Ring[n[0]] = {};
            std::tie(ring.type, ring.id, ring.mode) = std::tuple(n[1], n[2], n[3]);
        } else if (verb == "ringspeed") {
            common().Ring[n[0]].Speed = n[1];
        } else if (verb == "ringitem") {
            common().Ring[n[0]].Item[n[1]].id = n[2];
            std::strcpy(common().Ring[n[0]].Item[n[1]].func, args.rest.c_str());
        } else if (verb == "penbtn") {
            pen.PenBtn[n[1]].Actid = n[2];
        } else if (verb == "relative") {
            pen.bRelativeCoords = n[1];
        } else if (verb == "eraserfn") {
            pen.PenBtn[0].id = n[1];
        } else if (verb == "geometry") {
            // A tablet of 10000 x 8000 counts at 1000 lpi (10 x 8 inches), its full area mapped to
            // the right screen (1000..1999 x 0..799) of a desktop of two 1000 x 800 screens; pens
            // on the straight pressure line. So fx = x / 10 + 1000, fy = y / 10,
            // digitX = fx * 26.162, digitY = fy * 37.
            CGlobalData::ScreenArray[0] = QRect(0, 0, 2000, 800);
            CGlobalData::ScreenArray[1] = QRect(0, 0, 1000, 800);
            CGlobalData::ScreenArray[2] = QRect(1000, 0, 1000, 800);
            std::tie(m_device.MaxX, m_device.MaxY, m_device.LPI, m_device.Width, m_device.Height,
                     m_device.MaxPressure) = std::tuple(10000, 8000, 1000, 1000, 800, 2047);
            stTablet_XMLData &settings = *m_settings;
            settings.ScreenId = 2;
            settings.SX = settings.SW = settings.TW = 1000;
            settings.SH = settings.TH = 800;
            settings.fKX = settings.fKY = settings.fXLC = settings.fYLC = 1;
            for (stPenConfig &each : settings.CommonAPP.Pen)
                std::tie(each.Speed, each.P1X, each.P1Y, each.P2) = std::tuple(5, 0.5f, 0.5f, 1.0f);
        } else if (verb == "feed") {
            m_report = {};
            m_report.eventFlags = kEventPen;
            std::tie(m_report.penStatus, m_report.x, m_report.y, m_report.pressure) =
                std::tuple(n[0], n[1], n[2], n[3]);
            std::tie(m_report.tiltX, m_report.tiltY, m_report.penId) = std::tuple(n[4], n[5], n[6]);
            m_out = m_action.ActionTabletData(m_report, m_device, m_settings.get(), m_apps);
        } else if (verb == "mapped") {
            std::ostringstream out;
            out << "mapped " << m_out.screenPosX << " " << m_out.screenPosY << " " << m_out.digitX
                << " " << m_out.digitY << " " << m_out.pressure << " " << int(m_out.tiltX) << " "
                << int(m_out.tiltY) << " report " << m_report.x << " " << m_report.y;
            m_shown.push_back(out.str());
        } else if (verb == "leave") {
            m_action.LeaveProximity();
        } else if (verb == "berect") {
            m_settings->BERect = {int16_t(n[0]), int16_t(n[1]), int16_t(n[2]), int16_t(n[3])};
        } else {
            ADD_FAILURE() << "unknown command: " << verb;
        }
    }
};

TEST_P(Cases, Steps)
{
    for (const auto &[line, expected] : GetParam().steps) {
        std::istringstream in(line);
        std::string verb;
        in >> verb;
        void (Cases::*const runners[])(const std::string &, const Args &) = {
            &Cases::command, &Cases::driverCall, &Cases::mathCall, &Cases::keyCall};
        (this->*runners[std::string("edmk").find(GetParam().runner)])(verb, parse(in));
        if (expected.empty())
            continue;
        const bool nothing = expected == std::vector<std::string>{"-"};
        EXPECT_EQ(given(GetParam().compared), nothing ? std::vector<std::string>{} : expected)
            << line;
    }
}

#define CASES(suite, file, compared, runner)                                                       \
    INSTANTIATE_TEST_SUITE_P(suite, Cases,                                                         \
                             ::testing::ValuesIn(readScripts(file, compared, runner)),             \
                             [](const auto &info) { return info.param.name; })
CASES(Engine, CACTION_CASES, "events tips msgs texts", 'e');
CASES(Driver, MYINPUT_CASES, "frames", 'd');
CASES(PenMath, PENMATH_CASES, "", 'm');
CASES(KeyTable, KEYCODE_CASES, "", 'k');

// Temporary programs only: a script that writes its environment, and an opener that stands in
// for the desktop's, first in PATH.
TEST_F(Cases, ProgramStart)
{
    const std::string dir = m_folder.path().toStdString() + "/";
    std::ofstream(dir + "run.sh") << "#!/bin/sh\nenv > " << dir << "e && mv " << dir << "e " << dir
                                  << "env.txt\n";
    std::ofstream(dir + "xdg-open") << "#!/bin/sh\necho \"$1\" >> " << dir << "opened.txt\n";
    chmod((dir + "run.sh").c_str(), 0700);
    chmod((dir + "xdg-open").c_str(), 0700);
    std::ofstream(dir + "notes.txt");
    const QByteArray path = qgetenv("PATH"), libraryPath = qgetenv("LD_LIBRARY_PATH");
    qputenv("PATH", QByteArray::fromStdString(dir) + ":" + path);
    qputenv("LD_LIBRARY_PATH", "/nowhere");
    qputenv("SCRIBORA_TEST_MARK", "kept");
#if defined(__SANITIZE_ADDRESS__)
    __lsan_disable(); // the engine never deletes its processes
#endif
    for (bool pressed : {false, true}) {
        for (std::string function : {"2|Run|" + dir + "run.sh", "2|Doc|" + dir + "notes.txt"})
            m_action.ParseCustomFunction(function.data(), pressed, 0);
    }
#if defined(__SANITIZE_ADDRESS__)
    __lsan_enable();
#endif
    qputenv("PATH", path);
    qputenv("LD_LIBRARY_PATH", libraryPath);
    qunsetenv("SCRIBORA_TEST_MARK");
    const auto read = [&dir](const char *name) {
        std::ifstream in(dir + name);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    for (int tries = 0; (read("env.txt").empty() || read("opened.txt").empty()) && tries < 500;
         ++tries) {
        QCoreApplication::processEvents();
        QThread::msleep(20);
    }
    const std::string variables = read("env.txt");
    EXPECT_NE(variables.find("SCRIBORA_TEST_MARK=kept\n"), std::string::npos) << variables;
    EXPECT_EQ(variables.find("LD_LIBRARY_PATH="), std::string::npos) << variables;
    EXPECT_EQ(read("opened.txt"), dir + "notes.txt\n");
    EXPECT_EQ(m_tip.texts, (std::vector<std::string>{"Run", "Doc"}));
}

TEST_F(Cases, DoubleClickPauses)
{
    const auto start = std::chrono::steady_clock::now();
    m_input.DoMouseFunc(kMouseDoubleClick, true, false);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
}

} // namespace
