#pragma once

#include "record/KelRecordTrack.h"
#include "recording/wav/WavPartMerger.h"

#include <QAudioEncoderSettings>
#include <QAudioRecorder>
#include <QList>
#include <QStringList>

class KelSystemAudioRecord;

/// Records system audio and the microphone, each into one WAV file. Each section between a start or resume and the next
/// pause gets its own part file; stopping joins the parts.
///
/// It is not driven by frames and has no thread: it lives on the GUI thread, whose event loop the microphone's recorder
/// needs, and is called there directly.
class KelRecordVoiceTrack final : public KelRecordTrack
{
    Q_OBJECT

public:
    KelRecordVoiceTrack(const QRect &recordArea, const QString &trackDir, QObject *parent = nullptr);
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
    void onMicrophoneStatusChanged(QMediaRecorder::Status status);

private:
    void setUpRecorders();
    void setUpMicrophone();
    void cleanupAudioRecorders();
    void resumeRecording(qint64 atMs);
    qint64 takeClockChange();
    void startMicrophone(qint64 atMs, const char *exceptionText);
    void endMicrophonePart(qint64 atMs);
    void joinMicrophoneParts();

    const QString m_systemAudioPath;
    const QString m_microphonePath;
    QAudioEncoderSettings m_microphoneSettings;
    bool m_systemAudioEnabled = false;
    bool m_microphoneEnabled = false;           // cleared when the microphone cannot be recorded
    bool m_isMicrophonePresenceUnknown = false; // without a sound server
    bool m_isRecording = false;                 // also while paused
    bool m_isPaused = false;

    KelSystemAudioRecord *m_systemAudio = nullptr; // child of this
    QAudioRecorder *m_microphone = nullptr;        // child of this
    QString m_currentMicrophonePart;               // empty between parts
    qint64 m_microphoneStartMs = 0;
    qint64 m_microphoneBeginMs = 0;            // when its first sound was recorded; 0: not yet
    QStringList m_microphoneParts;             // finished, in order
    QList<kel::WavPartTime> m_microphoneTimes; // of each part
    int m_microphonePartIndex = 0;
    qint64 m_clockChangeMs = 0; // of the monotonic clock; 0 when not noted
};
