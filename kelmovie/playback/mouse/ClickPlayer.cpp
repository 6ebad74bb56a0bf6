#include "playback/mouse/ClickPlayer.h"

#include "playback/mouse/KelMouseButtonLottie.h"
#include "playback/mouse/KelMouseWheelLottie.h"

namespace kel
{

namespace
{

constexpr int kEffectRate = 30;  // playback frames per second of effects
constexpr int kPressScaling = 6; // the click type

// Playing at high speed and exporting at a low frame rate skip logic frames, whose clicks must still start their
// effects. A longer distance is a jump, after which they must not.
constexpr int kMaxSkippedFrames = 32;

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
    m_effects.advance(frame);
    m_pressScaling.advance(frame);
    // If the same frame is shown again, its clicks have already been played.
    const bool isContinuous =
        m_playedFrame >= 0 && m_playedFrame <= frame && frame - m_playedFrame <= kMaxSkippedFrames;
    for (const MouseClick &click : m_clicks.between(isContinuous ? m_playedFrame : frame - 1, frame))
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
