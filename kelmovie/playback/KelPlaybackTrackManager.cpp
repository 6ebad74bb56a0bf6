#include "playback/KelPlaybackTrackManager.h"

#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "playback/tracks/KelPlaybackScreenTrack.h"

using namespace kel;

class Q_DECL_HIDDEN KelPlaybackTrackManager::Private : public PlaybackEngine
{
public:
    using PlaybackEngine::PlaybackEngine;
};

PlaybackEngine &PlaybackInternals::engine(KelPlaybackTrackManager &manager)
{
    return *manager.d;
}

const PlaybackEngine &PlaybackInternals::engine(const KelPlaybackTrackManager &manager)
{
    return *manager.d;
}

std::unique_ptr<KelPlaybackTrackManager> PlaybackInternals::load(const QString &recordDir,
                                                                 const KelPlaybackDependencies &dependencies,
                                                                 const KelPlaybackRules &rules)
{
    return std::unique_ptr<KelPlaybackTrackManager>(
        new KelPlaybackTrackManager(recordDir, false, rules, dependencies, nullptr));
}

KelPlaybackTrackManager::KelPlaybackTrackManager(const QString &recordDir, bool preferHardwareDecode, QObject *parent)
    : KelPlaybackTrackManager(recordDir, preferHardwareDecode, KelPlaybackRules(), parent)
{
}

KelPlaybackTrackManager::KelPlaybackTrackManager(const QString &recordDir, bool preferHardwareDecode,
                                                 const KelPlaybackRules &rules, QObject *parent)
    : KelPlaybackTrackManager(recordDir, preferHardwareDecode, rules, KelPlaybackDependencies::real(), parent)
{
}

KelPlaybackTrackManager::KelPlaybackTrackManager(const QString &recordDir, bool preferHardwareDecode,
                                                 const KelPlaybackRules &rules,
                                                 const KelPlaybackDependencies &dependencies, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(recordDir, preferHardwareDecode, rules, dependencies, this))
{
}

KelPlaybackTrackManager::~KelPlaybackTrackManager() = default;

bool KelPlaybackTrackManager::isValidRecording() const
{
    return d->tracks().screen() != nullptr;
}

QString KelPlaybackTrackManager::errorString() const
{
    return d->tracks().errorString();
}

QString KelPlaybackTrackManager::recordDir() const
{
    return d->recordDir();
}

const KelRecordingMetadata &KelPlaybackTrackManager::metadata() const
{
    return d->metadata();
}

const KelPlaybackRules &KelPlaybackTrackManager::rules() const
{
    return d->rules();
}

KelPlaybackTrackManager::State KelPlaybackTrackManager::state() const
{
    return d->state();
}

int KelPlaybackTrackManager::currentFrame() const
{
    return d->currentFrame();
}

int KelPlaybackTrackManager::totalFrames() const
{
    return d->tracks().totalFrames();
}

int KelPlaybackTrackManager::fps() const
{
    return d->metadata().fps;
}

qint64 KelPlaybackTrackManager::durationMs() const
{
    return d->durationMs();
}

qint64 KelPlaybackTrackManager::lengthMs() const
{
    return d->tracks().timeline().durationMs();
}

int KelPlaybackTrackManager::frameAtMs(qint64 ms) const
{
    return d->tracks().timeline().frameAtPosition(ms);
}

qint64 KelPlaybackTrackManager::msOfFrame(int frame) const
{
    return d->tracks().timeline().positionOf(frame);
}

int KelPlaybackTrackManager::framesIn(qint64 ms) const
{
    return d->tracks().timeline().framesIn(ms);
}

double KelPlaybackTrackManager::speed() const
{
    return d->speed();
}

qint64 KelPlaybackTrackManager::lastPlayDurationMs() const
{
    return d->lastPlayDurationMs();
}

QRect KelPlaybackTrackManager::recordArea() const
{
    return d->metadata().recordArea;
}

double KelPlaybackTrackManager::devicePixelRatio() const
{
    return d->metadata().devicePixelRatio;
}

QSize KelPlaybackTrackManager::frameSize() const
{
    return d->tracks().frameSize();
}

int KelPlaybackTrackManager::videoFrameCount() const
{
    return d->tracks().screen() ? d->tracks().screen()->videoFrameCount() : 0;
}

QStringList KelPlaybackTrackManager::trackNames() const
{
    return d->tracks().names();
}

QStringList KelPlaybackTrackManager::soundProblems() const
{
    return d->soundProblems();
}

bool KelPlaybackTrackManager::hasSound() const
{
    return d->voiceTrack() != nullptr;
}

void KelPlaybackTrackManager::play()
{
    d->play();
}

void KelPlaybackTrackManager::pause()
{
    d->pause();
}

void KelPlaybackTrackManager::stop()
{
    d->stop();
}

void KelPlaybackTrackManager::setSpeed(double speed)
{
    d->setSpeed(speed);
}

void KelPlaybackTrackManager::seek(int frame)
{
    d->seek(frame, false);
}

void KelPlaybackTrackManager::seek(int frame, bool force)
{
    d->seek(frame, force);
}

void KelPlaybackTrackManager::setTrimRange(qint64 startMs, qint64 endMs)
{
    d->setTrimRange(startMs, endMs);
}

void KelPlaybackTrackManager::setFrameAsPlayed(int frame)
{
    d->setFrameAsPlayed(frame);
}

void KelPlaybackTrackManager::paint(QPainter *painter)
{
    d->paint(painter);
}

quint64 KelPlaybackTrackManager::frameRevision() const
{
    return d->tracks().revision();
}

bool KelPlaybackTrackManager::isFrameCovered() const
{
    return d->tracks().screen() && d->tracks().screen()->covers(frameSize());
}

void KelPlaybackTrackManager::updateSettings()
{
    d->updateSettings();
}
