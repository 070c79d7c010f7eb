#pragma once

#include <cstdint>

constexpr int kDevicePathSize = 1024;
constexpr int kPidStringSize = 9;
constexpr int kIdentitySize = 56;
constexpr int kTabletTypeSize = 55;
constexpr int kSecondSerialSize = 8;
constexpr int kDefaultLpi = 5080;

// What a device says about itself; readers take a copy.
struct _DEVICE_ATTRIBUTES {
    char DevicePath[kDevicePathSize];
    char PidString[kPidStringSize];
    char Manufacturer[kIdentitySize];
    char ProductName[kIdentitySize];
    char ModelName[kIdentitySize];
    char ShowName[kIdentitySize];
    char ICVersion[kIdentitySize];
    char SerialNumber[kIdentitySize];
    char ICData[kIdentitySize];
    int DeviceType;
    int64_t MaxX;
    int64_t MaxY;
    int LPI;
    int Width;
    int Height;
    int MaxPressure;
    uint8_t TabletType[kTabletTypeSize];
    uint8_t SecondSerial[kSecondSerialSize];
    short TabletLight;
    short WheelLight;
};
