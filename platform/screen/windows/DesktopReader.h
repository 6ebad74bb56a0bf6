#pragma once

#include <QImage>
#include <QRegion>

namespace kel
{

/// A method to read a rectangle of the desktop. Belongs to one thread at a time.
class DesktopReader
{
public:
    enum class State {
        Ready,   ///< the image is up to date
        NotNow,  ///< temporarily not readable: a log-on screen is shown, a display mode is changing
        Unusable ///< does not work on this system
    };

    struct Update {
        State state = State::NotNow;
        QRegion changed; ///< where the image may differ from the previous one; everywhere at first
    };

    virtual ~DesktopReader() = default;

    /// Updates the image.
    virtual Update update() = 0;

    /// The content of the rectangle, QImage::Format_RGB32, black outside of all screens; null before the first
    /// successful update.
    virtual const QImage &image() const = 0;
};

} // namespace kel
