#pragma once

#include "dockicon/Glyph.h"

class QPushButton;
class QString;
class QWidget;

// Flat buttons that show a glyph. `action` is the tooltip and, without a shortcut in parentheses, the accessible name.

/// A button of the strip below a recording or of a notice.
QPushButton *createStripButton(KelDockIcon::Glyph glyph, const QString &action, QWidget *parent);

/// A button of a floating bar: the recorder's toolbar and the buttons of the area picker.
QPushButton *createBarButton(KelDockIcon::Glyph glyph, const QString &action, QWidget *parent);
