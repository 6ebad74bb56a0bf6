#pragma once

#include "playback/mouse/ClickList.h"
#include "playback/mouse/MouseEffectList.h"
#include "playback/mouse/MouseEffectSchedule.h"
#include "playback/mouse/MouseEffectSettings.h"
#include "playback/mouse/PressScaling.h"
#include "playback/mouse/ShownMouseEffect.h"

#include <QColor>

#include <memory>
#include <optional>
#include <vector>

class KelMouseButtonLottie;
class KelMouseWheelLottie;

namespace kel
{

class RecordingTimeline;

/// Plays the recorded clicks: the effects, and the scaling of the pointer. Without followTime() they advance by one
/// playback frame with each seek.
class ClickPlayer
{
public:
    ClickPlayer();
    ~ClickPlayer();

    /// Reads the file of clicks. On failure returns false; there are then no clicks.
    bool load(const QString &path);
    /// See ClickList.
    void pairNearestReleases();
    /// From now on, what is shown in a frame depends only on its time. `timeline` must outlive this.
    void followTime(const RecordingTimeline &timeline);
    bool followsTime() const { return m_timeline != nullptr; }

    /// Moves to `frame`. Unless effects follow the time, advances running effects by one playback frame, whatever the
    /// distance, and starts those of the clicks at `frame`; frame 0 drops all effects.
    void seekToFrame(int frame);
    /// Drops all effects, unless they follow the time.
    void reset();

    /// How the effects are painted that are visible. Those of long presses and of the wheel are at the `pointer`.
    std::vector<ShownMouseEffect> shown(const QPoint &pointer) const;
    /// The factor by which to scale the pointer about its position.
    double pointerScale() const;

    // See the setters of KelPlaybackMouseTrack.
    void setClickType(int type);
    void setWheelType(int type);
    void setEffectColor(const QColor &color);
    void setShownButtons(int buttons);
    void setShowWheel(bool on);
    void setReplaceSameButton(bool on);

    /// The animation to paint; null for none. Owned by this.
    KelMouseButtonLottie *clickEffect() const { return m_clickEffect.get(); }
    KelMouseWheelLottie *wheelEffect() const { return m_wheelEffect.get(); }

private:
    void play(const MouseClick &click);
    void applySettings();
    int effectRate() const;
    const MouseEffectSchedule &schedule() const;

    ClickList m_clicks;
    MouseEffectSettings m_settings;
    const RecordingTimeline *m_timeline = nullptr;         // null: effects do not follow the time
    double m_ms = 0;                                       // of the current frame
    mutable std::optional<MouseEffectSchedule> m_schedule; // computed when it is needed after a change
    MouseEffectList m_effects;
    PressScaling m_pressScaling;
    int m_playedFrame = -1; // the last frame whose clicks were played; -1 for none
    QColor m_color;
    int m_clickType = 6;
    int m_wheelType = 0;
    std::unique_ptr<KelMouseButtonLottie> m_clickEffect;
    std::unique_ptr<KelMouseWheelLottie> m_wheelEffect;
};

} // namespace kel
