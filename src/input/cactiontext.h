#pragma once

#include "settingsrecords.h"

#include <QString>
#include <QStringList>
#include <cstring>

// Texts that the key, pen button and wheel dispatch, the function strings and the commands
// of CAction share.
namespace actiontext
{

// A record field may lack its NUL; nothing past the field is read.
inline QString fieldText(const char *field)
{
    return QString::fromUtf8(field, static_cast<int>(strnlen(field, kFuncSize)));
}

inline QString groupSuffix(int group)
{
    return QStringLiteral("-I,-II,-III,-IV").split(QLatin1Char(',')).value(group);
}

inline QString actionTipKey(int id)
{
    return QStringLiteral("Actions.%1").arg(id);
}

} // namespace actiontext
