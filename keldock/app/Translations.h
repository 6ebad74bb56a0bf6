#pragma once

#include <QString>

/// The language of the program.
namespace Translations
{

/// Has texts translated from now on. `language` is a locale's name such as "zh_CN"; empty means the desktop's. Texts
/// without a translation stay English.
void install(const QString &language);

} // namespace Translations
