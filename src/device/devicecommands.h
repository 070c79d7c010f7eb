#pragma once

// Commands of CTablet::SentCmd(command, p1, p2). Numbers without a name send nothing.
constexpr int kCmdAskLight = 0;   // p1: a kLight; the device answers with its value
constexpr int kCmdSetLight = 1;   // p1: a kLight, p2: its value
constexpr int kCmdTouchStrip = 2; // p1: a kStrip mode, p2: the orientation for kStripTouch
constexpr int kCmdReportMode = 3; // p1: the report mode
// Sent when the battery gauge shows; the channel has no frame for it, so nothing goes out.
constexpr int kCmdBattery = 4;
// Display commands, p1 1 and p2 the value. A device reports a setting with the frame of its
// command, and the window gets it as the action message of the same number.
constexpr int kCmdDisplayState = 110; // asks for every setting below
constexpr int kCmdColourSpace = 111;
constexpr int kCmdColourTemperature = 112;
constexpr int kCmdRedGain = 113;
constexpr int kCmdGreenGain = 114;
constexpr int kCmdBlueGain = 115;
constexpr int kCmdBrightness = 117;
constexpr int kCmdContrast = 118;
constexpr int kCmdDisplayReset = 119;

// Lights of kCmdAskLight and kCmdSetLight; byte 4 of the light reply names them alike.
constexpr int kLightWheel = 1;
constexpr int kLightTablet = 2;

// Modes of kCmdTouchStrip.
constexpr int kStripTouch = 1;
constexpr int kStripWheel = 3;

// Report mode of kCmdReportMode that gives the device back to the system.
constexpr int kReportModeSystem = 2;

// Modes of CTablet::SentSaveFileCmd(mode, data, length).
constexpr int kSaveFileBegin = 1; // length: the size of the whole file
constexpr int kSaveFileEnd = 2;
constexpr int kSaveFileChunk = 3; // data: the next piece, at most 29 bytes

// Modes of CTablet::SentReadFileCmd(mode, value).
constexpr int kReadFileHeader = 1;
constexpr int kReadFileData = 2; // value: what the frame asks for, 0 for the data

// File transfer events of CTablet::PostDeviceOperatorMsg(op, value).
constexpr int kOpWriteAccepted = 1;  // value 0: the window sends the file
constexpr int kOpWriteConfirmed = 3; // value 2
constexpr int kOpWriteRefused = 4;   // value 0
constexpr int kOpReadHeader = 5;     // value: the file size; the window asks for the data
constexpr int kOpReadProgress = 6;   // value: percent
constexpr int kOpReadDone = 7;       // value 1: the incoming node holds the file
constexpr int kOpReadFailed = 8;     // value 1 or the file size
constexpr int kOpReadOtherMark = 9;  // value 0: a failure
constexpr int kOpReadNoFile = 10;    // value 0: a failure
