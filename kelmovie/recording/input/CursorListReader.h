#pragma once

#include <QHash>
#include <QPixmap>
#include <QPointF>
#include <QString>

namespace kel
{

/// The shapes that the pointer had, by their ids.
class CursorImages
{
public:
    struct Cursor {
        QPixmap image;   // its device pixel ratio is set
        QPointF hotspot; // in logical pixels of the image
    };

    /// Reads cursor.json in `trackDir`, and the images that it names in the folder cursors there. False when there is
    /// no such list. An image that cannot be used, or is not inside of that folder, is logged and left out.
    bool load(const QString &trackDir);

    /// Null when there is no image for `id`.
    const Cursor *find(const QString &id) const;

private:
    QHash<QString, Cursor> m_cursors;
};

} // namespace kel
