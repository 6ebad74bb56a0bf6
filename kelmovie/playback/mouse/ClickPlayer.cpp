#include "playback/mouse/ClickPlayer.h"

#include "playback/mouse/KelMouseButtonLottie.h"
#include "playback/mouse/KelMouseWheelLottie.h"
#include "recording/RecordingTimeline.h"

#include <algorithm>

namespace kel
{

namespace
{

// Playback frames per second of effects:
constexpr int kSteppingRate = 30;
constexpr int kTimedRate = 1000;

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

bool ClickPlayer::load(const QString &path)
{
    m_schedule.reset();
    return m_clicks.load(path);
}

void ClickPlayer::pairNearestReleases()
{
    m_schedule.reset();
    m_clicks.pairNearestReleases();
}

void ClickPlayer::followTime(const RecordingTimeline &timeline)
{
    reset();
    m_timeline = &timeline;
    m_schedule.reset();
    if (m_clickEffect)
        m_clickEffect->setPlaybackRate(effectRate());
    if (m_wheelEffect)
        m_wheelEffect->setPlaybackRate(effectRate());
}

int ClickPlayer::effectRate() const
{
    return followsTime() ? kTimedRate : kSteppingRate;
}

const MouseEffectSchedule &ClickPlayer::schedule() const
{
    if (!m_schedule) {
        MouseEffectSchedule::Lengths lengths;
        lengths.clickMs = m_clickEffect ? m_clickEffect->frameCount(0, false) : 0;
        lengths.wheelMs = m_wheelEffect ? m_wheelEffect->frameCount() : 0;
        lengths.holdsShortPresses = m_clickType == kPressScaling;
        if (m_clickEffect)
            lengths.holdMs = lengths.holdsShortPresses ? lengths.clickMs / 2 : m_clickEffect->holdFrame();
        m_schedule.emplace(m_clicks, *m_timeline, lengths, m_settings);
    }
    return *m_schedule;
}

std::vector<ShownMouseEffect> ClickPlayer::shown(const QPoint &pointer) const
{
    auto effects = followsTime() ? schedule().at(m_ms, pointer) : m_effects.shown(pointer);
    const auto isInvisible = [this](const ShownMouseEffect &effect) {
        return effect.isWheel ? !m_wheelEffect : !m_clickEffect || !m_clickEffect->isDrawn();
    };
    effects.erase(std::remove_if(effects.begin(), effects.end(), isInvisible), effects.end());
    return effects;
}

/// Of several presses that follow the time, the one that shrinks the pointer most counts.
double ClickPlayer::pointerScale() const
{
    if (!followsTime())
        return double(m_pressScaling.scale());
    double scale = 1.0;
    if (m_clickType == kPressScaling) {
        for (const ShownMouseEffect &effect : schedule().at(m_ms, QPoint())) {
            if (!effect.isWheel)
                scale =
                    std::min(scale, PressScaling::scaleAt(double(effect.frame) / m_clickEffect->frameCount(0, false)));
        }
    }
    return scale;
}

void ClickPlayer::setClickType(int type)
{
    if (m_clickEffect && type == m_clickType)
        return;
    m_clickType = type;
    m_clickEffect = createMouseButtonLottie(effectRate(), type);
    if (m_clickEffect)
        m_clickEffect->setColor(m_color);
    m_effects.setClickEffect(m_clickEffect.get());
    m_pressScaling.reset();
    m_schedule.reset();
}

void ClickPlayer::setWheelType(int type)
{
    if (m_wheelEffect && type == m_wheelType)
        return;
    m_wheelType = type;
    m_wheelEffect = createMouseWheelLottie(effectRate(), type);
    if (m_wheelEffect)
        m_wheelEffect->setColor(m_color);
    m_effects.setWheelEffect(m_wheelEffect.get());
    m_schedule.reset();
}

void ClickPlayer::setEffectColor(const QColor &color)
{
    m_color = color;
    if (m_clickEffect)
        m_clickEffect->setColor(color);
    if (m_wheelEffect)
        m_wheelEffect->setColor(color);
}

void ClickPlayer::setShownButtons(int buttons)
{
    m_settings.shownButtons = buttons;
    applySettings();
}

void ClickPlayer::setShowWheel(bool on)
{
    m_settings.showWheel = on;
    applySettings();
}

void ClickPlayer::setReplaceSameButton(bool on)
{
    m_settings.replaceSameButton = on;
    applySettings();
}

void ClickPlayer::applySettings()
{
    m_effects.setSettings(m_settings);
    m_schedule.reset();
}

void ClickPlayer::reset()
{
    m_effects.clear();
    m_pressScaling.reset();
    m_playedFrame = -1;
}

void ClickPlayer::seekToFrame(int frame)
{
    if (followsTime()) {
        m_ms = m_timeline->msOf(frame);
        return;
    }
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
