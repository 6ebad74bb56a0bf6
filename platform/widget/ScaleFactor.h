#pragma once

#include "KelWidgetGlobal.h"

class QWidget;

/// Logical pixels of the widget's screen per pixel of a 96-dpi desktop, the unit in which sizes of controls are given.
/// GUI thread.
KELWIDGET_EXPORT double scaleFactor(const QWidget *widget);
