#pragma once

#include "dockicon/Glyph.h"

class QPushButton;
class QString;

/// What buttons have in common whose text, one glyph of the icon font, is also their state.
namespace kel::GlyphButton
{

/// The look of such a button: flat, square, as large as the screen's scale wants it.
void prepare(QPushButton *button);

/// Shows the glyph; `action` tells what a click does now.
void show(QPushButton *button, KelDockIcon::Glyph glyph, const QString &action);

/// The text is this glyph and nothing else.
bool shows(const QPushButton *button, KelDockIcon::Glyph glyph);

} // namespace kel::GlyphButton
