#pragma once

#include "deviceattributes.h"
#include "textfield.h"

// Pen displays tell their model by product id, read back from the end of the PID string.
namespace DisplayModels
{
// From this product id on, a pen display takes picture settings over the USB link.
constexpr int kFirstWithPictureSettings = 0x0A5A;
// From this one on, a display's brightness starts at 80 rather than 50.
constexpr int kFirstBrightByDefault = 0x0A2A;

inline int productId(const _DEVICE_ATTRIBUTES &device)
{
    return fieldText(device.PidString).right(4).toInt(nullptr, 16);
}

// Their 5000K setting is a low blue light mode.
inline bool hasLowBlueLight(int product)
{
    return product == 0x0A5A || product == 0x0A5B;
}

// They keep factory picture values that a reset restores.
inline bool hasFactoryValues(int product)
{
    return hasLowBlueLight(product) || product == 0x0A5F;
}
} // namespace DisplayModels
