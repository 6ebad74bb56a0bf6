#pragma once

#include "audio/capture/CaptureDependencies.h"
#include "audio/capture/CaptureFormat.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace kel
{

class CaptureParts;
class WasapiCaptureThread;

/// Records a default sound device into one WAV file, at the times of the clock. Every stretch from a start or resume to
/// the next pause is written to a separate part file; stopping joins them. Used from one thread, which never waits for
/// the sound system: a capture that does not end in time is left behind, with the sound up to there.
class SoundRecorder : public QObject
{
    Q_OBJECT

public:
    /// What is recorded, and how.
    struct Source {
        EDataFlow flow = eRender; ///< what the output plays; eCapture for the microphone
        CaptureFormat format;     ///< null for that of the device
        std::function<QString(const QStringList &parts, const QString &output)> merge;
        // Logged when a call does not fit the state.
        const char *alreadyRunning = nullptr;
        const char *notRunning = nullptr;
        const char *notPaused = nullptr;
    };
    /// Receives the reason, in English, why sound is missing.
    using FailureHandler = std::function<void(const QString &)>;

    /// Creates the directory of `outputPath`. `failed` is called on this object's thread.
    SoundRecorder(const Source &source, const QString &outputPath, FailureHandler failed, QObject *parent,
                  const CaptureDependencies &dependencies);
    ~SoundRecorder() override;

    /// Stands for the current time of the steady clock.
    static constexpr qint64 kNow = -1;

    /// Starts, or resumes when paused. False when already recording or when no thread can be started. The timeline of
    /// the sound begins at `atMs` of the steady clock, in ms, which may be slightly in the past.
    bool start(qint64 atMs = kNow);
    void pause(qint64 atMs = kNow);
    void resume(qint64 atMs = kNow);

    /// Has the capture end soon. To be called before stopRecording() when several sources are stopped: they then end at
    /// the same time.
    void prepareStop();
    /// Ends the capture and joins the parts into the output file. Much sound is joined in the background.
    void stopRecording();

    /// Recording and not paused, even if there is no device.
    bool isRecording() const { return m_isRecording; }

    /// The number of parts that stopRecording() will join.
    int partCount() const { return m_parts.size(); }

    /// The last reported failure; empty if there was none.
    QString errorString() const { return m_error; }

private:
    qint64 timeOf(qint64 atMs) const;
    QString partPath() const;
    bool startThread(qint64 startMs);
    void endThread();
    void joinParts();
    void reportProblems();
    void report(const QString &problem);

    const Source m_source;
    const QString m_outputPath;
    const FailureHandler m_failed;
    const CaptureDependencies m_dependencies;
    QString m_currentPart; // empty between parts
    QStringList m_parts;   // finished, in order
    int m_partIndex = 0;
    bool m_isRecording = false;
    bool m_isPaused = false;
    std::shared_ptr<CaptureParts> m_files; // of the thread
    WasapiCaptureThread *m_thread = nullptr;
    QByteArray m_format; // of the first thread, used by all later ones
    QString m_error;
};

} // namespace kel
