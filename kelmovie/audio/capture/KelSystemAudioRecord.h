#pragma once

#include "audio/capture/CaptureDependencies.h"
#include "audio/capture/WasapiCaptureThread.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>

/// Records what the computer plays into one WAV file. Every stretch between a start or resume and the next pause has a
/// part file of its own; stopping joins them. One thread uses it.
class KelSystemAudioRecord : public QObject
{
    Q_OBJECT

public:
    /// Creates the directory of `outputPath`. `failed` hears, on any thread and in English, why sound is missing.
    KelSystemAudioRecord(const QString &outputPath, kel::WasapiCaptureThread::FailureHandler failed, QObject *parent,
                         const kel::CaptureDependencies &seams = kel::CaptureDependencies());
    ~KelSystemAudioRecord() override;

    /// Instead of a moment of the steady clock, in ms.
    static constexpr qint64 Now = -1;

    /// Starts, or resumes when paused. False when it is already recording. The sound's time begins at `atMs`, which may
    /// be somewhat past.
    bool start(qint64 atMs = Now);
    void pause(qint64 atMs = Now);
    void resume(qint64 atMs = Now);

    /// Ends the capture and joins the parts into the output file.
    void stopRecording();

    /// Recording and not paused. A capture that ended for want of a device counts.
    bool isRecording() const { return m_isRecording; }

private:
    qint64 momentOf(qint64 atMs) const;
    QString partPath() const;
    void startThread(qint64 startMs);
    void endThread();

    const QString m_outputPath;
    const kel::WasapiCaptureThread::FailureHandler m_failed;
    const kel::CaptureDependencies m_seams;
    QString m_currentPart; // empty between parts
    QStringList m_parts;   // finished, in order
    int m_partIndex = 0;
    bool m_isRecording = false;
    bool m_isPaused = false;
    kel::WasapiCaptureThread *m_thread = nullptr; // child of this
    QByteArray m_format;                          // of the first thread, for all that follow
    qint64 m_partStartMs = 0;
    qint64 m_unrecordedMs = 0; // that passed without a running capture
};
