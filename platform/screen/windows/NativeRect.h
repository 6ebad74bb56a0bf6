#pragma once

#include <QRect>

#include <windows.h>

namespace kel
{

/// Right and bottom of Windows' rectangles lie behind their last pixel.
inline QRect fromNative(const RECT &rect)
{
    return {QPoint(rect.left, rect.top), QPoint(rect.right - 1, rect.bottom - 1)};
}

} // namespace kel
