#pragma once

#include "audio/processing/KelAudioSpeedProcessor.h"
#include "avcodec/audio/MixAudioVideoTracks.h"

#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

#include <atomic>

class KelPlaybackVoiceTrack;
namespace kel
{
class RecordedSound;
} // namespace kel

/// Adds the sound of a recording to its exported video: the audible sources with their volume and gain, trimmed to the
/// exported range and adjusted to the export speed, so that sound and video stay in sync.
class KelExportSound
{
public:
    struct Range {
        double startMs = -1.0; ///< in ms of recording time; below 0: from the beginning
        double endMs = -1.0;   ///< below 0: to the end
        double speed = 1.0;
        double recordedMs = -1.0; ///< of the whole recording; below 0: unknown
        bool keepsPitch = false;  ///< see KelPlaybackRules
    };

    /// Determines the audible sources of `voice`, which may be null and is not used later, and opens their files in
    /// `voiceDir`. Files at another speed are written to `temporaryDir`, which the caller owns.
    KelExportSound(const KelPlaybackVoiceTrack *voice, const QString &voiceDir, const Range &range,
                   const QString &temporaryDir);
    ~KelExportSound();

    /// Whether there is no audible source.
    bool isEmpty() const { return m_sources.isEmpty(); }

    /// Writes `output` from `video` and the sound; once, on any thread. False on failure; `output` is then unchanged.
    bool addTo(const QString &video, const QString &output);

    // On any thread, while addTo() runs:
    void cancel();
    /// Progress, 0 to 1.
    double progress() const { return m_progress; }

    /// Why addTo() failed. Sound that cannot be read is no output error: the video is complete without it.
    const MixError &error() const { return m_error; }

    /// What cannot be added, and defects of what addTo() has written, in English.
    QStringList warnings() const { return m_warnings; }

private:
    struct Source {
        QString name; ///< of its first file
        QSharedPointer<kel::RecordedSound> sound;
        double gain;
    };

    void add(const QString &voiceDir, QLatin1String source, double gain);
    AudioTrack trackOf(const Source &source);
    QString speedAdjustedAudio(const Source &source);

    const Range m_range;
    const QString m_temporaryDir;
    QList<Source> m_sources;
    KelAudioSpeedProcessor m_processor;
    std::atomic<double> m_progress{0.0};
    std::atomic<bool> m_isCancelled{false};
    MixError m_error;
    QStringList m_warnings;
};
