#include "playback/KelPlaybackTrackManager.h"

#include "playback/PlaybackClock.h"
#include "playback/PlaybackTracks.h"
#include "playback/keys/KelPlaybackKeyboardTrack.h"
#include "playback/mouse/KelPlaybackMouseTrack.h"
#include "playback/tracks/KelPlaybackCountdownTrack.h"
#include "playback/tracks/KelPlaybackScreenTrack.h"
#include "playback/tracks/KelPlaybackSeams.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"
#include "recording/KelRecordingMetadata.h"

#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace kel;

namespace
{

constexpr double kMinSpeed = 0.1;
constexpr double kMaxSpeed = 16.0;
constexpr double kSkippingSpeed = 1.5;
constexpr int kJumpFrames = 2;
constexpr double kNegligibleMs = 20;

// Above a certain speed only every n-th frame change is decoded. Counted for all managers together, for good.
unsigned frameChanges = 0;

/// With its defaults where it cannot be read.
KelRecordingMetadata loadMetadata(const QString &dir)
{
    KelRecordingMetadata metadata;
    KelRecordingMetadata::load(dir, &metadata);
    return metadata;
}

} // namespace

class Q_DECL_HIDDEN KelPlaybackTrackManager::Private
{
public:
    Private(KelPlaybackTrackManager *manager, const QString &dir, bool preferHardwareDecode,
            const KelPlaybackSeams &outside);

    bool holds(int frame) const { return frame >= 0 && frame < tracks.totalFrames(); }
    bool isJump(int frame) const;
    double audioMs(double frame) const;
    double audioRate() const;
    void restartClock() { clock.restart(seams.nowMs(), currentFrame); }
    void tick();
    void endPlay();

    KelPlaybackTrackManager *const q;
    const KelPlaybackSeams seams;
    QTimer timer;
    State state = Stopped;
    const QString recordDir;
    const KelRecordingMetadata metadata;
    PlaybackTracks tracks;
    PlaybackClock clock;
    int currentFrame = 0;
    bool exporting = false;
    qint64 lastPlayDurationMs = 0;
};

KelPlaybackTrackManager::Private::Private(KelPlaybackTrackManager *manager, const QString &dir,
                                          bool preferHardwareDecode, const KelPlaybackSeams &outside)
    : q(manager)
    , seams(outside)
    , timer(manager)
    , recordDir(dir)
    , metadata(loadMetadata(dir))
    , tracks(dir, metadata, preferHardwareDecode, seams, manager)
{
    clock.fps = metadata.fps;
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, manager, [this] { tick(); });
    if (tracks.voice())
        connect(tracks.voice(), &KelPlaybackVoiceTrack::deviceFailed, manager,
                &KelPlaybackTrackManager::sigSoundDeviceFailed);
}

bool KelPlaybackTrackManager::Private::isJump(int frame) const
{
    return std::abs(frame - currentFrame) > kJumpFrames;
}

/// Where the sound of a frame is. The recording's clock may have ticked at another rate than fps() says; its sound did
/// not.
double KelPlaybackTrackManager::Private::audioMs(double frame) const
{
    return frame / tracks.totalFrames() * double(metadata.durationMs);
}

/// Ms of sound in each ms of playback.
double KelPlaybackTrackManager::Private::audioRate() const
{
    const double nominalMs = tracks.totalFrames() * 1000.0 / clock.fps;
    const auto durationMs = double(metadata.durationMs);
    // Without need no sample is left out or repeated.
    const bool isNominal = durationMs <= 0 || std::abs(durationMs - nominalMs) <= kNegligibleMs;
    return isNominal ? clock.speed : clock.speed * durationMs / nominalMs;
}

