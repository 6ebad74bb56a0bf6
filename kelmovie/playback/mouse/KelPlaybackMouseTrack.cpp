#include "playback/mouse/KelPlaybackMouseTrack.h"

#include "logging/Log.h"
#include "playback/mouse/ClickPlayer.h"
#include "playback/mouse/KelMouseButtonLottie.h"
#include "playback/mouse/KelMouseWheelLottie.h"
#include "playback/mouse/PointerList.h"
#include "recording/KelRecordingFiles.h"
#include "recording/input/CursorListReader.h"

#include <QFileInfo>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace kel;

namespace
{

constexpr int kShortEffectFrames = 24; // length of the effect of a short click
constexpr double kEffectSide = 64.0;
constexpr double kMaxEffectScale = 64.0;

/// How an effect is painted.
struct ShownEffect {
    bool isWheel = false;
    int frame = 0; // of the animation
    QRectF target;
    int variant = 0; // the button, or the direction of the wheel

    bool operator==(const ShownEffect &other) const
    {
        return isWheel == other.isWheel && frame == other.frame && target == other.target && variant == other.variant;
    }
};

/// How the whole layer is painted.
struct ShownPointer {
    const CursorImage *cursor = nullptr; // null: nothing is painted
    QPoint position;
    double scale = 1.0;
    std::vector<ShownEffect> effects;

    bool operator==(const ShownPointer &other) const
    {
        return cursor == other.cursor && position == other.position && scale == other.scale && effects == other.effects;
    }
};

} // namespace

class Q_DECL_HIDDEN KelPlaybackMouseTrack::Private
{
public:
    bool load(const QString &dir);
    void movePointer(int frame);
    ShownPointer shown() const;
    ShownEffect shown(const ActiveMouseEffect &effect) const;
    void paintCursor(QPainter &painter, const ShownPointer &pointer) const;
    void paintEffects(QPainter &painter, const ShownPointer &pointer, bool ofWheel) const;

    PointerList moves;
    CursorImages cursors;
    ClickPlayer clicks;
    bool isEnabled = true;
    double effectScale = 1.0;
    int currentFrame = 0;
    QPoint position;
    const CursorImage *cursor = nullptr; // null when there is none to draw
};

bool KelPlaybackMouseTrack::Private::load(const QString &dir)
{
    const QString movesPath = KelRecordingFiles::path(dir, KelRecordingFiles::kMouseMoves);
    const QString clicksPath = KelRecordingFiles::path(dir, KelRecordingFiles::kMouseClicks);
    if (!QFileInfo::exists(movesPath) ||
        !QFileInfo::exists(KelRecordingFiles::path(dir, KelRecordingFiles::kCursorList)))
        return false;
    if (!readCursorList(dir, cursors)) {
        qCWarning(logPlayback) << "Failed to load cursor types";
        return false;
    }
    if (!moves.load(movesPath)) {
        qCWarning(logPlayback) << "Failed to load mouse moves";
        return false;
    }
    if (QFileInfo::exists(clicksPath) && !clicks.load(clicksPath))
        qCWarning(logPlayback) << "Failed to load mouse clicks";
    return true;
}

void KelPlaybackMouseTrack::Private::movePointer(int frame)
{
    cursor = nullptr;
    const PointerList::Sample *sample = moves.at(frame);
    if (!sample)
        return;
    position = sample->position;
    if (sample->cursor == PointerList::kHidden)
        return;
    const QString &id = moves.cursorIds().at(sample->cursor);
    const auto found = cursors.constFind(id);
    cursor = found != cursors.constEnd() ? &*found : nullptr;
    if (!cursor)
        qCWarning(logPlayback) << "Cursor type not found:" << id;
}

ShownPointer KelPlaybackMouseTrack::Private::shown() const
{
    if (!isEnabled || !cursor)
        return {};
    ShownPointer pointer{cursor, position, clicks.pointerScale(), {}};
    for (const ActiveMouseEffect &effect : clicks.effects()) {
        const bool isDrawn =
            effect.isWheel ? clicks.wheelEffect() != nullptr : clicks.clickEffect() && clicks.clickEffect()->isDrawn();
        if (isDrawn && effect.remaining > 0)
            pointer.effects.push_back(shown(effect));
    }
    return pointer;
}

