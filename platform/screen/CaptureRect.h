#pragma once

#include <QRect>
#include <QString>

namespace kel
{

/// Why a rectangle (physical pixels) cannot be captured by a backend whose frames are at most `maxSide` pixels wide and
/// high, in English; empty when it can.
QString captureRectError(const QRect &rect, int maxSide);

} // namespace kel
