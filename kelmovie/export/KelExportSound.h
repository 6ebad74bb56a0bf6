#pragma once

#include "audio/processing/KelAudioSpeedProcessor.h"
#include "avcodec/AudioTrack.h"

#include <QList>
#include <QString>

#include <atomic>

class KelPlaybackVoiceTrack;

/// Adds a recording's sound to its exported video: what is heard when the recording is played, as loud as it is then,
/// in the exported range and at the exported speed.
class KelExportSound
{
public:
    struct Range {
        double startMs = -1.0; ///< in recording time; below 0: from the beginning
        double endMs = -1.0;
        double speed = 1.0;
    };

    /// Looks up now what of `voice`, which may be null, is to be heard, and which files in `voiceDir` hold it. Files at
    /// another speed are put into `temporaryDir`, which belongs to the caller.
    KelExportSound(const KelPlaybackVoiceTrack *voice, const QString &voiceDir, const Range &range,
                   const QString &temporaryDir);

    /// There is nothing to be heard.
    bool isEmpty() const { return m_sources.isEmpty(); }

    /// Once, on any thread: makes `output` of `video` and the sound. False on failure, and then `output` is as it was.
    bool addTo(const QString &video, const QString &output);

    // Any thread, while addTo() runs:
    void cancel();
    /// How much is done, 0 to 1.
    double share() const { return m_share; }

    /// Why addTo() failed, in English.
    QString errorString() const { return m_errorString; }

private:
    struct Source {
        QString file;
        double gain;
    };

    AudioTrack trackOf(const Source &source);
    QString speedAdjustedAudio(const QString &path, double speed);

    const Range m_range;
    const QString m_temporaryDir;
    QList<Source> m_sources;
    KelAudioSpeedProcessor m_processor;
    std::atomic<double> m_share{0.0};
    std::atomic<bool> m_isCancelled{false};
    QString m_errorString;
};
