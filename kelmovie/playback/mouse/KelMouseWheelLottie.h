#pragma once

#include <QtGlobal>

#include <memory>

class QColor;
class QPainter;
class QRectF;

/// A wheel effect: has a length and paints any of its frames. Frames are playback frames, except for those called raw,
/// which are frames of the animation. Not thread-safe.
class KelMouseWheelLottie
{
    Q_DISABLE_COPY(KelMouseWheelLottie)

public:
    /// Raw frames per second.
    virtual double frameRateRaw() const = 0;
    /// Length in raw frames.
    virtual double frameCountRaw() const = 0;

    virtual ~KelMouseWheelLottie();

    virtual int frameCount() const;
    /// Paints `frame` into `target`, in the painter's coordinates. `direction` is 0 for a turn upwards, else downwards.
    virtual void paint(QPainter *painter, int frame, const QRectF &target, int direction) = 0;

    /// Sets the color of the animation; an invalid color is ignored.
    virtual void setColor(const QColor &color);

    /// Playback frames per second.
    void setPlaybackRate(int frameRate) { m_playbackRate = frameRate; }

protected:
    KelMouseWheelLottie();

    int playbackRate() const { return m_playbackRate; }

private:
    int m_playbackRate = 30;
};

/// The wheel effect of `type`: 0 none, 1 arrow. Null for any other type. `frameRate`: playback frames per
/// second.
std::unique_ptr<KelMouseWheelLottie> createMouseWheelLottie(int frameRate, int type);
