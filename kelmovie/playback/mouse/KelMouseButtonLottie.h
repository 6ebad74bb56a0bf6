#pragma once

#include <QString>

#include <memory>

class KelLottie;
class QColor;
class QPainter;
class QRectF;

/// A click effect: tells how long it lasts and paints any of its frames. What has been played of it is its user's
/// business. Frames are playback frames unless they are called raw; those are the animation's own. An object belongs
/// to one thread at a time.
class KelMouseButtonLottie
{
    Q_DISABLE_COPY(KelMouseButtonLottie)

public:
    /// The raw frame at which a held press stands still.
    virtual int holdFrameRaw() const = 0;
    /// Raw frames a second.
    virtual double frameRateRaw() const;
    /// Length in raw frames.
    virtual double frameCountRaw() const;

    virtual ~KelMouseButtonLottie();

    virtual int holdFrame() const;
    /// Length of the effect of a press; none of the effects adapts to the press yet.
    virtual int frameCount(int endFrame, bool isLongPress) const;
    virtual bool effectFlag() const { return true; }
    /// False: paint() never draws anything.
    bool isDrawn() const { return mLottie != nullptr; }
    /// Paints `frame` into `target`, in the painter's coordinates. `button` is 0 left, 1 right, 2 middle.
    virtual void paint(QPainter *painter, int frame, const QRectF &target, int button) = 0;

    /// Playback frames a second.
    void setPlaybackRate(int frameRate) { m_playbackRate = frameRate; }
    /// Recolours the animation; an invalid colour changes nothing.
    void setColor(const QColor &color);

protected:
    KelMouseButtonLottie();
    explicit KelMouseButtonLottie(const QString &animation);

    void paintFrame(QPainter *painter, int frame, const QRectF &target, double angle);

private:
    int m_playbackRate = 30;
    std::unique_ptr<KelLottie> mLottie; // null for effects that are not animations
};

/// The click effect of `type`: 0 none, 1 ray, 2 floral, 3 fireworks, 4 stars, 5 ripple, 6 conventional (the cursor
/// shrinks, which is the work of who paints it). Null for any other type. `frameRate` is that of playback.
std::unique_ptr<KelMouseButtonLottie> createMouseButtonLottie(int frameRate, int type);
