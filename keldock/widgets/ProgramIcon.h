#pragma once

#include "dockicon/KelDockIcon.h"
#include "widgets/DockColors.h"

/// The icon of the program and its windows. The build tool program_icon renders the icon file for Windows from it.
inline QIcon programIcon()
{
    return KelDockIcon::icon(KelDockIcon::Glyph::Record, QColor(DockColors::kRecording));
}
