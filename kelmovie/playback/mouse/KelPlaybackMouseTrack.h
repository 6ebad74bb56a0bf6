#pragma once

#include "playback/tracks/KelPlaybackTrack.h"

#include <memory>

class QColor;

/// The layer with the recorded pointer, and an effect at each click and turn of the wheel.
///
/// By default each seekToFrame() advances the effects by one playback frame, whatever its distance; frame 0 drops them
/// all. With KelPlaybackRules::effectsFollowRecordingTime, a frame always shows the same. The setters take effect with
/// the next paint(); values that are out of range are clamped.
class KelPlaybackMouseTrack : public KelPlaybackTrack
{
    Q_OBJECT

public:
    /// Loads the files in `directory`; errorString() is set when that fails, and the track then paints nothing.
    KelPlaybackMouseTrack(const QString &directory, KelPlaybackTrackManager *manager);
    ~KelPlaybackMouseTrack() override;

    void setContext(const kel::RecordingTimeline &timeline, const KelPlaybackRules &rules) override;
    void seekToFrame(int frame) override;
    bool moveToFrame(int frame) override;
    void paint(QPainter *painter) override;
    int nextKeyFrame() override;
    bool isVisible() override;

    /// Drops all running effects, unless they follow recording time.
    void resetEffects();
    /// Plays the effects from the start of the recording to the frame before `frame`. A following seek to `frame`
    /// continues them. Not needed by effects that follow recording time.
    void playEffectsBefore(int frame);

    /// Whether pointer and effects are painted; true by default.
    void setEnabled(bool on);
    /// The buttons whose clicks have an effect, as bits: 1 left, 2 right, 4 middle; 7 by default.
    void setShownButtons(int buttons);
    /// Whether turns of the wheel have the effect of setWheelType(); true by default.
    void setShowWheel(bool on);
    /// Whether a new click ends the running effects of the same button; false by default.
    void setReplaceSameButton(bool on);
    /// Size of the effects, as a factor of 64 logical pixels; 1.0 by default.
    void setEffectScale(double scale);
    /// A type of createMouseButtonLottie(); 6 by default: the pointer shrinks while a button is down.
    void setClickType(int type);
    /// A type of createMouseWheelLottie(); 0 by default: none.
    void setWheelType(int type);
    /// Sets the color of all effects. By default they have their original colors; an invalid color is ignored.
    void setEffectColor(const QColor &color);

private:
    class Private;
    std::unique_ptr<Private> d;
};
