#pragma once

#include <QGuiApplication>

/// Whether windows appear where the program puts them. Wayland places them itself and tells nobody where.
inline bool canPlaceWindows()
{
    return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}
