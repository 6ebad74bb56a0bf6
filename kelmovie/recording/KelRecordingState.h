#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QDateTime>
#include <QString>

/// The progress of a recording, judged by its files. Every call reads the disk. Any thread.
class KELMOVIE_EXPORT KelRecordingState
{
public:
    /// Whether, and how, the recording has ended.
    enum class State {
        Complete,   ///< recorded to the end
        InProgress, ///< a process is recording into it, or pauses
        Interrupted ///< incomplete: its process died
    };

    /// Whether the directory `dir` holds a recording, complete or not.
    static bool holdsRecording(const QString &dir);

    /// When the recording in `dir` was last written to; invalid when there is none.
    static QDateTime lastWritten(const QString &dir);

    /// The state of the recording in `dir`, which has to hold one. A recording without a lock (made by an earlier
    /// version, or on a file system that has none) is in progress if it is incomplete and was written to within the
    /// last seconds.
    static State stateOf(const QString &dir);
};
