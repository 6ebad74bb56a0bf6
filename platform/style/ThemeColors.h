#pragma once

#include <QColor>
#include <QPalette>
#include <QString>

/// The named colors of the light and the dark theme.
namespace kel::ThemeColors
{

/// Invalid when no color has the name.
QColor color(const QString &name, bool dark);

/// The same colors for widgets that have no style sheet.
QPalette palette(bool dark);

bool isDark(const QPalette &palette);

} // namespace kel::ThemeColors
