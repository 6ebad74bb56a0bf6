#include "export/KelExportSound.h"

#include "audio/output/AudioGain.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"
#include "recording/KelRecordingFiles.h"
#include "recording/wav/RecordedSound.h"

#include <QFileInfo>

#include <algorithm>

using namespace kel;

namespace
{

constexpr double kAdjustingShare = 0.1; // of the whole work, most of which is encoding
constexpr qint64 kTailMs = 1000;        // more than sound can outlast the recording by

} // namespace

KelExportSound::KelExportSound(const KelPlaybackVoiceTrack *voice, const QString &voiceDir, const Range &range,
                               const QString &temporaryDir)
    : m_range(range)
    , m_temporaryDir(temporaryDir)
{
    m_processor.setKeepsPitch(range.keepsPitch);
    if (!voice)
        return;
    add(voiceDir, KelRecordingFiles::kSystemAudio, voice->audibleSystemAudioGain());
    add(voiceDir, KelRecordingFiles::kMicrophone, voice->audibleMicrophoneGain());
}

KelExportSound::~KelExportSound() = default;

void KelExportSound::add(const QString &voiceDir, QLatin1String source, double gain)
{
    if (gain <= 0.0)
        return;
    const QStringList files = RecordedSound::files(voiceDir, source);
    if (files.isEmpty()) {
        m_warnings.append(QStringLiteral("There is no %1 file in %2").arg(source, voiceDir));
        return;
    }
    auto sound = QSharedPointer<RecordedSound>::create(files, RecordedSound::Integers32::AsFloats);
    if (!sound->isOpen()) {
        m_warnings.append(QStringLiteral("%1 cannot be played: %2").arg(files.first(), sound->errorString()));
        return;
    }
    // A damaged file can claim to hold days of sound, which would be brought to another speed as a whole.
    if (m_range.recordedMs >= 0)
        sound->limitTo(qint64(m_range.recordedMs) + kTailMs);
    m_sources.append({files.first(), sound, std::min(gain, AudioGain::kMax)});
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
    track.startMs = m_range.startMs;
    track.endMs = m_range.endMs;
    const QString adjusted = qFuzzyCompare(m_range.speed, 1.0) ? QString() : speedAdjustedAudio(source);
    if (adjusted.isEmpty()) {
        track.path = source.name;
        track.device = source.sound;
    } else {
        track.path = adjusted;
        track.speed = m_range.speed; // the range is in recording time, which the file has scaled
    }
    return track;
}

/// A file with the sound at the speed of the export; empty if that fails.
QString KelExportSound::speedAdjustedAudio(const Source &source)
{
    const QString adjusted =
        QStringLiteral("%1/speed_adjusted_%2_%3.wav")
            .arg(m_temporaryDir, QString::number(m_range.speed, 'f', 1), QFileInfo(source.name).baseName());
    const double before = m_progress;
    const auto onProgress = [&](int percent) {
        m_progress = before + kAdjustingShare / m_sources.size() * percent / 100;
    };
    const auto connection = QObject::connect(&m_processor, &KelAudioSpeedProcessor::progressChanged, onProgress);
    const bool isAdjusted = m_processor.processAudio(*source.sound, m_range.speed, adjusted);
    QObject::disconnect(connection);
    if (isAdjusted)
        return adjusted;
    if (!m_processor.writeError().isEmpty())
        m_error = {m_processor.writeError(), true};
    else if (!m_isCancelled)
        m_warnings.append(
            QStringLiteral("The speed of %1 stays unchanged: %2").arg(source.name, m_processor.errorMessage()));
    return QString();
}
