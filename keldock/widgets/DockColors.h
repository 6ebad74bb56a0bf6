#pragma once

#include <QColor>

/// Colors of the recorder's states. The same in every theme: they have enough contrast on light and dark backgrounds,
/// such as that of the system tray.
namespace DockColors
{

inline constexpr QRgb kReady = qRgb(0x33, 0x88, 0xff);
inline constexpr QRgb kRecording = qRgb(0xe1, 0x3d, 0x30);
inline constexpr QRgb kPaused = qRgb(0xe8, 0xa3, 0x3d);

} // namespace DockColors
