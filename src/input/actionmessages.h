#pragma once

// Ids of the action messages that the engine and the tablet post to the window
// (PostActionMsg, handled in MainWindow::ReceivActionMsg). "text" marks a message that
// carries the path of the current application instead of a number.
constexpr int kMsgShowDriver = 1;    // 1: show the settings window
constexpr int kMsgScreenMapping = 2; // 0: map to the next screen
constexpr int kMsgPenEraser = 3;     // 1 eraser, 0 pen
constexpr int kMsgFineMode = 4;      // 0: open or close fine mode
constexpr int kMsgRingFunctions = 5; // text; plus the ring index, so 6 is the second ring
constexpr int kMsgRing2Functions = kMsgRingFunctions + 1;
constexpr int kMsgPenRingFunctions = kMsgRingFunctions + 3; // text: the pen's roller
constexpr int kMsgTrackPad = 7;            // 0: toggle the touch strip between touch and wheel
constexpr int kMsgKeyGroup = 10;           // text: the key group changed
constexpr int kMsgKeyPreview = 11;         // text: toggle the key preview
constexpr int kMsgBattery = 88;            // the charge state, 1 while charging
constexpr int kMsgPenChange = 89;          // the id of the pen now on the tablet
constexpr int kMsgUsage = 99;              // text: a usage item for telemetry
constexpr int kMsgWirelessConnected = 100; // 0: restore the touch strip mode
// Display replies, with the value the display reports. They bear the numbers of the display
// commands that set the same values (kCmdColourSpace ... in devicecommands.h).
constexpr int kMsgColourSpace = 111;
constexpr int kMsgColourTemperature = 112;
constexpr int kMsgRedGain = 113;
constexpr int kMsgGreenGain = 114;
constexpr int kMsgBlueGain = 115;
constexpr int kMsgBrightness = 117;
constexpr int kMsgContrast = 118;
