#pragma once

#include <QPixmap>
#include <QPoint>
#include <QRect>
#include <QString>

#include <memory>

class KelCursorSource;

/// The shape of the pointer.
struct KelCursorShape {
    QString type;   ///< identifies image and hotspot, the same in every run; valid as a file name; empty for no cursor
    QPixmap pixmap; ///< the image, with the device pixel ratio of its screen
    QPoint hotspot; ///< in pixels of the image
};

/// A snapshot of the pointer. Immutable: any thread may read it.
class KelCursorPixmap
{
public:
    /// The current pointer in the scale of the screen that holds `rect` (logical pixels of the desktop). Never null.
    ///
    /// The first call for a rectangle must be made on the GUI thread, which reads the scale of the screens; any thread
    /// may call again while a snapshot of the rectangle exists. A snapshot also keeps the connection to the system
    /// open: as long as the shape does not change, the next call costs one short request.
    static std::shared_ptr<const KelCursorPixmap> GetCursor(const QRect &rect);

    /// No cursor: none exists, it is hidden, or the system does not report it.
    KelCursorPixmap() = default;

    KelCursorPixmap(const QPoint &position, const KelCursorShape &shape)
        : m_position(position)
        , m_shape(shape)
    {
    }

    bool hasCursor() const { return !m_shape.type.isEmpty(); }

    /// Position of the hotspot in logical pixels of the desktop.
    QPoint position() const { return m_position; }

    QString type() const { return m_shape.type; }
    QPixmap pixmap() const { return m_shape.pixmap; }
    QPoint hotspot() const { return m_shape.hotspot; }

private:
    QPoint m_position;
    KelCursorShape m_shape;
    std::shared_ptr<KelCursorSource> m_source; // kept so that the next call is cheap
};
