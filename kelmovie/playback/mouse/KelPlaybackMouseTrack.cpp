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

constexpr double kEffectSide = 64.0;
constexpr double kMaxEffectScale = 64.0;

// By default nothing is shown beyond:
constexpr int kMaxX = 2000;
constexpr int kMaxY = 1500;

bool isBeyondDefaultLimit(const QPoint &position)
{
    return position.x() >= 0 && position.y() >= 0 && (position.x() > kMaxX || position.y() > kMaxY);
}

/// How the whole layer is painted.
struct ShownPointer {
    const CursorImage *cursor = nullptr; // null: nothing is painted
    QPoint position;
    double scale = 1.0;
    std::vector<ShownMouseEffect> effects;

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
    void paintCursor(QPainter &painter, const ShownPointer &pointer) const;
    void paintEffects(QPainter &painter, const ShownPointer &pointer, bool ofWheel) const;

    PointerList moves;
    CursorImages cursors;
    ClickPlayer clicks;
    bool isEnabled = true;
    bool showsEverywhere = false;
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
    if (sample->cursor == PointerList::kHidden || (!showsEverywhere && isBeyondDefaultLimit(position)))
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
    return {cursor, position, clicks.pointerScale(), clicks.shown(position)};
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
    const int side = int(effectScale * kEffectSide);
    QRectF target(0, 0, side, side);
    for (const ShownMouseEffect &effect : pointer.effects) {
        if (effect.isWheel != ofWheel)
            continue;
        target.moveCenter(effect.position);
        if (ofWheel)
            clicks.wheelEffect()->paint(&painter, effect.frame, target, effect.variant);
        else
            clicks.clickEffect()->paint(&painter, effect.frame, target, effect.variant);
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

void KelPlaybackMouseTrack::setContext(const RecordingTimeline &timeline, const KelPlaybackRules &rules)
{
    KelPlaybackTrack::setContext(timeline, rules);
    d->showsEverywhere = rules.showsPointerEverywhere;
    if (rules.pairsNearestRelease)
        d->clicks.pairNearestReleases();
    if (rules.effectsFollowRecordingTime)
        d->clicks.followTime(timeline);
}

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
    if (d->clicks.followsTime())
        return;
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
