#include "export/KelExportSound.h"

#include "audio/output/AudioGain.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"
#include "recording/KelRecordingFiles.h"
#include "recording/wav/SoundFiles.h"

#include <QFileInfo>

#include <algorithm>

using namespace kel;

namespace
{

constexpr double kAdjustingShare = 0.1; // of the whole work, most of which is encoding

} // namespace

KelExportSound::KelExportSound(const KelPlaybackVoiceTrack *voice, const QString &voiceDir, const Range &range,
                               const QString &temporaryDir)
    : m_range(range)
    , m_temporaryDir(temporaryDir)
{
    const auto add = [&](double gain, QLatin1String source) {
        const QString file = gain > 0.0 ? findSoundFile(voiceDir, source) : QString();
        if (!file.isEmpty())
            m_sources.append({file, std::min(gain, AudioGain::kMax)});
    };
    if (!voice)
        return;
    add(voice->audibleSystemAudioGain(), KelRecordingFiles::kSystemAudio);
    add(voice->audibleMicrophoneGain(), KelRecordingFiles::kMicrophone);
}

bool KelExportSound::addTo(const QString &video, const QString &output)
{
    QList<AudioTrack> tracks;
    for (const Source &source : qAsConst(m_sources)) {
        tracks.append(trackOf(source));
        if (m_error.isOutput)
            return false;
    }
    const double before = m_progress;
    const auto onProgress = [&](double share) {
        m_progress = before + (1.0 - before) * share;
        return !m_isCancelled;
    };
    return MixAudioVideoTracks(video, tracks, output, onProgress, &m_error);
}

void KelExportSound::cancel()
{
    m_isCancelled = true;
    m_processor.cancel();
}

AudioTrack KelExportSound::trackOf(const Source &source)
{
    AudioTrack track;
    track.gain = source.gain;
    track.path = speedAdjustedAudio(source.file, m_range.speed);
    track.startMs = m_range.startMs;
    track.endMs = m_range.endMs;
    if (track.path != source.file)
        track.speed = m_range.speed; // the range is in recording time, which the file has scaled
    return track;
}

/// A file with the sound at another speed, or `path` if that fails.
QString KelExportSound::speedAdjustedAudio(const QString &path, double speed)
{
    if (qFuzzyCompare(speed, 1.0))
        return path;
    const QString adjusted = QStringLiteral("%1/speed_adjusted_%2_%3.wav")
                                 .arg(m_temporaryDir, QString::number(speed, 'f', 1), QFileInfo(path).baseName());
    const double before = m_progress;
    const auto onProgress = [&](int percent) {
        m_progress = before + kAdjustingShare / m_sources.size() * percent / 100;
    };
    const auto connection = QObject::connect(&m_processor, &KelAudioSpeedProcessor::progressChanged, onProgress);
    const bool isAdjusted = m_processor.processAudio(path, speed, adjusted);
    QObject::disconnect(connection);
    if (isAdjusted)
        return adjusted;
    if (!m_processor.writeError().isEmpty())
        m_error = {m_processor.writeError(), true};
    else if (!m_isCancelled)
        m_warnings.append(QStringLiteral("The speed of %1 stays unchanged: %2").arg(path, m_processor.errorMessage()));
    return path;
}
