#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

struct input_event;

// The fixed absolute space of the pen and eraser devices.
constexpr int kAbsMaxX = 52324;
constexpr int kAbsMaxY = 29600;
constexpr int kAbsMaxPressure = 8191;
constexpr int kAbsMinTilt = -63;
constexpr int kAbsMaxTilt = 64;

// The three virtual devices the desktop sees: pen, mouse-and-keyboard and eraser, made
// through uinput. One instance lives for the whole process.
class MyInput
{
public:
    MyInput() = default;
    ~MyInput();
    MyInput(const MyInput &) = delete;
    MyInput &operator=(const MyInput &) = delete;

    int Init();
    int OpenAbsUinput();
    int OpenRelUinput();
    int OpenAbsEraserUinput();
    void CloseUinput();

    // Every tablet writes to the same pen device. With an `owner` (one per tablet), the pen in
    // range belongs to one tablet at a time: another tablet's pen coming in lifts the held one
    // where it is, and that tablet's late leave is then dropped, so a tablet that went silent
    // with its pen down cannot hold or cut the next one's strokes.
    void UpdateDigit(uint8_t status, uint16_t x, uint16_t y, uint16_t press, int8_t tiltX,
                     int8_t tiltY, bool eraser, const void *owner = nullptr);
    void UpdateRelMouse(uint8_t status, int16_t dx, int16_t dy);
    void UpdateWheelRel(int fd, int16_t delta);
    void KeyEvent(int code, bool pressed);
    void DoMouseFunc(int id, bool pressed, bool flag);
    void ActionLibrary(int id, bool pressed);
    void RingActionLibrary(int id, bool up);

    // Writes to descriptors of the caller's (a pipe, /dev/null) instead of uinput nodes;
    // for tools that replay or measure the report path.
    void AttachDevices(int absFd, int relFd, int eraserFd);

    // Sees every frame as it is written, whichever device it goes to (told by the descriptor);
    // for tools that print what the desktop would receive. Unset, it costs one test per write.
    using WriteHook = void (*)(void *context, int fd, const input_event *events, int count);
    void SetWriteHook(WriteHook hook, void *context);
    // Whether the device behind `fd` (the first of the three attached to it) declares events
    // of this type and code, as set up on a kernel with the modern uinput protocol; for tools
    // that check what the report path writes.
    bool Declares(int fd, uint16_t type, uint16_t code) const;

    // Descriptors are 0 for a device that did not open.
    int absFd() const { return m_absFd; }
    int relFd() const { return m_relFd; }
    int eraserFd() const { return m_eraserFd; }
    int lastDevice() const { return m_lastDevice; }

private:
    template <size_t N> void writeEvents(int fd, const input_event (&events)[N]) const;
    void clickButton(int fd, uint16_t button, bool pressed) const;
    void clickMiddle(int fd, bool pressed) const;
    void doubleClick(int fd) const;
    bool takePen(const void *owner, uint8_t status, int heldTool);

    int m_absFd = 0;
    int m_relFd = 0;
    int m_eraserFd = 0;
    int m_lastDevice = 0;
    std::atomic<const void *> m_penOwner{nullptr};
    WriteHook m_writeHook = nullptr;
    void *m_writeHookContext = nullptr;
};
