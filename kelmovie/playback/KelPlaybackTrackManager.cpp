#include "playback/KelPlaybackTrackManager.h"

#include "playback/KelPlaybackCountdownTrack.h"
#include "playback/KelPlaybackKeyboardTrack.h"
#include "playback/KelPlaybackMouseTrack.h"
#include "playback/KelPlaybackScreenTrack.h"
#include "playback/KelPlaybackSeams.h"
#include "playback/KelPlaybackVoiceTrack.h"
#include "playback/PlaybackClock.h"
#include "playback/PlaybackSettings.h"
#include "record/KelRecordingMetadata.h"

#include <KelMovie/KelMovieConfig.h>

#include <QDebug>
#include <QFileInfo>
#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace
{

constexpr double kMinSpeed = 0.1;
constexpr double kMaxSpeed = 16.0;
constexpr double kSkippingSpeed = 1.5;
constexpr int kJumpFrames = 2;
constexpr double kNegligibleMs = 20;

// Above a certain speed only every n-th frame change is decoded. Counted for all managers together, for good.
unsigned frameChanges = 0;

} // namespace

class KelPlaybackTrackManager::Private
{
public:
    Private(KelPlaybackTrackManager *manager, const QString &dir, bool hardware, const KelPlaybackSeams &outside)
        : q(manager)
        , seams(outside)
        , timer(manager)
        , recordDir(dir)
        , preferHardwareDecode(hardware)
    {
    }

    void createTracks();
    void createScreenTrack();
    void createMouseTrack();
    void createVoiceTrack();
    void createCountdownTrack();
    void createKeyboardTrack();
    void decideFrameCount();
    void applySettings();
    bool holds(int frame) const { return frame >= 0 && frame < totalFrames; }
    bool isJump(int frame) const;
    void moveTracks(int frame);
    void resetEffects();
    double audioMs(double frame) const;
    double audioRate() const;
    void restartClock() { clock.restart(seams.nowMs(), currentFrame); }
    void tick();
    void endPlay();

    KelPlaybackTrackManager *const q;
    const KelPlaybackSeams seams;
    QTimer timer;
    std::vector<std::unique_ptr<KelPlaybackTrack>> tracks; // in painting order
    KelPlaybackScreenTrack *screenTrack = nullptr;         // the one in tracks
    KelPlaybackMouseTrack *mouseTrack = nullptr;           // the one in tracks
    KelPlaybackVoiceTrack *voiceTrack = nullptr;           // the one in tracks
    KelPlaybackCountdownTrack *countdownTrack = nullptr;   // the one in tracks
    KelPlaybackKeyboardTrack *keyboardTrack = nullptr;     // the one in tracks
    State state = Stopped;
    const QString recordDir;
    KelRecordingMetadata metadata;
    QString errorString;
    PlaybackClock clock;
    int currentFrame = 0;
    int totalFrames = 0;
    bool exporting = false;
    quint64 pictureRevision = 0;
    qint64 lastPlayDurationMs = 0;
    const bool preferHardwareDecode;
};

/// The order is the painting order: what comes later lies above.
void KelPlaybackTrackManager::Private::createTracks()
{
    if (metadata.screenTrack)
        createScreenTrack();
    if (metadata.mouseTrack)
        createMouseTrack();
    if (metadata.systemAudio || metadata.microphoneAudio)
        createVoiceTrack();
    createCountdownTrack();
    decideFrameCount();
    if (metadata.keyboardTrack)
        createKeyboardTrack();
    applySettings();
}

void KelPlaybackTrackManager::Private::createScreenTrack()
{
    const QString dir = recordDir + "/Screen";
    if (!QFileInfo(dir).isDir()) {
        errorString = "Screen directory not found: " + dir;
        qWarning() << "Screen track enabled but directory not found:" << dir;
        return;
    }
    auto track = std::make_unique<KelPlaybackScreenTrack>(metadata.devicePixelRatio, dir, preferHardwareDecode,
                                                          seams.decoders, q);
    if (!track->errorString().isEmpty()) {
        errorString = track->errorString();
        qCritical() << "Screen track creation failed:" << errorString;
        return;
    }
    screenTrack = track.get();
    tracks.push_back(std::move(track));
}

void KelPlaybackTrackManager::Private::createMouseTrack()
{
    const QString dir = recordDir + "/Mouse";
    if (!QFileInfo(dir).isDir()) {
        qWarning() << "Mouse track enabled but directory not found:" << dir;
        return;
    }
    auto track = std::make_unique<KelPlaybackMouseTrack>(dir, q);
    mouseTrack = track.get();
    tracks.push_back(std::move(track));
}

