#pragma once

#include <cstdint>

// Plain, fixed-size records: the reader thread reads them live without
// allocating, and a whole profile is copied with one memcpy.

constexpr int kFuncSize = 1024;
constexpr int kPenCount = 8;
constexpr int kRingCount = 2;
constexpr int kRingItemCount = 4;
constexpr int kKeyCount = 40;
constexpr int kKeyGroupCount = 4;
constexpr int kPenBtnCount = 3;
constexpr int kOrientationCount = 4;
constexpr int kPidNameSize = 30;

struct stPenBtn {
    int16_t id;
    int16_t Actid;
    char func[kFuncSize];
};

struct stPenConfig {
    uint8_t bRelativeCoords;
    uint8_t bTablePC;
    int16_t Speed;
    float P0;
    float P1X;
    float P1Y;
    float P2;
    stPenBtn PenBtn[kPenBtnCount];
};

// The pressure curve: a quadratic Bezier on the unit square from (P0, 0) over
// (P1X, 1 - P1Y) to (P2, 1), the Y axis pointing down on screen.
struct SPresslvPoints {
    float P0;
    float P1X;
    float P1Y;
    float P2;
};

struct stRingItem {
    char func[kFuncSize];
    int16_t id;
};

struct stRingConfig {
    stRingItem Item[kRingItemCount];
    int16_t id;
    uint8_t mode;
    int16_t type;
    int16_t Speed;
};

struct stKeyConfig {
    int16_t id;
    char func[kFuncSize];
    uint8_t Show;
    int16_t Actid;
    int16_t Motid;
};

struct stKeyGroup {
    uint8_t bEnable;
    stKeyConfig Key[kKeyCount];
};

struct _stAppConfigNode {
    char path[kFuncSize];
    stPenConfig Pen[kPenCount];
    stRingConfig Ring[kRingCount];
    stKeyConfig Key[kKeyCount];
    stKeyGroup KeyGroup[kKeyGroupCount];
    int16_t SelectID;
    _stAppConfigNode *next;
};

struct stOrientArea {
    int16_t X;
    int16_t Y;
    int16_t W;
    int16_t H;
};

struct stBERect {
    int16_t x;
    int16_t y;
    int16_t w;
    int16_t h;
};

struct stTablet_XMLData {
    char szPidName[kPidNameSize];
    int16_t DeviceControl;
    int16_t DeviceTrackPad;
    int16_t SupportGroupKeys;
    int16_t DeviceKeyDirection;
    int16_t DeviceRingNum;
    int16_t DeviceKeyNum;
    int16_t DevicePenType;
    int16_t ScreenId;
    int16_t SX;
    int16_t SY;
    int16_t SW;
    int16_t SH;
    int16_t TX;
    int16_t TY;
    int16_t TW;
    int16_t TH;
    int16_t Orientation;
    stOrientArea OrientArea[kOrientationCount];
    float fKX;
    float fKY;
    float fXLC;
    float fYLC;
    int16_t DisablePressure;
    int16_t DisableInfo;
    int16_t DisableQuickKey;
    int16_t DisableSlope;
    int16_t bBERectOn;
    stBERect BERect;
    int16_t DevicePenNum;
    int16_t DeviceCurPenID;
    int16_t PenMoveInTablet;
    _stAppConfigNode CommonAPP;
    _stAppConfigNode *stAppConfigPtr;
};
