#pragma once

#include <QImage>
#include <QPoint>
#include <QRegion>
#include <QTransform>

#include <optional>

struct spa_buffer;
struct spa_video_info_raw;

namespace kel
{

/// What one buffer of a screen cast brings.
struct CastFrame {
    struct Pointer {
        bool isOnStream = false;
        QPoint position; ///< of the hotspot, in pixels of the picture
        /// Nothing when the shape is as before; a null image when there is nothing to see.
        std::optional<QImage> shape;
        QPoint hotspot; ///< of a new shape
    };

    /// The pixels as they lie in the buffer, whose memory they are. Null when only the pointer has moved.
    QImage picture;
    QTransform toUpright; ///< turns the picture of a turned monitor
    /// Nothing when the compositor does not tell what has changed.
    std::optional<QRegion> damage;
    std::optional<Pointer> pointer;
};

/// Reads a buffer, whose fields are checked: a buffer may have been made for another format, or contain less than it
/// says.
CastFrame readCastFrame(const spa_buffer &buffer, const spa_video_info_raw &format);

} // namespace kel
