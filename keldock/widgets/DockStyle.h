#pragma once

class QString;
class QWidget;

/// Styles a widget with one of the sheets next to this file and keeps it up to date with the theme: "Window" for
/// windows and their dialogs, "Bar" for floating bars, "StripButton" and "SwitchButton" for flat buttons with a glyph.
void applyDockStyle(QWidget *widget, const QString &sheet);
