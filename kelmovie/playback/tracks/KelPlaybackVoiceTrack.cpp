#include "playback/tracks/KelPlaybackVoiceTrack.h"

#include "audio/output/KelAmplifiedAudioPlayer.h"
#include "logging/Log.h"
#include "playback/tracks/KelPlaybackDependencies.h"
#include "recording/KelRecordingFiles.h"
#include "recording/wav/RecordedSound.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace kel;

namespace
{

constexpr qint64 kIgnoredMoveMs = 50;
constexpr double kMaxDriftMs = 100;     // between the two sources
constexpr double kMinRemainingMs = 250; // no less than this of a file is started
constexpr int kFramesPerSecond = 25;
constexpr int kKeyFramesPerSecond = 30;

} // namespace

KelPlaybackVoiceTrack::KelPlaybackVoiceTrack(const QString &directory, KelPlaybackTrackManager *manager)
    : KelPlaybackVoiceTrack(directory, true, true, KelPlaybackDependencies::real(), manager)
{
}

KelPlaybackVoiceTrack::KelPlaybackVoiceTrack(const QString &directory, bool systemAudio, bool microphone,
                                             const KelPlaybackDependencies &dependencies,
                                             KelPlaybackTrackManager *manager)
    : KelPlaybackTrack(directory, manager)
    , m_nowMs(dependencies.nowMs)
{
    setName(QStringLiteral("VoiceTrack"));
    const auto files = [&](bool isWanted, QLatin1String source) {
        return isWanted ? RecordedSound::files(directory, source) : QStringList();
    };
    const QStringList systemFiles = files(systemAudio, KelRecordingFiles::kSystemAudio);
    const QStringList microphoneFiles = files(microphone, KelRecordingFiles::kMicrophone);
    if (systemFiles.isEmpty() && microphoneFiles.isEmpty()) {
        setErrorString(QLatin1String("No audio WAV files found in: ") + directory);
        qCWarning(logPlayback).noquote() << "[KelPlaybackVoiceTrack]" << errorString();
    }
    load(m_system, systemFiles, QStringLiteral("system audio"), dependencies);
    load(m_microphone, microphoneFiles, QStringLiteral("microphone audio"), dependencies);
    if (m_system.player)
        connect(m_system.player, &KelAmplifiedAudioPlayer::positionChanged, this,
                &KelPlaybackVoiceTrack::onSystemAudioPositionChanged);
    if (m_microphone.player)
        connect(m_microphone.player, &KelAmplifiedAudioPlayer::positionChanged, this,
                &KelPlaybackVoiceTrack::onMicrophonePositionChanged);
}

KelPlaybackVoiceTrack::~KelPlaybackVoiceTrack()
{
    release();
}

void KelPlaybackVoiceTrack::load(Source &source, const QStringList &files, const QString &name,
                                 const KelPlaybackDependencies &dependencies)
{
    if (files.isEmpty())
        return;
    auto *player = new KelAmplifiedAudioPlayer(dependencies.createAudioSink, this);
    auto sound = std::make_unique<RecordedSound>(files);
    if (!sound->leftOut().isEmpty())
        source.problem = QStringLiteral("A part of the %1 cannot be played: %2").arg(name, sound->leftOut());
    if (!player->setSource(std::move(sound))) {
        qCWarning(logPlayback).noquote() << QStringLiteral("Failed to load %1: %2").arg(name, player->errorString());
        source.problem =
            QStringLiteral("The %1 cannot be played: %2: %3").arg(name, files.first(), player->errorString());
        delete player;
        return;
    }
    source.player = player;
    connect(player, &KelAmplifiedAudioPlayer::errorOccurred, this, &KelPlaybackVoiceTrack::onDeviceFailed);
}

void KelPlaybackVoiceTrack::setContext(const RecordingTimeline &timeline, const KelPlaybackRules &rules)
{
    KelPlaybackTrack::setContext(timeline, rules);
    for (Source *source : sources()) {
        if (source->player)
            source->player->setKeepsPitch(rules.keepsPitch);
    }
}

void KelPlaybackVoiceTrack::seekToFrame(int frame)
{
    seekToMs(qint64(frame) * 1000 / kFramesPerSecond);
}

void KelPlaybackVoiceTrack::paint(QPainter *) {}

int KelPlaybackVoiceTrack::nextKeyFrame()
{
    const auto isSilent = [](const Source *source) { return source->player && !source->player->isPlaying(); };
    const auto all = sources();
    const auto master = std::find_if(all.begin(), all.end(), [](const Source *source) { return source->isActive(); });
    const bool isHeard = master != all.end() && std::none_of(all.begin(), all.end(), isSilent);
    const qint64 ms = isHeard ? (*master)->player->position() : m_lastSeekMs;
    return 1 + int(ms * kKeyFramesPerSecond / 1000);
}

