#pragma once

#include <cstdint>

// Byte 1 of a pen report, kept as TabletDataEX::penStatus: where the pen is and what it presses.
constexpr uint8_t kPenStatusLeave = 0xC0;       // the pen leaves the tablet
constexpr uint8_t kPenStatusInRangeMask = 0x30; // under this mask a pen in range reads 0x20
constexpr uint8_t kPenStatusInRange = 0x20;
constexpr uint8_t kPenStatusButtons = 0x0F;     // bits 0 to 3: pen buttons 1 to 4
constexpr uint8_t kPenStatusTip = 0x01;         // button 1, the tip, touches
constexpr uint8_t kPenStatusPenHover = 0xA0;    // the pen in range with nothing pressed
constexpr uint8_t kPenStatusEraserHover = 0xA8; // the eraser end in range
constexpr uint8_t kPenStatusEraserTouch = 0xA9; // the eraser end touches
