#pragma once

#include "playback/mouse/MouseClick.h"

namespace kel
{

/// The pointer shrinks while a button is down, and grows back when it goes up, a few steps each way.
class PressScaling
{
public:
    /// The size of the pointer, 1.0 when nothing is pressed.
    float scale() const { return m_scale; }

    void reset() { *this = PressScaling(); }
    /// One step further; `frame` is the logic frame reached.
    void step(int frame);
    /// Ignored while another button's press is being shown.
    void press(const MouseClick &click);
    void release(MouseButton button);

private:
    void startReleasing();

    bool m_isActive = false;
    bool m_isPressing = false;
    bool m_isReleasing = false;
    bool m_isReleaseDue = false; // once the pointer is small
    MouseButton m_button = MouseButton::Other;
    int m_releaseFrame = 0; // the logic frame after which the button cannot be down any more
    float m_scale = 1.0F;
    float m_target = 1.0F;
    int m_steps = 0;
};

} // namespace kel
