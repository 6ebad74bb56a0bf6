#pragma once

#include "playback/mouse/MouseClick.h"

namespace kel
{

/// Scales the pointer: it shrinks while a button is down and grows back after the release, over a few playback frames
/// each.
class PressScaling
{
public:
    /// The factor after `progress`, 0 to 1, of shrinking and growing back without a pause.
    static double scaleAt(double progress);

    /// The factor for the size of the pointer, 1.0 when nothing is pressed.
    float scale() const { return m_scale; }

    void reset() { *this = PressScaling(); }
    /// Advances by one playback frame; `frame` is the current logic frame.
    void advance(int frame);
    /// Ignored while the press of another button is shown.
    void press(const MouseClick &click);
    void release(MouseButton button);

private:
    void startReleasing();

    bool m_isActive = false;
    bool m_isPressing = false;
    bool m_isReleasing = false;
    bool m_isReleaseDue = false; // starts when the pointer has shrunk
    MouseButton m_button = MouseButton::Other;
    int m_releaseFrame = 0; // the logic frame after which the button is released
    float m_scale = 1.0F;
    float m_target = 1.0F;
    int m_frames = 0; // of the current animation
};

} // namespace kel