ShownEffect KelPlaybackMouseTrack::Private::shown(const ActiveMouseEffect &effect) const
{
    const int frame = effect.isLong ? std::min(effect.total - 1, effect.current)
                                    : std::min(kShortEffectFrames - effect.remaining, kShortEffectFrames - 1);
    const int side = int(effectScale * kEffectSide);
    QRectF target(0, 0, side, side);
    target.moveCenter(effect.isLong ? position : effect.position);
    const int variant = effect.isWheel ? int(effect.delta < 1) : int(effect.button);
    return {effect.isWheel, std::max(0, frame), target, variant};
}

void KelPlaybackMouseTrack::Private::paintCursor(QPainter &painter, const ShownPointer &pointer) const
{
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (pointer.scale != 1.0) {
        painter.translate(pointer.position);
        painter.scale(pointer.scale, pointer.scale);
        painter.translate(-pointer.position);
    }
    painter.drawPixmap(pointer.position - pointer.cursor->hotspot, pointer.cursor->image);
    painter.restore();
}

void KelPlaybackMouseTrack::Private::paintEffects(QPainter &painter, const ShownPointer &pointer, bool ofWheel) const
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    for (const ShownEffect &effect : pointer.effects) {
        if (effect.isWheel != ofWheel)
            continue;
        if (ofWheel)
            clicks.wheelEffect()->paint(&painter, effect.frame, effect.target, effect.variant);
        else
            clicks.clickEffect()->paint(&painter, effect.frame, effect.target, effect.variant);
    }
    painter.restore();
}

KelPlaybackMouseTrack::KelPlaybackMouseTrack(const QString &directory, KelPlaybackTrackManager *manager)
    : KelPlaybackTrack(directory, manager)
    , d(std::make_unique<Private>())
{
    setName(QStringLiteral("MouseTrack"));
    if (!d->load(directory)) {
        setErrorString(QStringLiteral("Failed to load mouse track JSON data"));
        qCCritical(logPlayback).noquote() << errorString();
    }
}

KelPlaybackMouseTrack::~KelPlaybackMouseTrack() = default;

void KelPlaybackMouseTrack::seekToFrame(int frame)
{
    d->currentFrame = frame;
    d->movePointer(frame);
    d->clicks.seekToFrame(frame);
}

bool KelPlaybackMouseTrack::moveToFrame(int frame)
{
    const ShownPointer before = d->shown();
    seekToFrame(frame);
    return !(d->shown() == before);
}

void KelPlaybackMouseTrack::playEffectsBefore(int frame)
{
    resetEffects();
    for (int earlier = 0; earlier < frame; ++earlier)
        d->clicks.seekToFrame(earlier);
}

void KelPlaybackMouseTrack::paint(QPainter *painter)
{
    const ShownPointer pointer = d->shown();
    if (!painter || !pointer.cursor)
        return;
    d->paintEffects(*painter, pointer, false);
    d->paintCursor(*painter, pointer);
    d->paintEffects(*painter, pointer, true);
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
    d->clicks.reset();
}

void KelPlaybackMouseTrack::setEnabled(bool on)
{
    d->isEnabled = on;
}

void KelPlaybackMouseTrack::setShownButtons(int buttons)
{
    d->clicks.setShownButtons(buttons);
}

void KelPlaybackMouseTrack::setShowWheel(bool on)
{
    d->clicks.setShowWheel(on);
}

void KelPlaybackMouseTrack::setReplaceSameButton(bool on)
{
    d->clicks.setReplaceSameButton(on);
}

void KelPlaybackMouseTrack::setEffectScale(double scale)
{
    d->effectScale = std::isfinite(scale) ? std::clamp(scale, 0.0, kMaxEffectScale) : 1.0;
}

void KelPlaybackMouseTrack::setClickType(int type)
{
    d->clicks.setClickType(type);
}

void KelPlaybackMouseTrack::setWheelType(int type)
{
    d->clicks.setWheelType(type);
}

void KelPlaybackMouseTrack::setEffectColor(const QColor &color)
{
    d->clicks.setEffectColor(color);
}
