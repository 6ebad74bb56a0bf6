#include "playback/mouse/ClickPlayer.h"

#include "playback/mouse/KelMouseButtonLottie.h"
#include "playback/mouse/KelMouseWheelLottie.h"

namespace kel
{

namespace
{

constexpr int kEffectRate = 30;  // frames a second for which effects are made; one is played a step
constexpr int kPressScaling = 6; // the click type

// Playing at high speed or exporting few frames a second leaves frames out. What was clicked in them is due as well,
// but after a jump it is not.
constexpr int kMaxStep = 32;

} // namespace

ClickPlayer::ClickPlayer()
{
    setClickType(m_clickType);
    setWheelType(m_wheelType);
}

ClickPlayer::~ClickPlayer() = default;

void ClickPlayer::setClickType(int type)
{
    if (m_clickEffect && type == m_clickType)
        return;
    m_clickType = type;
    m_clickEffect = createMouseButtonLottie(kEffectRate, type);
    if (m_clickEffect)
        m_clickEffect->setColor(m_color);
    m_effects.setClickEffect(m_clickEffect.get());
    m_pressScaling.reset();
}

void ClickPlayer::setWheelType(int type)
{
    if (m_wheelEffect && type == m_wheelType)
        return;
    m_wheelType = type;
    m_wheelEffect = createMouseWheelLottie(kEffectRate, type);
    if (m_wheelEffect)
        m_wheelEffect->setColor(m_color);
    m_effects.setWheelEffect(m_wheelEffect.get());
}

void ClickPlayer::setEffectColor(const QColor &color)
{
    m_color = color;
    if (m_clickEffect)
        m_clickEffect->setColor(color);
    if (m_wheelEffect)
        m_wheelEffect->setColor(color);
}

void ClickPlayer::reset()
{
    m_effects.clear();
    m_pressScaling.reset();
    m_playedFrame = -1;
}

void ClickPlayer::seekToFrame(int frame)
{
    if (frame == 0)
        reset();
    m_effects.step(frame);
    m_pressScaling.step(frame);
    // A frame that is asked for again has had its clicks.
    const bool isStep = m_playedFrame >= 0 && m_playedFrame <= frame && frame - m_playedFrame <= kMaxStep;
    for (const MouseClick &click : m_clicks.between(isStep ? m_playedFrame : frame - 1, frame))
        play(click);
    m_playedFrame = frame;
}

void ClickPlayer::play(const MouseClick &click)
{
    switch (click.action) {
    case MouseClick::Action::Click:
        if (m_clickType == kPressScaling)
            m_pressScaling.press(click);
        m_effects.click(click);
        break;
    case MouseClick::Action::Release:
        m_pressScaling.release(click.button);
        m_effects.release(click, m_clicks.isPressedBefore(click.button, click.frame));
        break;
    case MouseClick::Action::Wheel:
        m_effects.wheel(click);
        break;
    }
}

} // namespace kel
