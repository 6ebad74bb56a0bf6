#pragma once

#include "Glyph.h"
#include "KelDockIconGlobal.h"

#include <QFont>
#include <QIcon>
#include <QString>

/// The icon font: symbols as characters, drawn in a label's color and at any size. GUI thread.
namespace KelDockIcon
{

/// The text that shows the glyph in a label with font().
inline QString text(Glyph glyph)
{
    return QString(QChar(char16_t(glyph)));
}

/// Name of the font's family, for style sheets. The first call loads the font.
KELDOCKICON_EXPORT QString family();

/// The font at a size in logical pixels, the edge length of the square that each glyph fills.
KELDOCKICON_EXPORT QFont font(int pixelSize);

/// A glyph as an icon, for windows, the tray and menus. Sharp at any size; drawn with reduced opacity when disabled.
KELDOCKICON_EXPORT QIcon icon(Glyph glyph, const QColor &color);

} // namespace KelDockIcon
