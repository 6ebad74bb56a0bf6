#pragma once

#include "playback/mouse/ActiveMouseEffect.h"

#include <vector>

class KelMouseButtonLottie;
class KelMouseWheelLottie;

namespace kel
{

/// The effects that are being played, oldest first: which click or turn of the wheel starts one, how each goes on from
/// step to step, and when it ends.
class MouseEffectList
{
public:
    const std::vector<ActiveMouseEffect> &effects() const { return m_effects; }

    /// The animations to be played, which tell how long effects last. Null: of a usual length.
    void setClickEffect(const KelMouseButtonLottie *effect) { m_clickEffect = effect; }
    void setWheelEffect(const KelMouseWheelLottie *effect) { m_wheelEffect = effect; }
    void setShownButtons(int buttons) { m_shownButtons = buttons; }
    void setShowWheel(bool on) { m_showWheel = on; }
    void setReplaceSameButton(bool on) { m_replaceSameButton = on; }

    /// Ends all effects, and forgets which way the wheel was turned.
    void clear();
    /// Plays all effects one frame further; `frame` is the logic frame reached.
    void step(int frame);
    void click(const MouseClick &click);
    /// `isPressedBefore`: the button was pressed at all in an earlier frame.
    void release(const MouseClick &release, bool isPressedBefore);
    void wheel(const MouseClick &turn);

private:
    bool isShown(MouseButton button) const;
    bool append(const ActiveMouseEffect &effect);
    ActiveMouseEffect *findLong(MouseButton button);
    void forgetWheel();

    std::vector<ActiveMouseEffect> m_effects;
    const KelMouseButtonLottie *m_clickEffect = nullptr;
    const KelMouseWheelLottie *m_wheelEffect = nullptr;
    int m_shownButtons = 7; // bits in the order of MouseButton
    bool m_showWheel = true;
    bool m_replaceSameButton = false;
    // What is remembered of the last turn of the wheel.
    bool m_hasWheelEffect = false;
    int m_wheelDirection = 0; // -1 down, 1 up, 0 forgotten
    int m_stepsSinceWheel = 0;
};

} // namespace kel
