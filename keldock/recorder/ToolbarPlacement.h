#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QVector>

#include <optional>

/// Where the toolbar can be without being recorded.
namespace ToolbarPlacement
{

/// The top-left corner of a toolbar that does not overlap the area: below, above, right or left of it, or on another
/// screen. No value when the area covers everything. `screens` are the available geometries of all screens.
std::optional<QPoint> beside(const QRect &area, const QSize &toolbar, const QVector<QRect> &screens);

} // namespace ToolbarPlacement
