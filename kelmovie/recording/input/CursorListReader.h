#pragma once

#include <QHash>
#include <QPixmap>
#include <QPointF>
#include <QString>

namespace kel
{

/// A shape of the pointer.
struct CursorImage {
    QPixmap image;   ///< its device pixel ratio is set
    QPointF hotspot; ///< in logical pixels of the image
};

using CursorImages = QHash<QString, CursorImage>; // by id

/// Reads "cursor.json" in `trackDir` and the images in "cursors" that it lists. False when there is no such list. An
/// image that is invalid or lies outside that directory is logged and left out.
bool readCursorList(const QString &trackDir, CursorImages &cursors);

} // namespace kel
