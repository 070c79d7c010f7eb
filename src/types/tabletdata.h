#pragma once

#include <cstdint>

constexpr int kTabletKeyCount = 40;
constexpr int kPenButtonCount = 4;

// Bits of TabletDataEX::eventFlags.
constexpr uint16_t kEventPen = 0x01;
constexpr uint16_t kEventKeys = 0x02;
constexpr uint16_t kEventWheel = 0x04;
constexpr uint16_t kEventPenButtons = 0x08;
constexpr uint16_t kEventUnknown = 0x20;

// Key states, 0 or 1; index n is key n counted from 0.
struct TabletKeyData {
    uint8_t current[kTabletKeyCount];
    uint8_t previous[kTabletKeyCount];
};

// Pen button states of one report, 0 or 1.
struct PenBtnData {
    uint8_t current[kPenButtonCount];
    uint8_t previous[kPenButtonCount];
};

// One decoded report. The dispatcher zeroes it and sets the first two fields.
struct TabletDataEX {
    int tabletIndex;
    int productId;
    uint16_t eventFlags;
    int64_t x;
    int64_t y;
    int pressure;
    uint8_t tiltX;
    uint8_t tiltY;
    uint8_t penStatus;
    uint8_t penButtonMask;  // bit n: pen button n changed in this report
    uint8_t penButtonState; // 1 down, 0 up, of the highest changed button
    uint8_t penId;
    TabletKeyData keys;   // valid with kEventKeys
    short wheelIndex;     // valid with kEventWheel
    short wheelDirection; // +1 or -1, valid with kEventWheel
};
