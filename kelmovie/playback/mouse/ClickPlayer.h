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

/// Plays what was clicked and turned: brings effects and the pressed pointer from one logic frame to the next.
class ClickPlayer
{
public:
    ClickPlayer();
    ~ClickPlayer();

    /// Reads the file of clicks; false, and nothing was ever clicked, when it cannot be used.
    bool load(const QString &path) { return m_clicks.load(path); }

    /// One step: effects are played one frame further, however far `frame` is; those of its clicks begin. Frame 0
    /// starts afresh.
    void seekToFrame(int frame);
    /// Drops all that is being played.
    void reset();

    const std::vector<ActiveMouseEffect> &effects() const { return m_effects.effects(); }
    /// What to enlarge the pointer by, about its position.
    double pointerScale() const { return double(m_pressScaling.scale()); }

    // What the setters of the track of the same names do.
    void setClickType(int type);
    void setWheelType(int type);
    void setEffectColor(const QColor &color);
    void setShownButtons(int buttons) { m_effects.setShownButtons(buttons); }
    void setShowWheel(bool on) { m_effects.setShowWheel(on); }
    void setReplaceSameButton(bool on) { m_effects.setReplaceSameButton(on); }

    /// The animation to paint; null for none.
    KelMouseButtonLottie *clickEffect() const { return m_clickEffect.get(); }
    KelMouseWheelLottie *wheelEffect() const { return m_wheelEffect.get(); }

private:
    void play(const MouseClick &click);

    ClickList m_clicks;
    MouseEffectList m_effects;
    PressScaling m_pressScaling;
    int m_playedFrame = -1; // up to here clicks were played; -1 for none
    QColor m_color;
    int m_clickType = 6;
    int m_wheelType = 0;
    std::unique_ptr<KelMouseButtonLottie> m_clickEffect;
    std::unique_ptr<KelMouseWheelLottie> m_wheelEffect;
};

} // namespace kel
