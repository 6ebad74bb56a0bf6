#pragma once

#include "Glyph.h"
#include "KelDockIconGlobal.h"

#include <QFont>
#include <QIcon>
#include <QString>

/// The icon font: symbols as characters, which take a label's colour and any size. GUI thread.
namespace KelDockIcon
{

/// A label's text that shows the glyph, in font().
inline QString text(Glyph glyph)
{
    return QString(QChar(char16_t(glyph)));
}

/// Name of the font's family, for style sheets. Loads the font at the first call.
KELDOCKICON_EXPORT QString family();

/// The font at a size in logical pixels, which is the edge of the square that a glyph stands in.
KELDOCKICON_EXPORT QFont font(int pixelSize);

/// A glyph where a text does not serve: window icons, the tray, menus. Sharp at any size.
KELDOCKICON_EXPORT QIcon icon(Glyph glyph, const QColor &color);

} // namespace KelDockIcon
