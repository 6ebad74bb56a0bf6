#include "playback/mouse/PressScaling.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kel
{

namespace
{

constexpr float kPressedScale = 0.8F;
constexpr int kSteps = 6;
constexpr float kPi = 3.14159265F;

} // namespace

void PressScaling::step(int frame)
{
    // A step over the release's frame must not leave the pointer small for good.
    if (m_isActive && !m_isReleasing && !m_isReleaseDue && frame > m_releaseFrame)
        startReleasing();
    if (!m_isPressing && !m_isReleasing)
        return;
    ++m_steps;
    const float progress = std::min(1.0F, float(m_steps) / kSteps);
    const float eased = (1.0F - std::cos(kPi * progress)) / 2.0F;
    const float from = m_isPressing ? 1.0F : m_scale;
    m_scale = from + (m_target - from) * eased;
    if (progress < 1.0F)
        return;
    if (m_isReleasing)
        reset();
    else if (m_isReleaseDue)
        startReleasing();
    else
        m_isPressing = false;
}

void PressScaling::press(const MouseClick &click)
{
    if (m_isActive)
        return;
    reset();
    m_isActive = true;
    m_isPressing = true;
    m_button = click.button;
    m_releaseFrame = click.isPaired ? click.releaseFrame : std::numeric_limits<int>::max();
    m_target = kPressedScale;
}

void PressScaling::release(MouseButton button)
{
    if (!m_isActive || button != m_button)
        return;
    // Nothing of the press was to be seen yet: a quick tap is shown, too.
    if (m_isPressing && m_steps == 0)
        m_isReleaseDue = true;
    else
        startReleasing();
}

void PressScaling::startReleasing()
{
    m_isPressing = false;
    m_isReleasing = true;
    m_isReleaseDue = false;
    m_target = 1.0F;
    m_steps = 0;
}

} // namespace kel
