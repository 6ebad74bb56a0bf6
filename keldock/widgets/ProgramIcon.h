#pragma once

#include "dockicon/KelDockIcon.h"

/// The program's own picture, which its windows have; tools/program_icon makes the file for Windows of it.
inline QIcon programIcon()
{
    return KelDockIcon::icon(KelDockIcon::Glyph::Record, QColor(0xe1, 0x3d, 0x30));
}
