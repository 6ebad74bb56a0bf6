#include "playback/mouse/MouseEffectList.h"

#include "playback/mouse/KelMouseButtonLottie.h"
#include "playback/mouse/KelMouseWheelLottie.h"

#include <algorithm>

namespace kel
{

namespace
{

constexpr int kShortSteps = 24;
constexpr int kUsualClickFrames = 24;
constexpr int kUsualHoldFrame = 12;
constexpr int kUsualWheelFrames = 23;
constexpr double kWheelPlayed = 0.8; // from here on another turn starts another effect
constexpr int kWheelMemorySteps = 15;

// Clicks during a pause all fall into one frame; more than these cannot be told apart, but have to be painted.
constexpr std::size_t kMaxEffects = 128;

/// The rest of the animation is played.
void letGo(ActiveMouseEffect &effect)
{
    effect.isHolding = false;
    effect.isHoldReached = false;
    effect.remaining = effect.total - effect.current;
}

/// Plays the effect one frame further; false when it is over.
bool advance(ActiveMouseEffect &effect, int frame)
{
    // A step over the release's frame must not leave the effect held for good.
    if (effect.isHolding && frame > effect.releaseFrame)
        letGo(effect);
    if (effect.isLong && effect.isHolding && effect.current >= effect.holdFrame)
        effect.isHoldReached = true;
    const bool standsStill = effect.isHoldReached && effect.isHolding;
    if (!standsStill && effect.current < effect.total - 1)
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
    m_stepsSinceWheel = 0;
}

void MouseEffectList::step(int frame)
{
    if (m_hasWheelEffect && ++m_stepsSinceWheel >= kWheelMemorySteps)
        forgetWheel();
    eraseIf(m_effects, [frame](ActiveMouseEffect &effect) { return !advance(effect, frame); });
}

bool MouseEffectList::isShown(MouseButton button) const
{
    return button != MouseButton::Other && (m_shownButtons >> int(button) & 1) != 0;
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
    if (!isShown(click.button) || findLong(click.button))
        return;
    ActiveMouseEffect effect;
    effect.button = click.button;
    effect.position = click.position;
    effect.remaining = kShortSteps;
    if (click.isPaired) {
        effect.isLong = click.isLong;
        effect.isHolding = click.isLong;
        effect.releaseFrame = click.releaseFrame;
        effect.total = m_clickEffect ? m_clickEffect->frameCount(click.releaseFrame, click.isLong) : kUsualClickFrames;
        effect.holdFrame = m_clickEffect ? m_clickEffect->holdFrame() : kUsualHoldFrame;
        if (click.isLong)
            effect.remaining = click.releaseFrame - click.frame;
    }
    if (m_replaceSameButton) {
        eraseIf(m_effects,
                [&](const ActiveMouseEffect &running) { return !running.isWheel && running.button == click.button; });
    }
    append(effect);
}

void MouseEffectList::release(const MouseClick &release, bool isPressedBefore)
{
    if (ActiveMouseEffect *held = findLong(release.button)) {
        letGo(*held);
        return;
    }
    if (isPressedBefore || !isShown(release.button))
        return;
    ActiveMouseEffect effect;
    effect.button = release.button;
    effect.position = release.position;
    effect.remaining = kShortSteps;
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
    m_stepsSinceWheel = 0;

    const auto running = std::find_if(m_effects.begin(), m_effects.end(), [](const ActiveMouseEffect &effect) {
        return effect.isWheel && effect.current < effect.total;
    });
    if (running != m_effects.end() && double(running->current) / running->total < kWheelPlayed)
        return;
    ActiveMouseEffect effect;
    effect.isWheel = true;
    effect.position = turn.position;
    effect.delta = turn.delta;
    effect.isLong = true;
    effect.remaining = kShortSteps;
    effect.total = m_wheelEffect ? m_wheelEffect->frameCount() : kUsualWheelFrames;
    if (m_showWheel && append(effect))
        m_hasWheelEffect = true;
}

} // namespace kel
