#pragma once

#include "audio/capture/CaptureDependencies.h"
#include "record/KelRecordTrack.h"

#include <QAudioEncoderSettings>
#include <QAudioRecorder>

class KelSystemAudioRecord;

namespace kel
{
class MicrophoneRecord;
}

/// Records system audio and the microphone, each into one WAV file. Each section between a start or resume and the next
/// pause gets its own part file; stopping joins the parts.
///
/// It is not driven by frames and has no thread: it lives on the GUI thread and is called there directly. Each source
/// is captured on a thread of its own, and no call here waits for the sound system.
class KelRecordVoiceTrack final : public KelRecordTrack
{
    Q_OBJECT

public:
    KelRecordVoiceTrack(const QRect &recordArea, const QString &trackDir, QObject *parent = nullptr,
                        const kel::CaptureDependencies &dependencies = kel::CaptureDependencies());
    ~KelRecordVoiceTrack() override;

    // To be called before the start.
    void setSystemAudioEnabled(bool enabled);
    void setMicrophoneEnabled(bool enabled);

    /// The recording's clock starts or stops now. The start, pause or stop that follows refers to this time, even if it
    /// is called later.
    void noteClockChange();

    void startRecording() override;
    void pauseRecording() override;
    void stopRecording(qint64 frameCount, qint64 durationMs) override;

private slots:
    void onSystemAudioStateChanged(QAudioRecorder::State state);
    void onMicrophoneStateChanged(QAudioRecorder::State state);
    void onSystemAudioError(QAudioRecorder::Error error);
    void onMicrophoneError(QAudioRecorder::Error error);

private:
    void setUpRecorders();
    void cleanupAudioRecorders();
    void resumeRecording(qint64 atMs);
    qint64 takeClockChange();
    void checkMicrophone(const char *failureText);
    void joinMicrophoneParts();

    const kel::CaptureDependencies m_dependencies;
    const QString m_systemAudioPath;
    const QString m_microphonePath;
    QAudioEncoderSettings m_microphoneSettings;
    bool m_systemAudioEnabled = false;
    bool m_microphoneEnabled = false; // cleared when the microphone cannot be recorded
    bool m_isRecording = false;       // also while paused
    bool m_isPaused = false;

    KelSystemAudioRecord *m_systemAudio = nullptr; // child of this
    kel::MicrophoneRecord *m_microphone = nullptr; // child of this
    qint64 m_clockChangeMs = 0;                    // of the monotonic clock; 0 when not noted
};
