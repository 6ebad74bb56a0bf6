#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QVector>

#include <optional>

/// Where a toolbar can stand without being in the picture.
namespace ToolbarPlacement
{

/// Its top-left corner: below, above, right or left of the area, or else on a screen that the area leaves free; none
/// when the area covers everything. `screens` are the usable parts of all screens.
std::optional<QPoint> beside(const QRect &area, const QSize &toolbar, const QVector<QRect> &screens);

} // namespace ToolbarPlacement
