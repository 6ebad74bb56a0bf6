#include "playback/KelPlaybackMouseTrack.h"

#include "playback/ClickList.h"
#include "playback/CursorImages.h"
#include "playback/KelMouseButtonLottie.h"
#include "playback/KelMouseWheelLottie.h"
#include "playback/MouseEffectList.h"
#include "playback/PointerList.h"
#include "playback/PressScaling.h"

#include <QColor>
#include <QDebug>
#include <QFileInfo>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int kEffectRate = 30; // animation frames that are played a second, one a step
constexpr int kShortSteps = 24; // of an effect that nobody holds
constexpr double kEffectSide = 64.0;
constexpr double kMaxEffectScale = 64.0;

constexpr int kNoEffect = 0;
constexpr int kPressScaling = 6; // a click effect

// Playing at high speed or exporting few frames a second leaves frames out. What was clicked in them is due as well,
// but after a jump it is not.
constexpr int kMaxStep = 32;

constexpr int kNoFrame = -1;

} // namespace

class KelPlaybackMouseTrack::Private
{
public:
    Private();

    bool load(const QString &dir);
    void setClickType(int type);
    void setWheelType(int type);
    void resetEffects();
    void movePointer();
    void playClicks();
    void paintCursor(QPainter &painter) const;
    void paintEffects(QPainter &painter, bool ofWheel);
    void paintEffect(QPainter &painter, const ActiveMouseEffect &effect);

    PointerList moves;
    ClickList clicks;
    CursorImages cursors;

    bool isEnabled = true;
    double effectScale = 1.0;
    QColor effectColor;
    int clickType = kPressScaling;
    int wheelType = kNoEffect;
    std::unique_ptr<KelMouseButtonLottie> clickEffect;
    std::unique_ptr<KelMouseWheelLottie> wheelEffect;

    int currentFrame = 0;
    int playedFrame = kNoFrame; // up to here clicks were taken
    QPoint position;
    const CursorImages::Cursor *cursor = nullptr; // null when there is none to draw
    MouseEffectList effects;
    PressScaling pressScaling;
};

KelPlaybackMouseTrack::Private::Private()
{
    setClickType(clickType);
    setWheelType(wheelType);
}

bool KelPlaybackMouseTrack::Private::load(const QString &dir)
{
    const QString movesPath = dir + "/mousemoves-0.json";
    const QString clicksPath = dir + "/mouseclicks-0.json";
    if (!QFileInfo::exists(movesPath) || !QFileInfo::exists(dir + "/cursor.json"))
        return false;
    if (!cursors.load(dir)) {
        qWarning() << "Failed to load cursor types";
        return false;
    }
    if (!moves.load(movesPath)) {
        qWarning() << "Failed to load mouse moves";
        return false;
    }
    if (QFileInfo::exists(clicksPath) && !clicks.load(clicksPath))
        qWarning() << "Failed to load mouse clicks";
    return true;
}

void KelPlaybackMouseTrack::Private::setClickType(int type)
{
    clickType = type;
    clickEffect = createMouseButtonLottie(kEffectRate, type);
    if (clickEffect)
        clickEffect->setColor(effectColor);
    effects.setClickEffect(clickEffect.get());
    pressScaling.reset();
}

void KelPlaybackMouseTrack::Private::setWheelType(int type)
{
    wheelType = type;
    wheelEffect = createMouseWheelLottie(kEffectRate, type);
    if (wheelEffect)
        wheelEffect->setColor(effectColor);
    effects.setWheelEffect(wheelEffect.get());
}

void KelPlaybackMouseTrack::Private::resetEffects()
{
    effects.clear();
    pressScaling.reset();
    playedFrame = kNoFrame;
}

void KelPlaybackMouseTrack::Private::movePointer()
{
    cursor = nullptr;
    const PointerList::Sample *sample = moves.at(currentFrame);
    if (!sample)
        return;
    position = sample->position;
    if (sample->cursor == PointerList::hidden)
        return;
    const QString &id = moves.cursorIds().at(sample->cursor);
    cursor = cursors.find(id);
    if (!cursor)
        qWarning() << "Cursor type not found:" << id;
}

