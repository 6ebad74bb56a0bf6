#pragma once

#include "playback/mouse/MouseEffectSettings.h"
#include "playback/mouse/ShownMouseEffect.h"

#include <array>
#include <vector>

namespace kel
{

class ClickList;
class RecordingTimeline;

/// The effects of a whole recording in recording time: what is shown at a moment depends on nothing else. Playback
/// frames of the animations are milliseconds.
class MouseEffectSchedule
{
public:
    /// The animations.
    struct Lengths {
        int clickMs = 0;                // 0: clicks have no effect
        int holdMs = 0;                 // where the effect of a click pauses until the button is released
        bool holdsShortPresses = false; // otherwise it pauses for long presses only
        int wheelMs = 0;                // 0: turns of the wheel have no effect
    };

    MouseEffectSchedule(const ClickList &clicks, const RecordingTimeline &timeline, const Lengths &lengths,
                        const MouseEffectSettings &settings);

    /// The effects that run at `ms`, oldest first. Those of long presses and of the wheel are at the `pointer`.
    std::vector<ShownMouseEffect> at(double ms, const QPoint &pointer) const;

private:
    struct Effect {
        const MouseClick *event;
        double startMs;
        double releaseMs; // until then the animation pauses at its hold frame; the start if it does not pause
        double endMs;
        double latestEndMs; // of this effect and all before it
    };
    static constexpr std::size_t kNone = std::size_t(-1);

    double pausedMs(const Effect &effect, double ms) const;
    void addPress(const MouseClick &press, const RecordingTimeline &timeline);
    void addTurn(const MouseClick &turn, const RecordingTimeline &timeline);
    void append(Effect effect, int lengthMs);
    void end(std::size_t effect, double ms);

    Lengths m_lengths;
    MouseEffectSettings m_settings;
    std::vector<Effect> m_effects;                               // by start
    std::array<std::size_t, 3> m_lastPress{kNone, kNone, kNone}; // by button; indices of m_effects
    std::size_t m_lastTurn = kNone;                              // likewise
};

} // namespace kel
