#pragma once

#include <cstdint>

// Byte 0 of a report: its id. The reader hands on only the first two.
constexpr uint8_t kReportIdTablet = 0x02;  // pen, keys, wheels and all replies; every command too
constexpr uint8_t kReportIdKeys = 0x03;    // keys and wheels; the keyboard-style remote's start
constexpr uint8_t kReportIdKeyBits = 0x06; // 32 key bits from byte 1, without a kind byte

// Byte 1 of a report: its kind. A command and the device's answer to it share their kind.
constexpr uint8_t kKindStart = 0xB0;   // start packet and report mode; the start reply
constexpr uint8_t kKindLights = 0xB4;  // lights and touch strip; the light reply
constexpr uint8_t kKindDisplay = 0xB5; // display settings, asked, set and reported
constexpr uint8_t kKindFile = 0xB6;    // file transfer, both ways
constexpr uint8_t kKindBattery = 0xF2;
constexpr uint8_t kKindConnection = 0xF8; // a wireless device comes back
constexpr uint8_t kKindDeviceInfo = 0x06; // byte 2 is one of the kInfo kinds
constexpr uint8_t kKindKeys = 0xF0;       // keys and wheels
constexpr uint8_t kKindPenIdentity = 0xF6;
constexpr uint8_t kKindKeyboardIdle = 0x01; // the keyboard-style remote with no key down
// The start packet of the keyboard-style remote, which has no kKindStart.
constexpr uint8_t kKindKeyboardStart = 0x01;

// Byte 2 of a device information reply.
constexpr uint8_t kInfoProductName = 0x02;
constexpr uint8_t kInfoSerialNumber = 0x03;
constexpr uint8_t kInfoICVersion = 0x04;
constexpr uint8_t kInfoICData = 0x05;
constexpr uint8_t kInfoRanges = 0x64;
constexpr uint8_t kInfoTabletType = 0x6E;
constexpr uint8_t kInfoSecondSerial = 0x83;

// Light frames: byte 2 what, byte 3 ask or set. A light reply echoes kLightsValue, kLightsAsk.
constexpr uint8_t kLightsValue = 0x01;
constexpr uint8_t kLightsTouchStrip = 0x02;
constexpr uint8_t kLightsAsk = 0x00;
constexpr uint8_t kLightsSet = 0x01;

// Display frames, commands and replies alike: byte 3 is the setting.
constexpr uint8_t kDisplayColour = 0x01; // byte 4 picks one of the kColour settings
constexpr uint8_t kDisplayBrightness = 0x03;
constexpr uint8_t kDisplayContrast = 0x04;
constexpr uint8_t kDisplayReset = 0x07;
constexpr uint8_t kDisplayState = 0xF0; // asks for all settings
constexpr uint8_t kColourSpace = 0x01;
constexpr uint8_t kColourTemperature = 0x02;
constexpr uint8_t kColourGain = 0x03; // byte 6 is the channel: red 1, green 2, blue 3

// File frames: byte 2 is the stage, byte 3 its code.
constexpr uint8_t kFileStageRead = 0x00;  // the driver asks, the device sends header and data
constexpr uint8_t kFileStageWrite = 0x01; // a write begins; the device accepts with kFileAccepted
constexpr uint8_t kFileStageEnd = 0x02;   // a transfer ends
constexpr uint8_t kFileStageChunk = 0x03; // a piece of the file being written
constexpr uint8_t kFileReadHeader = 0x01; // read stage: the header, and the driver's ask for it
constexpr uint8_t kFileReadData = 0x02;   // read stage: the driver asks for the data
constexpr uint8_t kFileAccepted = 0x01;   // write stage: the device takes the write
constexpr uint8_t kFileStored = 0x02;     // end stage: the written file is stored
constexpr uint8_t kFileEnded = 0x00;      // end stage: a read ends, or a write is refused

// Lengths told to hid_write.
constexpr int kStartFrameLength = 10;
constexpr int kLightsFrameLength = 12;
constexpr int kDisplayFrameLength = 10;
constexpr int kFileWriteFrameLength = 32;
constexpr int kFileReadFrameLength = 10;
