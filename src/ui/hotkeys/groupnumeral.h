#pragma once

#include <QString>

#include <iterator>

// Key groups 0 to 3 are named I to IV.
inline QString groupNumeral(int group)
{
    static const char *const kNumerals[] = {"I", "II", "III", "IV"};
    if (group < 0 || group >= int(std::size(kNumerals)))
        return QString();
    return QString::fromLatin1(kNumerals[group]);
}
