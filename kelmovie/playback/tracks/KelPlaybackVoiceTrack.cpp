#include "playback/tracks/KelPlaybackVoiceTrack.h"

#include "audio/output/KelAmplifiedAudioPlayer.h"
#include "logging/Log.h"
#include "playback/tracks/KelPlaybackSeams.h"
#include "recording/KelRecordingFiles.h"
#include "recording/wav/InterruptedSoundRepair.h"
#include "recording/wav/SoundFiles.h"

#include <QDebug>
#include <QDir>

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace kel;

namespace
{

constexpr qint64 kIgnoredMoveMs = 50;
constexpr double kMaxApartMs = 100;
constexpr double kNotWorthStartingMs = 250; // of the end of a file
constexpr int kFramesPerSecond = 25;
constexpr int kKeyFramesPerSecond = 30;

} // namespace

KelPlaybackVoiceTrack::KelPlaybackVoiceTrack(const QString &directory, KelPlaybackTrackManager *manager)
    : KelPlaybackVoiceTrack(directory, true, true, KelPlaybackSeams::real(), manager)
{
}

KelPlaybackVoiceTrack::KelPlaybackVoiceTrack(const QString &directory, bool systemAudio, bool microphone,
                                             const KelPlaybackSeams &seams, KelPlaybackTrackManager *manager)
    : KelPlaybackTrack(directory, manager)
    , m_nowMs(seams.nowMs)
{
    setName("VoiceTrack");
    repairInterruptedSound(directory);
    if (systemAudio)
        m_system.path = findSoundFile(directory, KelRecordingFiles::kSystemAudio);
    if (microphone)
        m_microphone.path = findSoundFile(directory, KelRecordingFiles::kMicrophone);
    if (m_system.path.isEmpty() && m_microphone.path.isEmpty()) {
        setErrorString("No audio WAV files found in: " + directory);
        qCWarning(logPlayback).noquote() << "[KelPlaybackVoiceTrack]" << errorString();
    }
    load(m_system, "Failed to load system audio:", seams);
    load(m_microphone, "Failed to load microphone audio:", seams);
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

void KelPlaybackVoiceTrack::load(Source &source, const QString &failure, const KelPlaybackSeams &seams)
{
    if (source.path.isEmpty())
        return;
    auto *player = new KelAmplifiedAudioPlayer(seams.createAudioSink, this);
    if (!player->setSource(source.path)) {
        qCWarning(logPlayback).noquote() << failure << player->errorString();
        delete player;
        return;
    }
    source.player = player;
    connect(player, &KelAmplifiedAudioPlayer::errorOccurred, this, &KelPlaybackVoiceTrack::onDeviceFailed);
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

/// Past the end of a shorter file there is nothing to be heard.
void KelPlaybackVoiceTrack::start(Source &source, double ms)
{
    if (!source.isActive() || m_isDeviceMissing)
        return;
    KelAmplifiedAudioPlayer &player = *source.player;
    player.pause();
    player.setRate(m_rate);
    if (ms > double(player.duration()) - kNotWorthStartingMs * m_rate)
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

/// One silent source says it for both.
void KelPlaybackVoiceTrack::onDeviceFailed()
{
    m_isDeviceMissing = true;
    for (Source *source : sources()) {
        if (source->player)
            source->player->pause();
    }
    emit deviceFailed();
}

/// The system's sound is the master clock of both.
void KelPlaybackVoiceTrack::onSystemAudioPositionChanged(qint64 position)
{
    // A player that reached its end tells position 0, where nothing else has to go.
    if (!m_system.isActive() || !m_system.player->isPlaying())
        return;
    m_lastSeekMs = position;
    if (m_microphone.isActive() && m_microphone.player->isPlaying() &&
        std::abs(m_microphone.player->position() - position) > kMaxApartMs * std::max(m_rate, 1.0))
        start(m_microphone, double(position));
}

void KelPlaybackVoiceTrack::onMicrophonePositionChanged(qint64 position)
{
    const bool isMaster = !m_system.isActive() || !m_system.player->isPlaying();
    if (isMaster && m_microphone.isActive() && m_microphone.player->isPlaying())
        m_lastSeekMs = position;
}

/// The next synchronize() starts what is to be heard again.
float KelPlaybackVoiceTrack::levelOf(const Source &source)
{
    return source.isActive() && source.player->isPlaying() ? source.player->level() : 0;
}

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