void KelPlaybackTrackManager::Private::createVoiceTrack()
{
    const QString dir = recordDir + "/Voice";
    if (!QFileInfo(dir).isDir()) {
        qWarning() << "Voice track enabled but directory not found:" << dir;
        return;
    }
    auto track = std::make_unique<KelPlaybackVoiceTrack>(dir, metadata.systemAudio, metadata.microphoneAudio, seams, q);
    voiceTrack = track.get();
    tracks.push_back(std::move(track));
}

void KelPlaybackTrackManager::Private::createCountdownTrack()
{
    auto track = std::make_unique<KelPlaybackCountdownTrack>(recordDir, q);
    track->setScale(metadata.pixelRatio);
    track->setFps(metadata.fps);
    track->setArea(QRect(QPoint(), q->pictureSize()));
    countdownTrack = track.get();
    tracks.push_back(std::move(track));
}

void KelPlaybackTrackManager::Private::createKeyboardTrack()
{
    auto track =
        std::make_unique<KelPlaybackKeyboardTrack>(recordDir + "/Keyboard", totalFrames, metadata.pixelRatio, q);
    if (!track->errorString().isEmpty()) {
        qCritical() << "Keyboard track creation failed:" << track->errorString();
        return;
    }
    keyboardTrack = track.get();
    tracks.push_back(std::move(track));
}

void KelPlaybackTrackManager::Private::applySettings()
{
    ++pictureRevision;
    for (const auto &track : tracks)
        applyPlaybackSettings(gKelMovieConfig, metadata.pixelRatio, *track);
}

void KelPlaybackTrackManager::Private::decideFrameCount()
{
    totalFrames = 1;
    if (!metadata.screenTrack) {
        errorString = "The recording has no screen track";
        qWarning() << "Screen track disabled, cannot determine frame count";
    } else if (!screenTrack) {
        qCritical() << "No screen track found in tracks list";
    } else if (screenTrack->logicFrameCount() <= 0) {
        qWarning() << "Screen track has no logic frames, using fallback";
    } else {
        totalFrames = screenTrack->logicFrameCount();
    }
    countdownTrack->setTotalFrames(totalFrames);
}

bool KelPlaybackTrackManager::Private::isJump(int frame) const
{
    return std::abs(frame - currentFrame) > kJumpFrames;
}

void KelPlaybackTrackManager::Private::moveTracks(int frame)
{
    bool isChanged = false;
    for (const auto &track : tracks) {
        if (track.get() != voiceTrack && track->moveToFrame(frame))
            isChanged = true;
    }
    if (isChanged)
        ++pictureRevision;
}

void KelPlaybackTrackManager::Private::resetEffects()
{
    ++pictureRevision;
    if (mouseTrack)
        mouseTrack->resetEffects();
}

/// Where the sound of a frame is. The recording's clock may have ticked at another rate than fps() says; its sound did
/// not.
double KelPlaybackTrackManager::Private::audioMs(double frame) const
{
    return frame / totalFrames * double(metadata.durationMs);
}

