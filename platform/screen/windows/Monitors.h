#pragma once

#include <QRegion>

namespace kel
{

/// Where there are screens, in physical pixels of the desktop.
QRegion monitorRegion();

} // namespace kel
