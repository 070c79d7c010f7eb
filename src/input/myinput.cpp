#include "myinput.h"

#include "actionids.h"
#include "penstatus.h"

#include <QDebug>
#include <QTime>
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <sys/time.h>
#include <thread>
#include <unistd.h>

namespace
{

constexpr char kUinputNode[] = "/dev/uinput";
constexpr uint16_t kVendor = 0x5A3C;
constexpr uint16_t kProduct = 2;
constexpr uint16_t kSetupVersion = 0x100;
constexpr uint16_t kUserDevVersion = 1;
constexpr unsigned kFirstModernVersion = 5;
constexpr int kLastPen = 0;
constexpr int kLastMouse = 1;
constexpr int kLastReserved = 2;

template <typename T> struct List {
    const T *first;
    size_t count;
    const T *begin() const { return first; }
    const T *end() const { return first + count; }
};

template <typename T, size_t N> constexpr List<T> listOf(const T (&items)[N])
{
    return {items, N};
}

struct AbsAxis {
    uint16_t code;
    int32_t minimum;
    int32_t maximum;
    int32_t resolution;
    bool enabled; // set one by one with UI_SET_ABSBIT
};

struct KeyRange {
    uint16_t first;
    uint16_t last;
};

struct KeySet {
    List<KeyRange> ranges;
    bool enableKeyTypeAgain;
};

struct DeviceLayout {
    const char *name;
    uint16_t axisType; // EV_ABS or EV_REL
    List<AbsAxis> absAxes;
    List<uint16_t> relAxes;
    KeySet modernKeys;
    KeySet oldKeys;
};

// ABS_WHEEL gets an axis record but is never enabled.
constexpr AbsAxis kPenAxes[] = {
    {ABS_X, 0, kAbsMaxX, 200, true},
    {ABS_Y, 0, kAbsMaxY, 200, true},
    {ABS_PRESSURE, 0, kAbsMaxPressure, 0, true},
    {ABS_WHEEL, 0, 71, 0, false},
    {ABS_TILT_X, kAbsMinTilt, kAbsMaxTilt, 0, true},
    {ABS_TILT_Y, kAbsMinTilt, kAbsMaxTilt, 0, true},
};
constexpr AbsAxis kEraserAxes[] = {
    {ABS_X, 0, kAbsMaxX, 200, true},
    {ABS_Y, 0, kAbsMaxY, 200, true},
    {ABS_PRESSURE, 0, kAbsMaxPressure, 0, true},
    {ABS_TILT_X, kAbsMinTilt, kAbsMaxTilt, 0, true},
    {ABS_TILT_Y, kAbsMinTilt, kAbsMaxTilt, 0, true},
};
constexpr uint16_t kMouseAxes[] = {REL_X, REL_Y, REL_WHEEL};

constexpr KeyRange kPenKeys[] = {{BTN_TOOL_PEN, BTN_TOOL_BRUSH},
                                 {BTN_TOUCH, BTN_STYLUS},
                                 {KEY_SCROLLUP, KEY_SCROLLDOWN},
                                 {BTN_LEFT, BTN_MIDDLE}};
constexpr KeyRange kPenOldKeys[] = {{BTN_TOOL_PEN, BTN_TOOL_QUINTTAP},
                                    {BTN_STYLUS, BTN_STYLUS},
                                    {BTN_TOUCH, BTN_TOUCH},
                                    {BTN_LEFT, BTN_MIDDLE}};
constexpr KeyRange kMouseKeys[] = {{0, 256}, {BTN_LEFT, BTN_MIDDLE}};
constexpr KeyRange kEraserKeys[] = {
    {BTN_TOOL_RUBBER, BTN_TOOL_RUBBER}, {BTN_TOUCH, BTN_STYLUS}, {BTN_LEFT, BTN_MIDDLE}};
constexpr KeyRange kEraserOldKeys[] = {
    {BTN_TOOL_RUBBER, BTN_TOOL_RUBBER}, {BTN_TOOL_PEN, BTN_TOOL_QUADTAP}, {BTN_LEFT, BTN_MIDDLE}};

constexpr List<AbsAxis> kNoAbsAxes = {nullptr, 0};
constexpr List<uint16_t> kNoRelAxes = {nullptr, 0};

const DeviceLayout kPenDevice = {"NORVA Pen",
                                 EV_ABS,
                                 listOf(kPenAxes),
                                 kNoRelAxes,
                                 {listOf(kPenKeys), false},
                                 {listOf(kPenOldKeys), false}};
const DeviceLayout kMouseDevice = {"NORVA Mouse",
                                   EV_REL,
                                   kNoAbsAxes,
                                   listOf(kMouseAxes),
                                   {listOf(kMouseKeys), true},
                                   {listOf(kMouseKeys), true}};
const DeviceLayout kEraserDevice = {"NORVA Eraser",
                                    EV_ABS,
                                    listOf(kEraserAxes),
                                    kNoRelAxes,
                                    {listOf(kEraserKeys), false},
                                    {listOf(kEraserOldKeys), true}};

bool declares(const DeviceLayout &layout, uint16_t type, uint16_t code)
{
    switch (type) {
    case EV_SYN:
        return true;
    case EV_KEY:
        return std::any_of(
            layout.modernKeys.ranges.begin(), layout.modernKeys.ranges.end(),
            [code](const KeyRange &range) { return code >= range.first && code <= range.last; });
    case EV_ABS:
        return std::any_of(
            layout.absAxes.begin(), layout.absAxes.end(),
            [code](const AbsAxis &axis) { return axis.enabled && axis.code == code; });
    case EV_REL:
        return std::find(layout.relAxes.begin(), layout.relAxes.end(), code) !=
               layout.relAxes.end();
    default:
        return false;
    }
}

void setBit(int fd, unsigned long request, int bit)
{
    ioctl(fd, request, bit);
}

void enableCapabilities(int fd, const DeviceLayout &layout, const KeySet &keys)
{
    setBit(fd, UI_SET_EVBIT, EV_SYN);
    setBit(fd, UI_SET_EVBIT, EV_KEY);
    setBit(fd, UI_SET_EVBIT, layout.axisType);
    for (const AbsAxis &axis : layout.absAxes) {
        if (axis.enabled)
            setBit(fd, UI_SET_ABSBIT, axis.code);
    }
    for (uint16_t axis : layout.relAxes)
        setBit(fd, UI_SET_RELBIT, axis);
    // Enabling EV_KEY a second time is intended; the kernel ignores it.
    if (keys.enableKeyTypeAgain)
        setBit(fd, UI_SET_EVBIT, EV_KEY);
    for (const KeyRange &range : keys.ranges) {
        for (int key = range.first; key <= range.last; ++key)
            setBit(fd, UI_SET_KEYBIT, key);
    }
}

void setUpModern(int fd, const DeviceLayout &layout)
{
    uinput_setup setup{};
    setup.id = {BUS_USB, kVendor, kProduct, kSetupVersion};
    std::strncpy(setup.name, layout.name, sizeof setup.name - 1);
    for (const AbsAxis &axis : layout.absAxes) {
        uinput_abs_setup abs{};
        abs.code = axis.code;
        abs.absinfo.minimum = axis.minimum;
        abs.absinfo.maximum = axis.maximum;
        abs.absinfo.resolution = axis.resolution;
        ioctl(fd, UI_ABS_SETUP, &abs);
    }
    enableCapabilities(fd, layout, layout.modernKeys);
    ioctl(fd, UI_DEV_SETUP, &setup);
}

// The record of old kernels holds no resolution and no axis that is not enabled.
bool setUpOld(int fd, const DeviceLayout &layout)
{
    uinput_user_dev device{};
    std::strncpy(device.name, layout.name, sizeof device.name - 1);
    device.id = {BUS_USB, kVendor, kProduct, kUserDevVersion};
    for (const AbsAxis &axis : layout.absAxes) {
        if (!axis.enabled)
            continue;
        device.absmin[axis.code] = axis.minimum;
        device.absmax[axis.code] = axis.maximum;
    }
    enableCapabilities(fd, layout, layout.oldKeys);
    return write(fd, &device, sizeof device) == static_cast<ssize_t>(sizeof device);
}

bool hasModernUinput(int fd)
{
    unsigned version = 0;
    return ioctl(fd, UI_GET_VERSION, &version) == 0 && version >= kFirstModernVersion;
}

// A failed open leaves the descriptor at 0, the value that means "no device".
int openDevice(int &descriptor, const DeviceLayout &layout, bool logOpenFailure, bool logOldKernel)
{
    const int fd = open(kUinputNode, O_WRONLY | O_NONBLOCK);
    if (fd < 0) {
        if (logOpenFailure)
            qDebug("open uinput failed \n");
        return 0;
    }
    descriptor = fd;
    if (hasModernUinput(fd)) {
        setUpModern(fd, layout);
    } else {
        if (logOldKernel)
            qInfo("driver ver < 5");
        if (!setUpOld(fd, layout)) {
            qDebug("Error initializing the input device.\n");
            return 0;
        }
    }
    ioctl(fd, UI_DEV_CREATE);
    qDebug("open uinput ok \n");
    return 1;
}

timeval now()
{
    timeval stamp{};
    gettimeofday(&stamp, nullptr);
    return stamp;
}

input_event makeEvent(const timeval &stamp, uint16_t type, uint16_t code, int32_t value)
{
    input_event event{};
    event.input_event_sec = stamp.tv_sec;
    event.input_event_usec = stamp.tv_usec;
    event.type = type;
    event.code = code;
    event.value = value;
    return event;
}

void sleepMicroseconds(int microseconds)
{
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

constexpr int kActionKeys[] = {KEY_LEFTALT, KEY_SPACE,  KEY_UNDO,  KEY_REDO, KEY_B,
                               KEY_E,       KEY_KPPLUS, KEY_MINUS, KEY_C,    KEY_V};
constexpr int kFirstCtrlAction = 7;

struct RingKeys {
    bool ctrl;
    int up;
    int down;
};

constexpr RingKeys kRingKeys[] = {
    {false, KEY_MINUS, KEY_EQUAL}, {true, KEY_MINUS, KEY_EQUAL}, {false, KEY_PAGEDOWN, KEY_PAGEUP},
    {true, KEY_RIGHT, KEY_LEFT},   {true, KEY_DOWN, KEY_UP},
};

} // namespace

// Descriptor 0 stands for a device that failed to open: its events are dropped.
template <size_t N> void MyInput::writeEvents(int fd, const input_event (&events)[N]) const
{
    if (fd == 0)
        return;
    // Short writes are not detected.
    [[maybe_unused]] const ssize_t written = write(fd, events, sizeof events);
    if (m_writeHook)
        m_writeHook(m_writeHookContext, fd, events, static_cast<int>(N));
}

// The tool goes in range with the button so that the pen device accepts it.
void MyInput::clickButton(int fd, uint16_t button, bool pressed) const
{
    const timeval stamp = now();
    const input_event events[] = {
        makeEvent(stamp, EV_KEY, BTN_TOOL_PEN, 1),
        makeEvent(stamp, EV_KEY, button, pressed),
        makeEvent(stamp, EV_SYN, SYN_REPORT, 0),
    };
    writeEvents(fd, events);
}

void MyInput::clickMiddle(int fd, bool pressed) const
{
    const timeval stamp = now();
    const input_event events[] = {
        makeEvent(stamp, EV_KEY, BTN_TOOL_PEN, 1),
        makeEvent(stamp, EV_KEY, BTN_MIDDLE, pressed),
        makeEvent(stamp, EV_KEY, BTN_STYLUS, pressed),
        makeEvent(stamp, EV_SYN, SYN_REPORT, 0),
    };
    writeEvents(fd, events);
}

// The events of a double click carry a zero time stamp; that is intended.
void MyInput::doubleClick(int fd) const
{
    constexpr int kGapMicroseconds = 20000;
    const timeval zero{};
    for (int step = 0; step < 4; ++step) {
        if (step > 0)
            sleepMicroseconds(kGapMicroseconds);
        const input_event events[] = {
            makeEvent(zero, EV_KEY, BTN_LEFT, step % 2 == 0),
            makeEvent(zero, EV_SYN, SYN_REPORT, 0),
        };
        writeEvents(fd, events);
    }
}

MyInput::~MyInput()
{
    CloseUinput();
}

int MyInput::Init()
{
    OpenAbsUinput();
    OpenRelUinput();
    OpenAbsEraserUinput();
    return 1;
}

int MyInput::OpenAbsUinput()
{
    return openDevice(m_absFd, kPenDevice, false, true);
}

int MyInput::OpenRelUinput()
{
    return openDevice(m_relFd, kMouseDevice, true, false);
}

int MyInput::OpenAbsEraserUinput()
{
    return openDevice(m_eraserFd, kEraserDevice, true, false);
}

void MyInput::AttachDevices(int absFd, int relFd, int eraserFd)
{
    m_absFd = absFd;
    m_relFd = relFd;
    m_eraserFd = eraserFd;
}

void MyInput::SetWriteHook(WriteHook hook, void *context)
{
    m_writeHook = hook;
    m_writeHookContext = context;
}

bool MyInput::Declares(int fd, uint16_t type, uint16_t code) const
{
    if (fd == 0)
        return false;
    if (fd == m_absFd)
        return declares(kPenDevice, type, code);
    if (fd == m_relFd)
        return declares(kMouseDevice, type, code);
    return fd == m_eraserFd && declares(kEraserDevice, type, code);
}

void MyInput::CloseUinput()
{
    for (int *fd : {&m_absFd, &m_relFd, &m_eraserFd}) {
        if (*fd == 0)
            continue;
        ioctl(*fd, UI_DEV_DESTROY);
        close(*fd);
        *fd = 0;
    }
}

void MyInput::UpdateDigit(uint8_t status, uint16_t x, uint16_t y, uint16_t press, int8_t tiltX,
                          int8_t tiltY, bool eraser, const void *owner)
{
    static int oldCode = 0;
    if (status == 0 || !takePen(owner, status, oldCode))
        return;
    const bool leaving = status == kPenStatusLeave;
    bool useEraser = eraser;
    if (leaving) {
        press = 0;
        // The tool that entered is the one that leaves, whatever the eraser flag says now.
        if (oldCode == BTN_TOOL_PEN || oldCode == BTN_TOOL_RUBBER)
            useEraser = oldCode == BTN_TOOL_RUBBER;
    }
    const int fd = useEraser ? m_eraserFd : m_absFd;
    if (fd != 0) {
        const uint16_t tool = useEraser ? BTN_TOOL_RUBBER : BTN_TOOL_PEN;
        const timeval stamp = now();
        const input_event frame[] = {
            makeEvent(stamp, EV_KEY, tool, !leaving),
            makeEvent(stamp, EV_ABS, ABS_X, x),
            makeEvent(stamp, EV_ABS, ABS_Y, y),
            makeEvent(stamp, EV_ABS, ABS_PRESSURE, press),
            makeEvent(stamp, EV_ABS, ABS_TILT_X, tiltX),
            makeEvent(stamp, EV_ABS, ABS_TILT_Y, tiltY),
            makeEvent(stamp, EV_KEY, BTN_TOUCH, press != 0),
            makeEvent(stamp, EV_SYN, SYN_REPORT, 0),
        };
        oldCode = tool;
        writeEvents(fd, frame);
    }
    // Compared with the mouse and not the eraser, so eraser frames leave m_lastDevice alone;
    // intended.
    if (fd == m_absFd)
        m_lastDevice = kLastPen;
    else if (fd == m_relFd)
        m_lastDevice = kLastReserved;
}

// False when the frame is a leave of a pen that another tablet's pen has replaced.
bool MyInput::takePen(const void *owner, uint8_t status, int heldTool)
{
    if (!owner)
        return true;
    if (status == kPenStatusLeave) {
        const void *expected = owner;
        return m_penOwner.compare_exchange_strong(expected, nullptr);
    }
    const void *previous = m_penOwner.exchange(owner);
    if (!previous || previous == owner || (heldTool != BTN_TOOL_PEN && heldTool != BTN_TOOL_RUBBER))
        return true;
    const timeval stamp = now();
    const input_event lift[] = {
        makeEvent(stamp, EV_KEY, static_cast<uint16_t>(heldTool), 0),
        makeEvent(stamp, EV_ABS, ABS_PRESSURE, 0),
        makeEvent(stamp, EV_KEY, BTN_TOUCH, 0),
        makeEvent(stamp, EV_SYN, SYN_REPORT, 0),
    };
    writeEvents(heldTool == BTN_TOOL_RUBBER ? m_eraserFd : m_absFd, lift);
    return true;
}

void MyInput::UpdateRelMouse(uint8_t status, int16_t dx, int16_t dy)
{
    m_lastDevice = kLastMouse;
    if (m_relFd == 0)
        return;
    const timeval stamp = now();
    const input_event events[] = {
        makeEvent(stamp, EV_REL, REL_X, dx),
        makeEvent(stamp, EV_REL, REL_Y, dy),
        makeEvent(stamp, EV_KEY, BTN_LEFT, status & kPenStatusTip),
        makeEvent(stamp, EV_SYN, SYN_REPORT, 0),
    };
    writeEvents(m_relFd, events);
    sleepMicroseconds(100);
}

void MyInput::UpdateWheelRel(int fd, int16_t delta)
{
    if (fd == 0)
        return;
    const timeval stamp = now();
    const input_event events[] = {
        makeEvent(stamp, EV_REL, REL_WHEEL, delta),
        makeEvent(stamp, EV_SYN, SYN_REPORT, 0),
    };
    writeEvents(fd, events);
    sleepMicroseconds(100);
}

void MyInput::KeyEvent(int code, bool pressed)
{
    const timeval stamp = now();
    const input_event events[] = {
        makeEvent(stamp, EV_KEY, static_cast<uint16_t>(code), pressed),
        makeEvent(stamp, EV_SYN, SYN_REPORT, 0),
    };
    writeEvents(m_relFd, events);
}

void MyInput::DoMouseFunc(int id, bool pressed, bool flag)
{
    if (pressed)
        qInfo("DoMouseFunc %d true", id);
    const int fd = m_lastDevice == kLastMouse ? m_relFd : m_absFd;
    switch (id) {
    case kMouseLeftClick:
        clickButton(fd, BTN_LEFT, pressed);
        break;
    case kMouseRightClick:
        qDebug().noquote() << "BTN_RIGHT" << pressed
                           << QTime::currentTime().toString(QStringLiteral("mm:ss:zzz"));
        clickButton(fd, BTN_RIGHT, pressed);
        break;
    case kMouseMiddleClick:
        clickMiddle(fd, pressed);
        break;
    case kMouseDoubleClick:
        if (pressed)
            doubleClick(fd);
        break;
    case kMouseWheelUp:
        if (pressed)
            UpdateWheelRel(m_relFd, flag ? 0 : 1);
        break;
    case kMouseWheelDown:
        if (pressed)
            UpdateWheelRel(m_relFd, flag ? 0 : -1);
        break;
    default:
        break;
    }
}

void MyInput::ActionLibrary(int id, bool pressed)
{
    if (id < 1 || id > static_cast<int>(std::size(kActionKeys)))
        return;
    if (id >= kFirstCtrlAction)
        KeyEvent(KEY_LEFTCTRL, pressed);
    KeyEvent(kActionKeys[id - 1], pressed);
}

// A tap presses the keys in order and releases them in the same order, Ctrl first.
void MyInput::RingActionLibrary(int id, bool up)
{
    if (id < 0 || id >= static_cast<int>(std::size(kRingKeys)))
        return;
    const RingKeys &keys = kRingKeys[id];
    const int key = up ? keys.up : keys.down;
    for (bool pressed : {true, false}) {
        if (keys.ctrl)
            KeyEvent(KEY_LEFTCTRL, pressed);
        KeyEvent(key, pressed);
    }
}
