#include "playback/KelPlaybackMouseTrack.h"

#include "playback/ClickPlayer.h"
#include "playback/CursorImages.h"
#include "playback/KelMouseButtonLottie.h"
#include "playback/KelMouseWheelLottie.h"
#include "playback/PointerList.h"

#include <QDebug>
#include <QFileInfo>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int kShortSteps = 24; // of an effect that nobody holds
constexpr double kEffectSide = 64.0;
constexpr double kMaxEffectScale = 64.0;

} // namespace

class KelPlaybackMouseTrack::Private
{
public:
    bool load(const QString &dir);
    void movePointer(int frame);
    void paintCursor(QPainter &painter) const;
    void paintEffects(QPainter &painter, bool ofWheel) const;
    void paintEffect(QPainter &painter, const ActiveMouseEffect &effect) const;

    PointerList moves;
    CursorImages cursors;
    ClickPlayer clicks;
    bool isEnabled = true;
    double effectScale = 1.0;
    int currentFrame = 0;
    QPoint position;
    const CursorImages::Cursor *cursor = nullptr; // null when there is none to draw
};

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

void KelPlaybackMouseTrack::Private::movePointer(int frame)
{
    cursor = nullptr;
    const PointerList::Sample *sample = moves.at(frame);
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

void KelPlaybackMouseTrack::Private::paintCursor(QPainter &painter) const
{
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const double scale = clicks.pointerScale();
    if (scale != 1.0) {
        painter.translate(position);
        painter.scale(scale, scale);
        painter.translate(-position);
    }
    painter.drawPixmap(position - cursor->hotspot, cursor->image);
    painter.restore();
}

void KelPlaybackMouseTrack::Private::paintEffects(QPainter &painter, bool ofWheel) const
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    for (const ActiveMouseEffect &effect : clicks.effects()) {
        if (effect.isWheel == ofWheel && effect.remaining > 0)
            paintEffect(painter, effect);
    }
    painter.restore();
}

void KelPlaybackMouseTrack::Private::paintEffect(QPainter &painter, const ActiveMouseEffect &effect) const
{
    const int frame = effect.isLong ? std::min(effect.total - 1, effect.current)
                                    : std::min(kShortSteps - effect.remaining, kShortSteps - 1);
    const int side = int(effectScale * kEffectSide);
    QRectF target(0, 0, side, side);
    target.moveCenter(effect.isLong ? position : effect.position);
    if (effect.isWheel && clicks.wheelEffect())
        clicks.wheelEffect()->paint(&painter, std::max(0, frame), target, effect.delta < 1 ? 1 : 0);
    else if (!effect.isWheel && clicks.clickEffect())
        clicks.clickEffect()->paint(&painter, std::max(0, frame), target, int(effect.button));
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
    d->movePointer(frame);
    d->clicks.seekToFrame(frame);
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
