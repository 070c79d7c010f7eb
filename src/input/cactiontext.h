#pragma once

#include "textfield.h"

#include <QString>
#include <QStringList>

// Texts that the key, pen button and wheel dispatch, the function strings and the commands
// of CAction share.
namespace actiontext
{

inline QString groupSuffix(int group)
{
    return QStringLiteral("-I,-II,-III,-IV").split(QLatin1Char(',')).value(group);
}

inline QString actionTipKey(int id)
{
    return QStringLiteral("Actions.%1").arg(id);
}

} // namespace actiontext
