#pragma once

#include "audio/capture/CaptureDependencies.h"
#include "audio/capture/WasapiCaptureThread.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>

/// Records what the computer plays into one WAV file. Every stretch from a start or resume to the next pause is written
/// to a separate part file; stopping joins them. Used from one thread.
class KelSystemAudioRecord : public QObject
{
    Q_OBJECT

public:
    /// Creates the directory of `outputPath`. `failed` is called on any thread with the reason, in English, why sound
    /// is missing.
    KelSystemAudioRecord(const QString &outputPath, kel::WasapiCaptureThread::FailureHandler failed, QObject *parent,
                         const kel::CaptureDependencies &dependencies = kel::CaptureDependencies());
    ~KelSystemAudioRecord() override;

    /// Stands for the current time of the steady clock.
    static constexpr qint64 kNow = -1;

    /// Starts, or resumes when paused. False when already recording. The timeline of the sound begins at `atMs` of the
    /// steady clock, in ms, which may be slightly in the past.
    bool start(qint64 atMs = kNow);
    void pause(qint64 atMs = kNow);
    void resume(qint64 atMs = kNow);

    /// Ends the capture and joins the parts into the output file.
    void stopRecording();

    /// Recording and not paused, even if the capture ended because there is no device.
    bool isRecording() const { return m_isRecording; }

private:
    qint64 timeOf(qint64 atMs) const;
    QString partPath() const;
    void startThread(qint64 startMs);
    void endThread();

    const QString m_outputPath;
    const kel::WasapiCaptureThread::FailureHandler m_failed;
    const kel::CaptureDependencies m_dependencies;
    QString m_currentPart; // empty between parts
    QStringList m_parts;   // finished, in order
    int m_partIndex = 0;
    bool m_isRecording = false;
    bool m_isPaused = false;
    kel::WasapiCaptureThread *m_thread = nullptr; // child of this
    QByteArray m_format;                          // of the first thread, used by all later ones
    qint64 m_partStartMs = 0;
    qint64 m_unrecordedMs = 0; // time that passed without a running capture
};
