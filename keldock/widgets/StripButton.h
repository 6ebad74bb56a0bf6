#pragma once

#include "dockicon/Glyph.h"

class QPushButton;
class QString;
class QWidget;

/// A flat button that shows a glyph; `action` is its tool tip, a shortcut in parentheses included, and without it its
/// accessible name.
QPushButton *stripButton(KelDockIcon::Glyph glyph, const QString &action, QWidget *parent);
