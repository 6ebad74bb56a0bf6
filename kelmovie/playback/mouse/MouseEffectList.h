#pragma once

#include "playback/mouse/ActiveMouseEffect.h"
#include "playback/mouse/MouseEffectSettings.h"
#include "playback/mouse/ShownMouseEffect.h"

#include <vector>

class KelMouseButtonLottie;
class KelMouseWheelLottie;

namespace kel
{

/// The running effects, oldest first: decides which clicks and turns of the wheel start one, advances them and removes
/// them when they are over.
class MouseEffectList
{
public:
    /// How they are painted. Those of long presses and of the wheel are at the `pointer`.
    std::vector<ShownMouseEffect> shown(const QPoint &pointer) const;

    /// The animations, which define the length of the effects; not owned. Null: effects have a default length.
    void setClickEffect(const KelMouseButtonLottie *effect) { m_clickEffect = effect; }
    void setWheelEffect(const KelMouseWheelLottie *effect) { m_wheelEffect = effect; }
    void setSettings(const MouseEffectSettings &settings) { m_settings = settings; }

    /// Ends all effects, and forgets the direction of the wheel.
    void clear();
    /// Advances all effects by one playback frame; `frame` is the current logic frame.
    void advance(int frame);
    void click(const MouseClick &click);
    /// `isPressedBefore`: whether the button was pressed in any earlier frame.
    void release(const MouseClick &release, bool isPressedBefore);
    void wheel(const MouseClick &turn);

private:
    bool append(const ActiveMouseEffect &effect);
    ActiveMouseEffect *findLong(MouseButton button);
    void forgetWheel();

    std::vector<ActiveMouseEffect> m_effects;
    const KelMouseButtonLottie *m_clickEffect = nullptr;
    const KelMouseWheelLottie *m_wheelEffect = nullptr;
    MouseEffectSettings m_settings;
    // The last turn of the wheel, for a limited number of frames:
    bool m_hasWheelEffect = false;
    int m_wheelDirection = 0; // -1 down, 1 up, 0 forgotten
    int m_framesSinceWheel = 0;
};

} // namespace kel
