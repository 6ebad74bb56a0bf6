#pragma once

#include "audio/capture/CaptureDependencies.h"
#include "audio/capture/CaptureFormat.h"

#include <QMutex>
#include <QString>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>

namespace kel
{

class CaptureDevice;
class WavPartWriter;

/// Records what the computer plays into part files, one after the other. The thread owns the device.
///
/// While the device delivers nothing, silence is written, so that the duration of the file is the time that passed. A
/// device that is removed while recording is replaced by the new default device as soon as there is one.
class WasapiCaptureThread : public QThread
{
    Q_OBJECT

public:
    /// Called on the capture thread with the reason, in English, why sound is missing.
    using FailureHandler = std::function<void(const QString &)>;

    /// The first part begins at `startMs` of the steady clock. `format`: the format() of an earlier thread, or empty
    /// for the device's own.
    WasapiCaptureThread(const QString &filePath, qint64 startMs, const QByteArray &format,
                        const CaptureDependencies &dependencies, FailureHandler failed, QObject *parent);
    ~WasapiCaptureThread() override;

    // From any thread.
    /// Ends the part at `atMs`; later sound is dropped.
    void pauseAt(qint64 atMs);
    /// Continues with a new part that begins at `atMs`.
    void resumeAt(qint64 atMs, const QString &filePath);
    void requestStop() { m_stopRequested = true; }
    /// The device's format; empty until it is known.
    QByteArray format() const;

protected:
    void run() override;

private:
    void capture();
    bool captureByEvents();
    void captureByPolling();
    void drain();

    void handleRequests();
    bool readPacket();
    void padWithSilence();
    void updateSizesRegularly();
    void replaceDevice();
    void checkPart();
    void reportOnce(const QString &problem);

    struct Requests {
        bool isPaused = false;
        qint64 pausedAtMs = 0;
        QString pendingPath; ///< empty unless there is a part to switch to
        qint64 pendingStartMs = 0;
        qint64 currentEndMs = 0; ///< of the part before the pending one
    };

    const QString m_firstPath;
    const qint64 m_startMs;
    const CaptureDependencies m_dependencies;
    const FailureHandler m_failed;

    std::atomic<bool> m_stopRequested{false};
    mutable QMutex m_mutex; // guards the next two
    Requests m_requests;
    QByteArray m_format;

    // Used by the capture thread only.
    std::unique_ptr<CaptureDevice> m_device;
    std::unique_ptr<WavPartWriter> m_part;
    bool m_isDeviceGone = false;
    bool m_hasFailed = false;
    qint64 m_lastPacketMs = 0;
    qint64 m_lastSizesMs = 0;
    qint64 m_lastSearchMs = 0;
};

} // namespace kel
