#pragma once

#include "recording/wav/WavPartWriter.h"

#include <QList>
#include <QMutex>
#include <QString>

#include <atomic>
#include <optional>

namespace kel
{

/// The part files of one source: a thread that controls the recording begins and ends them, a capture thread writes
/// them. Time during which no file could be written, for example because the format was not known yet, becomes silence
/// at the start of the next part, so that all sound keeps its time.
class CaptureParts
{
public:
    /// The first part begins at `startMs` of the steady clock. Its file is created by setFormat().
    CaptureParts(const QString &firstPath, qint64 startMs);

    // Called by the controlling thread; these do not wait for the disk.
    /// Ends the current part at `atMs`; later sound is dropped.
    void pauseAt(qint64 atMs);
    /// Continues with a new part that begins at `atMs`.
    void resumeAt(qint64 atMs, const QString &path);

    /// Completes the files; nothing is written afterwards. False when a write to the disk does not return, and the last
    /// file stays as it is. Any thread.
    bool finish();

    // Called by the capture thread.
    void setFormat(const WavHeader &format);
    void writePacket(const char *data, qint64 size, qint64 recordedAtMs);
    void writeSilenceTo(qint64 ms);
    void updateSizes();
    /// Whether all sound until the pause was written.
    bool isComplete();
    /// The first failed write, in English; empty if there was none.
    QString errorString();

private:
    struct Switch {
        qint64 previousEndMs = 0;
        qint64 startMs = 0;
        QString path;
    };

    void takeRequests();
    void applyRequests();
    void switchPart();
    void setEnd();
    void openPart();
    qint64 endPart(qint64 endMs);
    bool isWritable() const { return m_writer && m_writer->isOpen(); }

    QMutex m_requestMutex; // guards the next two; never held during a write
    QList<Switch> m_requestedSwitches;
    std::optional<qint64> m_pausedAtMs;

    std::atomic<bool> m_isFinished{false};
    QMutex m_fileMutex;            // guards what follows
    QList<Switch> m_switches;      // that the current part still has to be completed for
    std::optional<qint64> m_endMs; // of the last part
    QString m_path;
    qint64 m_startMs;                      // of the part, with the time before it that no file holds
    std::optional<WavPartWriter> m_writer; // empty until the format is known
};

} // namespace kel