void KelPlaybackTrackManager::Private::tick()
{
    if (state != Playing)
        return;
    const qint64 now = seams.nowMs();
    const int previous = currentFrame;
    currentFrame = clock.frameAt(now, tracks.totalFrames());
    const bool changed = currentFrame != previous;
    if (changed)
        emit q->sigFrameChanged(currentFrame);
    if (state != Playing)
        return; // the listener paused or stopped
    if (currentFrame >= tracks.totalFrames() - 1 && clock.isOver(now, tracks.totalFrames())) {
        lastPlayDurationMs = now - clock.startMs;
        endPlay();
        return;
    }
    if (changed) {
        ++frameChanges;
        const unsigned step = clock.speed > kSkippingSpeed ? unsigned(clock.speed) : 1U;
        if (frameChanges % step == 0)
            q->seek(currentFrame, false);
    }
    if (tracks.voice() && metadata.durationMs > 0)
        tracks.voice()->synchronize(audioMs(clock.exactFrameAt(seams.nowMs())));
}

void KelPlaybackTrackManager::Private::endPlay()
{
    timer.stop();
    state = Stopped;
    tracks.countdown()->setPlaying(false);
    if (tracks.voice())
        tracks.voice()->stop();
    tracks.resetEffects();
    currentFrame = 0;
    emit q->sigFrameChanged(0);
    if (tracks.keyboard())
        tracks.keyboard()->resetHistory();
    tracks.noteChange();
    emit q->sigPlaybackStopped();
}

KelPlaybackTrackManager::KelPlaybackTrackManager(const QString &recordDir, bool preferHardwareDecode, QObject *parent)
    : KelPlaybackTrackManager(recordDir, preferHardwareDecode, KelPlaybackSeams::real(), parent)
{
}

KelPlaybackTrackManager::KelPlaybackTrackManager(const QString &recordDir, bool preferHardwareDecode,
                                                 const KelPlaybackSeams &seams, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(this, recordDir, preferHardwareDecode, seams))
{
}

KelPlaybackTrackManager::~KelPlaybackTrackManager()
{
    // Closing a sound device handles events: no tick may come while the tracks go.
    d->timer.stop();
}

bool KelPlaybackTrackManager::isValidRecording() const
{
    return d->tracks.screen() != nullptr;
}

QString KelPlaybackTrackManager::errorString() const
{
    return d->tracks.errorString();
}

QString KelPlaybackTrackManager::recordDir() const
{
    return d->recordDir;
}

const KelRecordingMetadata &KelPlaybackTrackManager::metadata() const
{
    return d->metadata;
}

KelPlaybackTrackManager::State KelPlaybackTrackManager::state() const
{
    return d->state;
}

int KelPlaybackTrackManager::currentFrame() const
{
    return d->currentFrame;
}

int KelPlaybackTrackManager::totalFrames() const
{
    return d->tracks.totalFrames();
}

int KelPlaybackTrackManager::fps() const
{
    return d->metadata.fps;
}

qint64 KelPlaybackTrackManager::durationMs() const
{
    return d->metadata.durationMs;
}

double KelPlaybackTrackManager::speed() const
{
    return d->clock.speed;
}

qint64 KelPlaybackTrackManager::lastPlayDurationMs() const
{
    return d->lastPlayDurationMs;
}

QRect KelPlaybackTrackManager::recordArea() const
{
    return d->metadata.recordArea;
}

double KelPlaybackTrackManager::devicePixelRatio() const
{
    return d->metadata.devicePixelRatio;
}

QSize KelPlaybackTrackManager::pictureSize() const
{
    return d->tracks.pictureSize();
}

int KelPlaybackTrackManager::videoFrameCount() const
{
    return d->tracks.screen() ? d->tracks.screen()->videoFrameCount() : 0;
}

QStringList KelPlaybackTrackManager::trackNames() const
{
    return d->tracks.names();
}

KelPlaybackVoiceTrack *KelPlaybackTrackManager::voiceTrack() const
{
    return d->tracks.voice();
}

void KelPlaybackTrackManager::play()
{
    if (d->state == Playing)
        return;
    d->tracks.applySettings();
    // After the end of play the tracks still stand at the last frame.
    if (d->state == Stopped)
        d->tracks.moveTo(d->currentFrame);
    d->state = Playing;
    d->tracks.countdown()->setPlaying(true);
    d->restartClock();
    if (d->tracks.voice())
        d->tracks.voice()->play(d->audioMs(d->currentFrame), d->audioRate());
    // Twice a frame, so that a frame is never late by a whole one.
    d->timer.start(std::max(1, 500 / fps()));
    emit sigPlaybackStarted();
}

