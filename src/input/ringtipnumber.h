#pragma once

// How a wheel's four slots map onto the default functions, shared by the engine that runs
// them and the window that names them. `ringType` is the ring's index plus its type (0 wheel,
// 1 touch ring, 3 pen roller): the second ring counts its slots backwards, and the roller
// starts after zoom.

// The kind of default function of slot `func`: 0 zoom, 1 scroll, 2 brush size, 3 canvas
// rotation; anything else does nothing. Wide, as `func` may come from anywhere.
constexpr long long ringFunctionKind(int ringType, int func)
{
    const long long function = func;
    switch (ringType) {
    case 1:
    case 2:
        return 3 - function;
    case 3:
        return function == 3 ? 0 : function + 1;
    default:
        return function;
    }
}

// The number of the text "TR.Item.%1" that names the default function of slot `func` (0 to 3).
constexpr int ringItemNumber(int ringType, int func)
{
    return static_cast<int>(ringFunctionKind(ringType, func)) + 1;
}

// The number of the tip a default function shows, or 0 where the ring type shows none.
constexpr int ringTipNumber(int ringType, int func)
{
    return ringType >= 0 && ringType <= 3 ? ringItemNumber(ringType, func) : 0;
}
