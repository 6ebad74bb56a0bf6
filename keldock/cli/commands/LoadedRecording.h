#pragma once

#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelRecordingMetadata.h>

#include <QSize>
#include <QString>
#include <QStringList>

class KelPlaybackTrackManager;

/// A recording opened from its directory, as far as it can be read.
class LoadedRecording
{
public:
    explicit LoadedRecording(const QString &directory);

    /// Why nothing of it can be shown, in one line; empty when it can.
    QString error() const { return m_error; }

    /// What is wrong although it can be shown, in one line; empty when all is well.
    QString warning() const;

    QString directory() const { return m_directory; }
    const KelRecordingMetadata &metadata() const { return m_metadata; }
    bool hasMetadata() const { return m_hasMetadata; }

    /// Null when the directory holds no recording at all.
    KelPlaybackTrackManager *manager() const;

    int logicFrames() const;
    int videoFrames() const;
    /// Pixels of a composed picture.
    QSize pixels() const;
    /// The tracks that have files, in the order in which they are recorded.
    QStringList tracksPresent() const;
    qint64 bytes() const;

private:
    const QString m_directory;
    KelRecordingMetadata m_metadata;
    bool m_hasMetadata = false;
    KelMultiTrackRecorder m_recorder;
    QString m_error;
};
