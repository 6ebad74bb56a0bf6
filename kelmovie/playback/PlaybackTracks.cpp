#include "playback/PlaybackTracks.h"

#include "logging/Log.h"
#include "playback/PlaybackSettings.h"
#include "playback/TimelineLoader.h"
#include "playback/keys/KelPlaybackKeyboardTrack.h"
#include "playback/mouse/KelPlaybackMouseTrack.h"
#include "playback/tracks/KelPlaybackCountdownTrack.h"
#include "playback/tracks/KelPlaybackDependencies.h"
#include "playback/tracks/KelPlaybackScreenTrack.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"
#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingMetadata.h"
#include "recording/wav/RecordedSound.h"

#include <KelMovie/KelMovieConfig.h>

#include <QFileInfo>

#include <utility>

namespace kel
{

namespace
{
bool holdsSound(const QString &recordDir)
{
    const QString dir = KelRecordingFiles::path(recordDir, KelRecordingFiles::kVoiceDir);
    return !RecordedSound::files(dir, KelRecordingFiles::kSystemAudio).isEmpty() ||
           !RecordedSound::files(dir, KelRecordingFiles::kMicrophone).isEmpty();
}
} // namespace

/// The order of creation is the painting order, from bottom to top.
PlaybackTracks::PlaybackTracks(const QString &recordDir, const KelRecordingMetadata &metadata,
                               bool preferHardwareDecode, const KelPlaybackRules &rules,
                               const KelPlaybackDependencies &dependencies, KelPlaybackTrackManager *manager)
    : m_manager(manager)
    , m_recordDir(recordDir)
    , m_pixelRatio(metadata.pixelRatio)
    , m_rules(rules)
    , m_frameSize(metadata.recordArea.size())
{
    if (metadata.screenTrack)
        createScreen(metadata, preferHardwareDecode, dependencies);
    if (m_frameSize.isEmpty() && m_screen)
        m_frameSize = m_screen->videoSize();
    createTimeline(metadata);
    if (metadata.mouseTrack)
        createMouse();
    if (metadata.systemAudio || metadata.microphoneAudio)
        createVoice(metadata, dependencies);
    else if (holdsSound(recordDir))
        m_voiceProblem = QStringLiteral("The recording holds sound that its metadata does not list");
    createCountdown();
    if (metadata.keyboardTrack)
        createKeyboard();
    applySettings();
    if (!QFileInfo(recordDir).isDir())
        m_errorString = QLatin1String("Recording directory not found: ") + recordDir;
}

PlaybackTracks::~PlaybackTracks() = default;

template <typename Track>
Track *PlaybackTracks::add(std::unique_ptr<Track> track)
{
    Track *const added = track.get();
    added->setContext(m_timeline, m_rules);
    m_tracks.push_back(std::move(track));
    return added;
}

void PlaybackTracks::createScreen(const KelRecordingMetadata &metadata, bool preferHardwareDecode,
                                  const KelPlaybackDependencies &dependencies)
{
    const QString dir = KelRecordingFiles::path(m_recordDir, KelRecordingFiles::kScreenDir);
    if (!QFileInfo(dir).isDir()) {
        m_errorString = QLatin1String("Screen directory not found: ") + dir;
        qCWarning(logPlayback) << "Screen track enabled but directory not found:" << dir;
        return;
    }
    auto track = std::make_unique<KelPlaybackScreenTrack>(metadata.devicePixelRatio, dir, preferHardwareDecode,
                                                          dependencies.decoders, m_manager);
    if (!track->errorString().isEmpty()) {
        m_errorString = track->errorString();
        qCCritical(logPlayback) << "Screen track creation failed:" << m_errorString;
        return;
    }
    if (!metadata.complete)
        track->appendUnindexedFrames();
    m_screen = add(std::move(track));
}

void PlaybackTracks::createMouse()
{
    const QString dir = KelRecordingFiles::path(m_recordDir, KelRecordingFiles::kMouseDir);
    if (!QFileInfo(dir).isDir()) {
        qCWarning(logPlayback) << "Mouse track enabled but directory not found:" << dir;
        return;
    }
    m_mouse = add(std::make_unique<KelPlaybackMouseTrack>(dir, m_manager));
}

void PlaybackTracks::createVoice(const KelRecordingMetadata &metadata, const KelPlaybackDependencies &dependencies)
{
    const QString dir = KelRecordingFiles::path(m_recordDir, KelRecordingFiles::kVoiceDir);
    if (!QFileInfo(dir).isDir()) {
        qCWarning(logPlayback) << "Voice track enabled but directory not found:" << dir;
        m_voiceProblem = QLatin1String("The recorded sound is missing: there is no directory ") + dir;
        return;
    }
    m_voice = add(std::make_unique<KelPlaybackVoiceTrack>(dir, metadata.systemAudio, metadata.microphoneAudio,
                                                          dependencies, m_manager));
}

void PlaybackTracks::createCountdown()
{
    m_countdown = add(std::make_unique<KelPlaybackCountdownTrack>(m_recordDir, m_manager));
    m_countdown->setScale(m_pixelRatio);
    m_countdown->setFps(timeline().fps());
    m_countdown->setArea(QRect(QPoint(), m_frameSize));
    m_countdown->setTotalFrames(totalFrames());
}

void PlaybackTracks::createKeyboard()
{
    auto track = std::make_unique<KelPlaybackKeyboardTrack>(
        KelRecordingFiles::path(m_recordDir, KelRecordingFiles::kKeyboardDir), totalFrames(), m_pixelRatio, m_frameSize,
        m_manager);
    if (!track->errorString().isEmpty()) {
        qCCritical(logPlayback) << "Keyboard track creation failed:" << track->errorString();
        return;
    }
    m_keyboard = add(std::move(track));
}

void PlaybackTracks::createTimeline(const KelRecordingMetadata &metadata)
{
    int frames = 1;
    if (!metadata.screenTrack) {
        m_errorString = QStringLiteral("The recording has no screen track");
        qCWarning(logPlayback) << "Screen track disabled, cannot determine frame count";
    } else if (!m_screen) {
        qCCritical(logPlayback) << "No screen track found in tracks list";
    } else if (m_screen->logicFrameCount() <= 0) {
        qCWarning(logPlayback) << "Screen track has no logic frames, using fallback";
    } else {
        frames = m_screen->logicFrameCount();
    }
    const bool isIndexed = m_screen && m_screen->isIndexed();
    m_timeline = loadTimeline(m_recordDir, metadata, frames, isIndexed);
}

QStringList PlaybackTracks::soundProblems() const
{
    return m_voice ? m_voice->problems() : m_voiceProblem.isEmpty() ? QStringList() : QStringList(m_voiceProblem);
}

QStringList PlaybackTracks::names() const
{
    QStringList names;
    for (const auto &track : m_tracks) {
        if (track.get() != m_countdown && track->errorString().isEmpty())
            names.append(track->name());
    }
    return names;
}

void PlaybackTracks::applySettings()
{
    noteChange();
    for (const auto &track : m_tracks)
        applyPlaybackSettings(gKelMovieConfig, m_pixelRatio, *track);
}

void PlaybackTracks::moveTo(int frame)
{
    bool isChanged = false;
    for (const auto &track : m_tracks) {
        if (track.get() != m_voice && track->moveToFrame(frame))
            isChanged = true;
    }
    if (isChanged)
        noteChange();
}

void PlaybackTracks::resetEffects()
{
    noteChange();
    if (m_mouse)
        m_mouse->resetEffects();
}

void PlaybackTracks::paint(QPainter *painter)
{
    for (const auto &track : m_tracks)
        track->paint(painter);
}

} // namespace kel
