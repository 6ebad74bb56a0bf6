#include "playback/mouse/MouseEffectList.h"

#include "playback/mouse/KelMouseButtonLottie.h"
#include "playback/mouse/KelMouseWheelLottie.h"

#include <algorithm>

namespace kel
{

namespace
{

// In playback frames:
constexpr int kShortEffectFrames = 24;
constexpr int kDefaultClickFrames = 24;
constexpr int kDefaultHoldFrame = 12;
constexpr int kDefaultWheelFrames = 23;
constexpr int kWheelMemoryFrames = 15;

constexpr double kWheelRestartProgress = 0.8; // from here on, another turn starts another effect

// All clicks during a pause are in one frame. Each effect costs time to paint, but so many cannot be distinguished.
constexpr std::size_t kMaxEffects = 128;

/// Continues the animation of a held button to its end.
void endHold(ActiveMouseEffect &effect)
{
    effect.isHolding = false;
    effect.isHoldReached = false;
    effect.remaining = effect.total - effect.current;
}

/// Advances the effect by one playback frame; false when it is over.
bool advanceEffect(ActiveMouseEffect &effect, int frame)
{
    // The release may be in a skipped frame: the effect must not stay held forever.
    if (effect.isHolding && frame > effect.releaseFrame)
        endHold(effect);
    if (effect.isLong && effect.isHolding && effect.current >= effect.holdFrame)
        effect.isHoldReached = true;
    const bool isPaused = effect.isHoldReached && effect.isHolding;
    if (!isPaused && effect.current < effect.total - 1)
        ++effect.current;
    if (!effect.isLong || effect.isHolding || effect.isHoldReached)
        --effect.remaining;
    if (effect.isLong)
        return effect.isHolding || effect.current < effect.total - 1;
    return effect.remaining > 0 && effect.current < effect.total;
}

template <typename Condition>
void eraseIf(std::vector<ActiveMouseEffect> &effects, Condition condition)
{
    effects.erase(std::remove_if(effects.begin(), effects.end(), condition), effects.end());
}

} // namespace

void MouseEffectList::clear()
{
    m_effects.clear();
    forgetWheel();
}

void MouseEffectList::forgetWheel()
{
    m_hasWheelEffect = false;
    m_wheelDirection = 0;
    m_framesSinceWheel = 0;
}

void MouseEffectList::advance(int frame)
{
    if (m_hasWheelEffect && ++m_framesSinceWheel >= kWheelMemoryFrames)
        forgetWheel();
    eraseIf(m_effects, [frame](ActiveMouseEffect &effect) { return !advanceEffect(effect, frame); });
}

std::vector<ShownMouseEffect> MouseEffectList::shown(const QPoint &pointer) const
{
    std::vector<ShownMouseEffect> shown;
    for (const ActiveMouseEffect &effect : m_effects) {
        if (effect.remaining < 1)
            continue;
        const int frame = effect.isLong ? std::min(effect.total - 1, effect.current)
                                        : std::min(kShortEffectFrames - effect.remaining, kShortEffectFrames - 1);
        shown.push_back({effect.isWheel, std::max(0, frame), effect.isLong ? pointer : effect.position,
                         effect.isWheel ? int(effect.delta < 1) : int(effect.button)});
    }
    return shown;
}

bool MouseEffectList::append(const ActiveMouseEffect &effect)
{
    if (m_effects.size() >= kMaxEffects)
        return false;
    m_effects.push_back(effect);
    return true;
}

ActiveMouseEffect *MouseEffectList::findLong(MouseButton button)
{
    const auto found = std::find_if(m_effects.begin(), m_effects.end(), [button](const ActiveMouseEffect &effect) {
        return !effect.isWheel && effect.isLong && effect.button == button;
    });
    return found == m_effects.end() ? nullptr : &*found;
}

void MouseEffectList::click(const MouseClick &click)
{
    if (!m_settings.isShown(click.button) || findLong(click.button))
        return;
    ActiveMouseEffect effect;
    effect.button = click.button;
    effect.position = click.position;
    effect.remaining = kShortEffectFrames;
    if (click.isPaired) {
        effect.isLong = click.isLong;
        effect.isHolding = click.isLong;
        effect.releaseFrame = click.releaseFrame;
        effect.total =
            m_clickEffect ? m_clickEffect->frameCount(click.releaseFrame, click.isLong) : kDefaultClickFrames;
        effect.holdFrame = m_clickEffect ? m_clickEffect->holdFrame() : kDefaultHoldFrame;
        if (click.isLong)
            effect.remaining = click.releaseFrame - click.frame;
    }
    if (m_settings.replaceSameButton) {
        eraseIf(m_effects,
                [&](const ActiveMouseEffect &running) { return !running.isWheel && running.button == click.button; });
    }
    append(effect);
}

void MouseEffectList::release(const MouseClick &release, bool isPressedBefore)
{
    if (ActiveMouseEffect *held = findLong(release.button)) {
        endHold(*held);
        return;
    }
    if (isPressedBefore || !m_settings.isShown(release.button))
        return;
    ActiveMouseEffect effect;
    effect.button = release.button;
    effect.position = release.position;
    effect.remaining = kShortEffectFrames;
    append(effect);
}

void MouseEffectList::wheel(const MouseClick &turn)
{
    const int direction = turn.delta < 1 ? -1 : 1;
    if (m_wheelDirection != 0 && m_wheelDirection != direction) {
        eraseIf(m_effects, [](const ActiveMouseEffect &effect) { return effect.isWheel; });
        m_hasWheelEffect = false;
    }
    m_wheelDirection = direction;
    m_framesSinceWheel = 0;

    const auto running = std::find_if(m_effects.begin(), m_effects.end(), [](const ActiveMouseEffect &effect) {
        return effect.isWheel && effect.current < effect.total;
    });
    if (running != m_effects.end() && double(running->current) / running->total < kWheelRestartProgress)
        return;
    ActiveMouseEffect effect;
    effect.isWheel = true;
    effect.position = turn.position;
    effect.delta = turn.delta;
    effect.isLong = true;
    effect.remaining = kShortEffectFrames;
    effect.total = m_wheelEffect ? m_wheelEffect->frameCount() : kDefaultWheelFrames;
    if (m_settings.showWheel && append(effect))
        m_hasWheelEffect = true;
}

} // namespace kel