void KelPlaybackTrackManager::pause()
{
    if (d->state != Playing)
        return;
    d->timer.stop();
    d->state = Paused;
    d->tracks.countdown()->setPlaying(false);
    if (d->tracks.voice())
        d->tracks.voice()->pause();
    d->tracks.resetEffects();
    emit sigPlaybackPaused();
}

void KelPlaybackTrackManager::stop()
{
    if (d->state != Stopped)
        d->endPlay();
}

void KelPlaybackTrackManager::setSpeed(double speed)
{
    if (!std::isfinite(speed))
        return;
    d->clock.speed = std::clamp(speed, kMinSpeed, kMaxSpeed);
    d->tracks.countdown()->setSpeed(d->clock.speed);
    d->tracks.noteChange();
    d->restartClock();
    if (d->tracks.voice() && d->state == Playing)
        d->tracks.voice()->play(d->audioMs(d->currentFrame), d->audioRate());
    emit sigPlaybackSpeedChanged(d->clock.speed);
}

void KelPlaybackTrackManager::seek(int frame)
{
    seek(frame, false);
}

void KelPlaybackTrackManager::seek(int frame, bool force)
{
    if (!d->holds(frame))
        return;
    const bool isMove = force || d->isJump(frame);
    d->currentFrame = frame;
    if (isMove && d->state == Playing)
        d->restartClock();
    d->tracks.moveTo(frame);
    if (d->tracks.voice() && (isMove || d->state == Paused))
        d->tracks.voice()->seekToMs(qint64(d->audioMs(frame)));
    emit sigFrameChanged(frame);
}

void KelPlaybackTrackManager::setFrameSilently(int frame)
{
    if (!d->holds(frame))
        return;
    d->currentFrame = frame;
    d->tracks.moveTo(frame);
}

void KelPlaybackTrackManager::setFrameAsPlayed(int frame)
{
    if (d->tracks.mouse() && d->holds(frame))
        d->tracks.mouse()->playEffectsBefore(frame);
    setFrameSilently(frame);
}

void KelPlaybackTrackManager::prefetch(int frame)
{
    if (d->tracks.screen() && d->holds(frame))
        d->tracks.screen()->prefetch(frame);
}

bool KelPlaybackTrackManager::waitForPrefetch(std::chrono::milliseconds limit) const
{
    return !d->tracks.screen() || d->tracks.screen()->waitForPrefetch(limit);
}

void KelPlaybackTrackManager::paint(QPainter *painter)
{
    if (painter)
        d->tracks.paint(painter);
}

quint64 KelPlaybackTrackManager::pictureRevision() const
{
    return d->tracks.revision();
}

bool KelPlaybackTrackManager::isPictureCovered() const
{
    return d->tracks.screen() && d->tracks.screen()->covers(pictureSize());
}

int KelPlaybackTrackManager::lostPictures() const
{
    return d->tracks.screen() ? d->tracks.screen()->lostPictures() : 0;
}

void KelPlaybackTrackManager::updateSettings()
{
    d->tracks.applySettings();
    emit sigFrameChanged(d->currentFrame);
}

void KelPlaybackTrackManager::setExporting(bool on)
{
    d->exporting = on;
}

void KelPlaybackTrackManager::beginExport(double speed, int first, int last)
{
    d->tracks.countdown()->setSpeed(speed);
    if (first >= 0)
        d->tracks.countdown()->setRange(first, last);
    if (d->tracks.screen())
        d->tracks.screen()->keepPicture();
    d->tracks.resetEffects();
}

void KelPlaybackTrackManager::endExport(int frame)
{
    d->tracks.countdown()->clearRange();
    d->tracks.countdown()->setSpeed(d->clock.speed);
    d->tracks.resetEffects();
    seek(frame);
    if (d->tracks.screen())
        d->tracks.screen()->dropKeptPicture();
}

bool KelPlaybackTrackManager::isExporting() const
{
    return d->exporting;
}
