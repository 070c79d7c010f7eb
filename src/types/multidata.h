#pragma once

#include <QMetaType>
#include <cstdint>

// What the engine made of one report; a plain value that crosses to the window.
struct _MultiData {
    uint16_t flags;
    uint8_t penBtn1;
    uint8_t penBtn2;
    short relX;
    short relY;
    double screenPosX;
    double screenPosY;
    uint16_t pressure;
    int64_t digitX;
    int64_t digitY;
    int64_t reserved;
    int8_t tiltX;
    int8_t tiltY;
    short keyIndex;
    uint16_t keyState;
    short ringRel1;
    short ringRel2;
};

using MultiData = _MultiData;
Q_DECLARE_METATYPE(MultiData)
