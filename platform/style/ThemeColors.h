#pragma once

#include <QColor>
#include <QPalette>
#include <QString>

/// The named colours of the light and the dark theme.
namespace kel::ThemeColors
{

/// Invalid when no colour has the name.
QColor color(const QString &name, bool dark);

/// The same colours for what is not styled by a sheet.
QPalette palette(bool dark);

bool isDark(const QPalette &palette);

} // namespace kel::ThemeColors
