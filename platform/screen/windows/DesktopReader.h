#pragma once

#include <QImage>
#include <QRegion>

namespace kel
{

/// One way to read a rectangle of the desktop. Belongs to one thread at a time.
class DesktopReader
{
public:
    enum class State {
        Ready,   ///< the picture is that of now
        NotNow,  ///< the desktop cannot be read at the moment: somebody logs on, a screen is being switched
        Unusable ///< it will never work here
    };

    struct Update {
        State state = State::NotNow;
        QRegion changed; ///< where the picture may differ from the one before; everywhere at first
    };

    virtual ~DesktopReader() = default;

    /// Brings the picture up to date.
    virtual Update update() = 0;

    /// The rectangle, QImage::Format_RGB32, black outside of all screens; null before the first update that was ready.
    virtual const QImage &picture() const = 0;
};

} // namespace kel
