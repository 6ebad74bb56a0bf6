#pragma once

#include "playback/mouse/ClickList.h"
#include "playback/mouse/MouseEffectList.h"
#include "playback/mouse/PressScaling.h"

#include <QColor>

#include <memory>

class KelMouseButtonLottie;
class KelMouseWheelLottie;

namespace kel
{

/// Plays the recorded clicks: advances the effects and the scaling of the pointer from one logic frame to the next.
class ClickPlayer
{
public:
    ClickPlayer();
    ~ClickPlayer();

    /// Reads the file of clicks. On failure returns false; there are then no clicks.
    bool load(const QString &path) { return m_clicks.load(path); }

    /// Advances running effects by one playback frame, whatever the distance to `frame`, and starts those of the clicks
    /// at `frame`. Frame 0 drops all effects.
    void seekToFrame(int frame);
    /// Drops all effects.
    void reset();

    const std::vector<ActiveMouseEffect> &effects() const { return m_effects.effects(); }
    /// The factor by which to scale the pointer about its position.
    double pointerScale() const { return double(m_pressScaling.scale()); }

    // See the setters of KelPlaybackMouseTrack.
    void setClickType(int type);
    void setWheelType(int type);
    void setEffectColor(const QColor &color);
    void setShownButtons(int buttons) { m_effects.setShownButtons(buttons); }
    void setShowWheel(bool on) { m_effects.setShowWheel(on); }
    void setReplaceSameButton(bool on) { m_effects.setReplaceSameButton(on); }

    /// The animation to paint; null for none. Owned by this.
    KelMouseButtonLottie *clickEffect() const { return m_clickEffect.get(); }
    KelMouseWheelLottie *wheelEffect() const { return m_wheelEffect.get(); }

private:
    void play(const MouseClick &click);

    ClickList m_clicks;
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
