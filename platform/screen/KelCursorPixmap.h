#pragma once

#include <QPixmap>
#include <QPoint>
#include <QRect>
#include <QString>

#include <memory>

class KelCursorSource;

/// What the pointer looks like.
struct KelCursorShape {
    QString type;   ///< a name for this very picture and hotspot, the same in every run; fit for a file name
    QPixmap pixmap; ///< the picture, with the device pixel ratio of the screen that it was taken from
    QPoint hotspot; ///< the pixel of the picture that points
};

/// The pointer at one moment. Immutable: any thread may read a snapshot.
class KelCursorPixmap
{
public:
    /// The pointer now, as somebody who records `rect` (logical pixels of the desktop) sees it. Never null.
    ///
    /// The first question about a rectangle is for the GUI thread, which knows the scale of the screens; while
    /// somebody keeps an answer, any thread may ask on. Keeping one also keeps the connection to the system: as long as
    /// the shape stays the same, the next question then costs one short request.
    static std::shared_ptr<const KelCursorPixmap> GetCursor(const QRect &rect);

    /// No cursor: there is none, it is hidden, or the system does not tell.
    KelCursorPixmap() = default;

    KelCursorPixmap(const QPoint &position, const KelCursorShape &shape)
        : m_position(position)
        , m_shape(shape)
    {
    }

    bool hasCursor() const { return !m_shape.type.isEmpty(); }

    /// Where the hotspot is, in logical pixels of the desktop.
    QPoint position() const { return m_position; }

    QString type() const { return m_shape.type; }
    QPixmap pixmap() const { return m_shape.pixmap; }
    QPoint hotspot() const { return m_shape.hotspot; }

private:
    QPoint m_position;
    KelCursorShape m_shape;
    std::shared_ptr<KelCursorSource> m_source; // what makes the next question cheap
};
