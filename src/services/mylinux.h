#pragma once

#include <QString>

namespace mylinux
{

// Language name of the user's locale as used by the resource files,
// "English" when the language is not one we ship.
QString get_user_language_setting();

} // namespace mylinux
