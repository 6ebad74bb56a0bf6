#pragma once

class QString;
class QWidget;

/// Styles a widget with a sheet of this folder, in the present theme and from now on: "Window" is for windows and the
/// dialogs that belong to them, "StripButton" for flat buttons with a glyph.
void applyDockStyle(QWidget *widget, const QString &sheet);
