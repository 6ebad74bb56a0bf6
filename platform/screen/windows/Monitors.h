#pragma once

#include <QRegion>

/// Where there are screens, in physical pixels of the desktop.
QRegion monitorRegion();
