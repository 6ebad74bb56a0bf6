#pragma once

#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelRecordingMetadata.h>

#include <QSize>
#include <QString>
#include <QStringList>

class KelPlaybackTrackManager;

/// A recording loaded from its directory, as far as it is readable.
class LoadedRecording
{
public:
    explicit LoadedRecording(const QString &directory);

    /// Why the recording cannot be played, in one line; empty if it can.
    QString error() const { return m_error; }

    /// A problem that does not prevent playback, in one line; empty if there is none.
    QString warning() const;

    QString directory() const { return m_directory; }
    const KelRecordingMetadata &metadata() const { return m_metadata; }
    bool hasMetadata() const { return m_hasMetadata; }

    /// Null if the directory does not contain a recording.
    KelPlaybackTrackManager *manager() const;

    /// Recorded time. In an interrupted recording the metadata is older than what was recorded last.
    qint64 durationMs() const;
    int logicFrames() const;
    int videoFrames() const;
    /// Size of a composed frame in physical pixels.
    QSize pixels() const;
    /// The tracks that have files, in a fixed order.
    QStringList tracksPresent() const;
    /// Size on disk.
    qint64 bytes() const;

private:
    const QString m_directory;
    KelRecordingMetadata m_metadata;
    bool m_hasMetadata = false;
    KelMultiTrackRecorder m_recorder;
    QString m_error;
};
