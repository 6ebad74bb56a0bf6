#include "playback/mouse/MouseEffectSchedule.h"

#include "playback/mouse/ClickList.h"
#include "recording/RecordingTimeline.h"

#include <algorithm>

namespace kel
{

namespace
{

constexpr double kWheelRestartProgress = 0.8; // from here on, another turn starts another effect

// All clicks during a pause are in one frame. Each effect costs time to paint, but so many cannot be distinguished.
constexpr std::size_t kMaxEffects = 128;

bool isWheel(const MouseClick &event)
{
    return event.action == MouseClick::Action::Wheel;
}

bool isDownward(const MouseClick &turn)
{
    return turn.delta < 1;
}

} // namespace

MouseEffectSchedule::MouseEffectSchedule(const ClickList &clicks, const RecordingTimeline &timeline,
                                         const Lengths &lengths, const MouseEffectSettings &settings)
    : m_lengths(lengths)
    , m_settings(settings)
{
    for (const MouseClick &event : clicks.all()) {
        if (event.action == MouseClick::Action::Click)
            addPress(event, timeline);
        else if (event.action == MouseClick::Action::Wheel)
            addTurn(event, timeline);
    }
}

/// How long the animation has been pausing until `ms`.
double MouseEffectSchedule::pausedMs(const Effect &effect, double ms) const
{
    return std::max(0.0, std::min(ms, effect.releaseMs) - effect.startMs - m_lengths.holdMs);
}

/// A press whose release was not recorded is shown as a tap.
void MouseEffectSchedule::addPress(const MouseClick &press, const RecordingTimeline &timeline)
{
    if (m_lengths.clickMs < 1 || !m_settings.isShown(press.button))
        return;
    const double ms = timeline.msOf(press.frame);
    const bool pauses = press.isPaired && (press.isLong || m_lengths.holdsShortPresses);
    std::size_t &last = m_lastPress[std::size_t(press.button)];
    if (m_settings.replaceSameButton)
        end(last, ms);
    last = m_effects.size();
    append({&press, ms, pauses ? timeline.msOf(press.releaseFrame) : ms, 0, 0}, m_lengths.clickMs);
}

/// Turning on extends the effect by another one only shortly before its end; turning back replaces it.
void MouseEffectSchedule::addTurn(const MouseClick &turn, const RecordingTimeline &timeline)
{
    if (m_lengths.wheelMs < 1 || !m_settings.showWheel)
        return;
    const double ms = timeline.msOf(turn.frame);
    if (m_lastTurn != kNone) {
        const Effect &last = m_effects[m_lastTurn];
        if (isDownward(*last.event) == isDownward(turn) &&
            ms < last.startMs + kWheelRestartProgress * m_lengths.wheelMs)
            return;
        end(m_lastTurn, ms);
    }
    m_lastTurn = m_effects.size();
    append({&turn, ms, ms, 0, 0}, m_lengths.wheelMs);
}

void MouseEffectSchedule::append(Effect effect, int lengthMs)
{
    effect.endMs = effect.startMs + lengthMs + pausedMs(effect, effect.releaseMs);
    effect.latestEndMs = m_effects.empty() ? effect.endMs : std::max(effect.endMs, m_effects.back().latestEndMs);
    m_effects.push_back(effect);
}

void MouseEffectSchedule::end(std::size_t effect, double ms)
{
    if (effect != kNone)
        m_effects[effect].endMs = std::min(m_effects[effect].endMs, ms);
}

std::vector<ShownMouseEffect> MouseEffectSchedule::at(double ms, const QPoint &pointer) const
{
    std::vector<ShownMouseEffect> shown;
    auto next = std::upper_bound(m_effects.begin(), m_effects.end(), ms,
                                 [](double wanted, const Effect &effect) { return wanted < effect.startMs; });
    while (next != m_effects.begin() && (--next)->latestEndMs > ms && shown.size() < kMaxEffects) {
        if (next->endMs <= ms)
            continue;
        const MouseClick &event = *next->event;
        const bool followsPointer = isWheel(event) || event.isLong;
        shown.push_back({isWheel(event), int(ms - next->startMs - pausedMs(*next, ms)),
                         followsPointer ? pointer : event.position,
                         isWheel(event) ? int(isDownward(event)) : int(event.button)});
    }
    std::reverse(shown.begin(), shown.end());
    return shown;
}

} // namespace kel
