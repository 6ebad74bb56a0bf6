#include "playback/mouse/PressScaling.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kel
{

namespace
{

constexpr float kPressedScale = 0.8F;
constexpr int kFrames = 6;
constexpr float kPi = 3.14159265F;

} // namespace

double PressScaling::scaleAt(double progress)
{
    return 1.0 - (1.0 - double(kPressedScale)) * (1.0 - std::cos(2.0 * double(kPi) * progress)) / 2.0;
}

void PressScaling::advance(int frame)
{
    // The release may be in a skipped frame: the pointer must not stay small forever.
    if (m_isActive && !m_isReleasing && !m_isReleaseDue && frame > m_releaseFrame)
        startReleasing();
    if (!m_isPressing && !m_isReleasing)
        return;
    ++m_frames;
    const float progress = std::min(1.0F, float(m_frames) / kFrames);
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
    // A quick tap, of which nothing has been visible yet, is shown completely.
    if (m_isPressing && m_frames == 0)
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
    m_frames = 0;
}

} // namespace kel
