#pragma once

#include "myinput.h"

#include <QRect>
#include <QTime>

class CTipSink;

constexpr int kScreenSlots = 10;

// Process-wide state of the input engine: the screens it maps to, the virtual devices it
// writes, and the tip it shows. The device link reaches the same members through CGlobalData.
class CInputGlobals
{
public:
    CInputGlobals() = delete;

    static QTime LastTabletActionTime;
    static CTipSink *Show_Info;
    static QRect ScreenArray[kScreenSlots];
    static QRect LogicScreenArray[kScreenSlots];
    static int PrimaryID;
    static int ScreenNum;
    // The virtual devices; opened once by the window, written by every reader thread.
    static MyInput MyInputDriver;
};
