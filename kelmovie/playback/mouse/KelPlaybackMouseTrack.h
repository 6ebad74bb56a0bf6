#pragma once

#include "playback/tracks/KelPlaybackTrack.h"

#include <memory>

class QColor;

/// The layer with the recorded pointer, and an effect at each click and turn of the wheel.
///
/// Effects are played one frame further by each seekToFrame(), however far the seek goes; frame 0 starts afresh.
/// The setters take effect with the next paint(); values out of range are brought into it.
class KelPlaybackMouseTrack : public KelPlaybackTrack
{
    Q_OBJECT

public:
    /// Loads the files in `directory`; errorString() is set when that fails, and the track then paints nothing.
    KelPlaybackMouseTrack(const QString &directory, KelPlaybackTrackManager *manager);
    ~KelPlaybackMouseTrack() override;

    void seekToFrame(int frame) override;
    bool moveToFrame(int frame) override;
    void paint(QPainter *painter) override;
    int nextKeyFrame() override;
    bool isVisible() override;

    /// Drops all running effects, as if nothing had been clicked so far.
    void resetEffects();
    /// Plays the effects from the start of the recording up to the frame before `frame`, so that those are under way
    /// which a seek to `frame` has to go on with.
    void playEffectsBefore(int frame);

    /// Whether pointer and effects are painted at all; they are at first.
    void setEnabled(bool on);
    /// Whose clicks get an effect, a bit set: 1 left, 2 right, 4 middle; 7 at first.
    void setShownButtons(int buttons);
    /// Whether turns of the wheel get an effect; they do at first, once there is a wheel type.
    void setShowWheel(bool on);
    /// Whether a new click ends the running effects of the same button; it does not at first.
    void setReplaceSameButton(bool on);
    /// Side of the effects' square, in units of 64 logical pixels; 1.0 at first.
    void setEffectScale(double scale);
    /// The type of createMouseButtonLottie(); 6 at first: the pointer shrinks while a button is down.
    void setClickType(int type);
    /// The type of createMouseWheelLottie(); 0 at first: none.
    void setWheelType(int type);
    /// Recolours all effects. Until the first call, and for an invalid colour, they are as they were drawn.
    void setEffectColor(const QColor &color);

private:
    class Private;
    std::unique_ptr<Private> d;
};
