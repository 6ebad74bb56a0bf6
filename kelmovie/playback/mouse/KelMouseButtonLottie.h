#pragma once

#include <QString>

#include <memory>

class KelLottie;
class QColor;
class QPainter;
class QRectF;

/// A click effect: has a length and paints any of its frames. The caller keeps the current frame. Frames are playback
/// frames, except for those called raw, which are frames of the animation. Not thread-safe.
class KelMouseButtonLottie
{
    Q_DISABLE_COPY(KelMouseButtonLottie)

public:
    /// The raw frame at which the animation pauses while a button is held.
    virtual int holdFrameRaw() const = 0;
    /// Raw frames per second.
    virtual double frameRateRaw() const;
    /// Length in raw frames.
    virtual double frameCountRaw() const;

    virtual ~KelMouseButtonLottie();

    virtual int holdFrame() const;
    /// Length of the effect of a press; no effect depends on the arguments so far.
    virtual int frameCount(int endFrame, bool isLongPress) const;
    virtual bool effectFlag() const { return true; }
    /// Whether paint() draws anything at all.
    bool isDrawn() const { return mLottie != nullptr; }
    /// Paints `frame` into `target`, in the painter's coordinates. `button` is 0 left, 1 right, 2 middle.
    virtual void paint(QPainter *painter, int frame, const QRectF &target, int button) = 0;

    /// Playback frames per second.
    void setPlaybackRate(int frameRate) { m_playbackRate = frameRate; }
    /// Sets the color of the animation; an invalid color is ignored.
    void setColor(const QColor &color);

protected:
    KelMouseButtonLottie();
    explicit KelMouseButtonLottie(const QString &animation);

    void paintFrame(QPainter *painter, int frame, const QRectF &target, double angle);

private:
    int m_playbackRate = 30;
    std::unique_ptr<KelLottie> mLottie; // null for effects that are not animations
};

/// The click effect of `type`: 0 none, 1 ray, 2 floral, 3 fireworks, 4 stars, 5 ripple, 6 conventional (the
/// cursor shrinks, which the caller paints). Null for any other type. `frameRate`: playback frames per second.
std::unique_ptr<KelMouseButtonLottie> createMouseButtonLottie(int frameRate, int type);
