#pragma once

#include <QtGlobal>

#include <memory>

class QColor;
class QPainter;
class QRectF;

/// A wheel effect: tells how long it lasts and paints any of its frames. Frames are playback frames unless they are
/// called raw; those are the animation's own. An object belongs to one thread at a time.
class KelMouseWheelLottie
{
    Q_DISABLE_COPY(KelMouseWheelLottie)

public:
    /// Raw frames a second.
    virtual double frameRateRaw() const = 0;
    /// Length in raw frames.
    virtual double frameCountRaw() const = 0;

    virtual ~KelMouseWheelLottie();

    virtual int frameCount() const;
    /// Paints `frame` into `target`, in the painter's coordinates. `direction` is 0 for a turn upwards, else downwards.
    virtual void paint(QPainter *painter, int frame, const QRectF &target, int direction) = 0;

    /// Recolours the animation; an invalid colour changes nothing.
    virtual void setColor(const QColor &color);

    /// Playback frames a second.
    void setPlaybackRate(int frameRate) { m_playbackRate = frameRate; }

protected:
    KelMouseWheelLottie();

    int playbackRate() const { return m_playbackRate; }

private:
    int m_playbackRate = 30;
};

/// The wheel effect of `type`: 0 none, 1 arrow. Null for any other type. `frameRate` is that of playback.
std::unique_ptr<KelMouseWheelLottie> createMouseWheelLottie(int frameRate, int type);
