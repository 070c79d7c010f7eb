#pragma once

#include "cglobaldata.h"
#include "languagetexts.h"
#include "mylrc.h"

// The window's tip, reached from the area pickers; without a window there is none.
namespace TipWindow
{
inline void show(const char *key)
{
    if (auto *tip = dynamic_cast<MyLrc *>(CGlobalData::Show_Info))
        tip->ShowInfoText(languageText(key), false);
}

inline void close()
{
    if (auto *tip = dynamic_cast<MyLrc *>(CGlobalData::Show_Info))
        tip->CloseInfoText();
}
} // namespace TipWindow
