#pragma once

#include <QRect>

/// The rectangle around all screens, in physical pixels of the desktop; empty where there is none.
QRect virtualScreen();
