#include "cinputglobals.h"

QTime CInputGlobals::LastTabletActionTime;
CTipSink *CInputGlobals::Show_Info = nullptr;
QRect CInputGlobals::ScreenArray[kScreenSlots];
QRect CInputGlobals::LogicScreenArray[kScreenSlots];
int CInputGlobals::PrimaryID = 0;
int CInputGlobals::ScreenNum = 0;
MyInput CInputGlobals::MyInputDriver;