void KelPlaybackVoiceTrack::seekToMs(qint64 ms)
{
    if (std::abs(ms - m_lastSeekMs) < kIgnoredMoveMs)
        return;
    m_lastSeekMs = ms;
    for (Source *source : sources()) {
        if (!source->isActive())
            continue;
        if (m_isPlaying)
            start(*source, double(ms));
        else
            source->player->seek(ms);
    }
}

void KelPlaybackVoiceTrack::play(double ms, double rate)
{
    m_isPlaying = true;
    m_isDeviceMissing = false;
    m_rate = rate;
    m_lastSeekMs = qint64(ms);
    for (Source *source : sources())
        start(*source, ms);
}

/// Starts nothing at or beyond the end of the file: one source may be shorter than the other.
void KelPlaybackVoiceTrack::start(Source &source, double ms)
{
    if (!source.isActive() || m_isDeviceMissing)
        return;
    KelAmplifiedAudioPlayer &player = *source.player;
    player.pause();
    player.setRate(m_rate);
    if (ms > double(player.duration()) - kMinRemainingMs * m_rate)
        return;
    player.seek(qRound64(ms));
    player.play();
    m_isDeviceMissing = !player.isPlaying();
    source.sync.begin(m_nowMs(), ms, m_rate);
}

void KelPlaybackVoiceTrack::synchronize(double ms)
{
    if (!m_isPlaying)
        return;
    for (Source *source : sources()) {
        if (!source->isActive() || m_isDeviceMissing)
            continue;
        if (source->player->isPlaying()) {
            source->sync.update(m_nowMs(), source->player->exactPosition(), ms);
            source->player->setRate(source->sync.rate());
        }
        if (!source->player->isPlaying() || source->sync.isLost())
            start(*source, ms);
    }
}

void KelPlaybackVoiceTrack::pause()
{
    m_isPlaying = false;
    for (Source *source : sources()) {
        if (source->player)
            source->player->pause();
    }
}

void KelPlaybackVoiceTrack::stop()
{
    m_isPlaying = false;
    for (Source *source : sources()) {
        if (source->player)
            source->player->stop();
    }
    m_lastSeekMs = 0;
}

void KelPlaybackVoiceTrack::release()
{
    m_isPlaying = false;
    for (Source *source : sources()) {
        delete source->player;
        source->player = nullptr;
    }
}

/// Both sources use the same device, so both are paused and the failure is reported once.
void KelPlaybackVoiceTrack::onDeviceFailed()
{
    m_isDeviceMissing = true;
    for (Source *source : sources()) {
        if (source->player)
            source->player->pause();
    }
    emit deviceFailed();
}

/// The system audio is the master: the microphone follows its position.
void KelPlaybackVoiceTrack::onSystemAudioPositionChanged(qint64 position)
{
    // A player that has reached its end reports position 0, which the other source must not follow.
    if (!m_system.isActive() || !m_system.player->isPlaying())
        return;
    m_lastSeekMs = position;
    if (m_microphone.isActive() && m_microphone.player->isPlaying() &&
        std::abs(m_microphone.player->position() - position) > kMaxDriftMs * std::max(m_rate, 1.0))
        start(m_microphone, double(position));
}

void KelPlaybackVoiceTrack::onMicrophonePositionChanged(qint64 position)
{
    const bool isMaster = !m_system.isActive() || !m_system.player->isPlaying();
    if (isMaster && m_microphone.isActive() && m_microphone.player->isPlaying())
        m_lastSeekMs = position;
}

QStringList KelPlaybackVoiceTrack::problems() const
{
    QStringList problems;
    for (const Source *source : {&m_system, &m_microphone}) {
        if (!source->problem.isEmpty())
            problems.append(source->problem);
    }
    return problems;
}

float KelPlaybackVoiceTrack::levelOf(const Source &source)
{
    return source.isActive() && source.player->isPlaying() ? source.player->level() : 0;
}

double KelPlaybackVoiceTrack::audibleGain(const Source &source)
{
    return source.isActive() && !source.isMuted ? source.volume * source.gain : 0;
}

/// A source that is enabled while playing is started by the next synchronize().
void KelPlaybackVoiceTrack::setEnabled(Source &source, bool on)
{
    source.isEnabled = on;
    if (!on && source.player)
        source.player->pause();
}

void KelPlaybackVoiceTrack::setMuted(Source &source, bool on)
{
    source.isMuted = on;
    if (source.player)
        source.player->setMuted(on);
}

void KelPlaybackVoiceTrack::setLevel(Source &source, double volume, double gain)
{
    source.volume = volume;
    source.gain = gain;
    if (source.player)
        source.player->setGain(volume * gain);
}