/// Frames that were left out on the way are made up for: otherwise an export with few frames a second, or playing at
/// high speed, would miss most clicks. A frame that is asked for again has had its clicks.
void KelPlaybackMouseTrack::Private::playClicks()
{
    int after = currentFrame - 1;
    if (playedFrame != kNoFrame && playedFrame <= currentFrame && currentFrame - playedFrame <= kMaxStep)
        after = playedFrame;
    playedFrame = currentFrame;
    for (const MouseClick &click : clicks.between(after, currentFrame)) {
        switch (click.action) {
        case MouseClick::Action::Click:
            if (clickType == kPressScaling)
                pressScaling.press(click);
            effects.click(click);
            break;
        case MouseClick::Action::Release:
            pressScaling.release(click.button);
            effects.release(click, clicks.isPressedBefore(click.button, click.frame));
            break;
        case MouseClick::Action::Wheel:
            effects.wheel(click);
            break;
        }
    }
}

void KelPlaybackMouseTrack::Private::paintCursor(QPainter &painter) const
{
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (pressScaling.scale() != 1.0F) {
        painter.translate(position);
        painter.scale(double(pressScaling.scale()), double(pressScaling.scale()));
        painter.translate(-position);
    }
    painter.drawPixmap(position - cursor->hotspot, cursor->image);
    painter.restore();
}

void KelPlaybackMouseTrack::Private::paintEffects(QPainter &painter, bool ofWheel)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    for (const ActiveMouseEffect &effect : effects.effects()) {
        if (effect.isWheel == ofWheel && effect.remaining > 0)
            paintEffect(painter, effect);
    }
    painter.restore();
}

void KelPlaybackMouseTrack::Private::paintEffect(QPainter &painter, const ActiveMouseEffect &effect)
{
    const int frame = effect.isLong ? std::min(effect.total - 1, effect.current)
                                    : std::min(kShortSteps - effect.remaining, kShortSteps - 1);
    const int side = int(effectScale * kEffectSide);
    QRectF target(0, 0, side, side);
    target.moveCenter(effect.isLong ? position : effect.position);
    if (effect.isWheel && wheelEffect && wheelType != kNoEffect)
        wheelEffect->paint(&painter, std::max(0, frame), target, effect.delta < 1 ? 1 : 0);
    else if (!effect.isWheel && clickEffect && clickType != kNoEffect)
        clickEffect->paint(&painter, std::max(0, frame), target, int(effect.button));
}

KelPlaybackMouseTrack::KelPlaybackMouseTrack(const QString &directory, KelPlaybackTrackManager *manager)
    : KelPlaybackTrack(directory, manager)
    , d(std::make_unique<Private>())
{
    setName("MouseTrack");
    if (!d->load(directory)) {
        setErrorString("Failed to load mouse track JSON data");
        qCritical().noquote() << errorString();
    }
}

KelPlaybackMouseTrack::~KelPlaybackMouseTrack() = default;

void KelPlaybackMouseTrack::seekToFrame(int frame)
{
    d->currentFrame = frame;
    if (frame == 0)
        d->resetEffects();
    d->movePointer();
    d->effects.step(frame);
    d->pressScaling.step(frame);
    d->playClicks();
}

void KelPlaybackMouseTrack::paint(QPainter *painter)
{
    if (!painter || !d->isEnabled || !d->cursor)
        return;
    d->paintEffects(*painter, false);
    d->paintCursor(*painter);
    d->paintEffects(*painter, true);
}

int KelPlaybackMouseTrack::nextKeyFrame()
{
    return d->moves.nextFrame(d->currentFrame);
}

bool KelPlaybackMouseTrack::isVisible()
{
    return d->isEnabled;
}

void KelPlaybackMouseTrack::resetEffects()
{
    d->resetEffects();
}

void KelPlaybackMouseTrack::setEnabled(bool on)
{
    d->isEnabled = on;
}

void KelPlaybackMouseTrack::setShownButtons(int buttons)
{
    d->effects.setShownButtons(buttons);
}

void KelPlaybackMouseTrack::setShowWheel(bool on)
{
    d->effects.setShowWheel(on);
}

void KelPlaybackMouseTrack::setReplaceSameButton(bool on)
{
    d->effects.setReplaceSameButton(on);
}

void KelPlaybackMouseTrack::setEffectScale(double scale)
{
    d->effectScale = std::isfinite(scale) ? std::clamp(scale, 0.0, kMaxEffectScale) : 1.0;
}

void KelPlaybackMouseTrack::setClickType(int type)
{
    if (type != d->clickType)
        d->setClickType(type);
}

void KelPlaybackMouseTrack::setWheelType(int type)
{
    if (type != d->wheelType)
        d->setWheelType(type);
}

void KelPlaybackMouseTrack::setEffectColor(const QColor &color)
{
    d->effectColor = color;
    if (d->clickEffect)
        d->clickEffect->setColor(color);
    if (d->wheelEffect)
        d->wheelEffect->setColor(color);
}
