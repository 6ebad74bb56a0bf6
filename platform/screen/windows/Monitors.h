#pragma once

#include <QRegion>

namespace kel
{

/// The area of all monitors in physical pixels of the desktop.
QRegion monitorRegion();

} // namespace kel
