#pragma once

#include "dockicon/Glyph.h"

class QPushButton;
class QString;

/// Shared by buttons that keep their state in their text, a single glyph of the icon font.
namespace kel::GlyphButton
{

/// Makes the button flat and square and scales it for its screen.
void prepare(QPushButton *button);

/// Shows the glyph. `action`, the tool tip and accessible name, is what a click does in this state.
void show(QPushButton *button, KelDockIcon::Glyph glyph, const QString &action);

/// Whether the text is exactly this glyph.
bool shows(const QPushButton *button, KelDockIcon::Glyph glyph);

} // namespace kel::GlyphButton