/// Ms of sound in each ms of playback.
double KelPlaybackTrackManager::Private::audioRate() const
{
    const double nominalMs = totalFrames * 1000.0 / clock.fps;
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
    currentFrame = clock.frameAt(now, totalFrames);
    const bool changed = currentFrame != previous;
    if (changed)
        emit q->sigFrameChanged(currentFrame);
    if (state != Playing)
        return; // the listener paused or stopped
    if (currentFrame >= totalFrames - 1 && clock.isOver(now, totalFrames)) {
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
    if (voiceTrack && metadata.durationMs > 0)
        voiceTrack->synchronize(audioMs(clock.exactFrameAt(seams.nowMs())));
}

void KelPlaybackTrackManager::Private::endPlay()
{
    timer.stop();
    state = Stopped;
    countdownTrack->setPlaying(false);
    if (voiceTrack)
        voiceTrack->stop();
    resetEffects();
    currentFrame = 0;
    emit q->sigFrameChanged(0);
    if (keyboardTrack)
        keyboardTrack->resetHistory();
    ++pictureRevision;
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
    connect(&d->timer, &QTimer::timeout, this, [this] { d->tick(); });
    d->timer.setTimerType(Qt::PreciseTimer);
    KelRecordingMetadata::load(recordDir, &d->metadata);
    d->clock.fps = d->metadata.fps;
    d->createTracks();
    if (!QFileInfo(recordDir).isDir())
        d->errorString = "Recording directory not found: " + recordDir;
}

KelPlaybackTrackManager::~KelPlaybackTrackManager() = default;

bool KelPlaybackTrackManager::isValidRecording() const
{
    return d->screenTrack != nullptr;
}

QString KelPlaybackTrackManager::errorString() const
{
    return d->errorString;
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
    return d->totalFrames;
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
    const QSize area = d->metadata.recordArea.size();
    return area.isEmpty() && d->screenTrack ? d->screenTrack->frameSize() : area;
}

int KelPlaybackTrackManager::videoFrameCount() const
{
    return d->screenTrack ? d->screenTrack->videoFrameCount() : 0;
}

QStringList KelPlaybackTrackManager::trackNames() const
{
    QStringList names;
    for (const auto &track : d->tracks) {
        if (track.get() != d->countdownTrack && track->errorString().isEmpty())
            names.append(track->name());
    }
    return names;
}

KelPlaybackVoiceTrack *KelPlaybackTrackManager::voiceTrack() const
{
    return d->voiceTrack;
}

void KelPlaybackTrackManager::play()
{
    if (d->state == Playing)
        return;
    d->applySettings();
    // After the end of play the tracks still stand at the last frame.
    if (d->state == Stopped)
        d->moveTracks(d->currentFrame);
    d->state = Playing;
    d->countdownTrack->setPlaying(true);
    d->restartClock();
    if (d->voiceTrack)
        d->voiceTrack->play(d->audioMs(d->currentFrame), d->audioRate());
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
    d->countdownTrack->setPlaying(false);
    if (d->voiceTrack)
        d->voiceTrack->pause();
    d->resetEffects();
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
    d->countdownTrack->setSpeed(d->clock.speed);
    ++d->pictureRevision;
    d->restartClock();
    if (d->voiceTrack && d->state == Playing)
        d->voiceTrack->play(d->audioMs(d->currentFrame), d->audioRate());
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
    d->moveTracks(frame);
    if (d->voiceTrack && (isMove || d->state == Paused))
        d->voiceTrack->seekToMs(qint64(d->audioMs(frame)));
    emit sigFrameChanged(frame);
}

void KelPlaybackTrackManager::setFrameSilently(int frame)
{
    if (!d->holds(frame))
        return;
    d->currentFrame = frame;
    d->moveTracks(frame);
}

void KelPlaybackTrackManager::setFrameAsPlayed(int frame)
{
    if (d->mouseTrack && d->holds(frame))
        d->mouseTrack->playEffectsBefore(frame);
    setFrameSilently(frame);
}

void KelPlaybackTrackManager::prefetch(int frame)
{
    if (d->screenTrack && d->holds(frame))
        d->screenTrack->prefetch(frame);
}

bool KelPlaybackTrackManager::waitForPrefetch(std::chrono::milliseconds limit) const
{
    return !d->screenTrack || d->screenTrack->waitForPrefetch(limit);
}

void KelPlaybackTrackManager::paint(QPainter *painter)
{
    if (!painter)
        return;
    for (const auto &track : d->tracks)
        track->paint(painter);
}

quint64 KelPlaybackTrackManager::pictureRevision() const
{
    return d->pictureRevision;
}

bool KelPlaybackTrackManager::isPictureCovered() const
{
    return d->screenTrack && d->screenTrack->covers(pictureSize());
}

int KelPlaybackTrackManager::lostPictures() const
{
    return d->screenTrack ? d->screenTrack->lostPictures() : 0;
}

void KelPlaybackTrackManager::updateSettings()
{
    d->applySettings();
    emit sigFrameChanged(d->currentFrame);
}

void KelPlaybackTrackManager::setExporting(bool on)
{
    d->exporting = on;
}

void KelPlaybackTrackManager::beginExport(double speed, int first, int last)
{
    d->countdownTrack->setSpeed(speed);
    if (first >= 0)
        d->countdownTrack->setRange(first, last);
    if (d->screenTrack)
        d->screenTrack->keepPicture();
    d->resetEffects();
}

void KelPlaybackTrackManager::endExport(int frame)
{
    d->countdownTrack->clearRange();
    d->countdownTrack->setSpeed(d->clock.speed);
    d->resetEffects();
    seek(frame);
    if (d->screenTrack)
        d->screenTrack->dropKeptPicture();
}

bool KelPlaybackTrackManager::isExporting() const
{
    return d->exporting;
}
