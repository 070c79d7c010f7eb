#pragma once

#include <cstdint>

constexpr uint32_t kVendorId = 0x5A3C;
constexpr int kCatalogueSize = 76;
constexpr int kModelNameSize = 56;

enum DeviceType : uint16_t {
    DeviceTypeTablet = 1,
    DeviceTypePenDisplay = 2,
    DeviceTypeRemote = 4,
};

// One row of the catalogue of supported products.
struct ZelkDevice {
    uint32_t vid;
    uint32_t pid;
    uint32_t interfaceNumber;
    uint32_t collection;
    uint16_t reportMode;
    uint16_t deviceType;
    char name[kModelNameSize];
};

extern const ZelkDevice zelkDevList[kCatalogueSize];
