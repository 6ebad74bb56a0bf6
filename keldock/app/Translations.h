#pragma once

#include <QString>

/// The language of the program.
namespace Translations
{

/// Installs the translators of Qt, the module and the program. `language` is a locale name such as "zh_CN"; an empty
/// string selects the desktop's language. Texts without a translation are shown in English.
void install(const QString &language);

} // namespace Translations
