#pragma once

#include <QRect>

#include <windows.h>

namespace kel
{

/// Converts a RECT, whose right and bottom edges are exclusive.
inline QRect fromNative(const RECT &rect)
{
    return {QPoint(rect.left, rect.top), QPoint(rect.right - 1, rect.bottom - 1)};
}

} // namespace kel
