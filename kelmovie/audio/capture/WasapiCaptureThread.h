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

/// Records what the computer plays into part files, one after the other, on a thread of its own that owns the device.
///
/// Where the device delivers nothing the file gets silence, so that it is as long as the time that passed. A device
/// that goes away while recording is replaced by the new default as soon as there is one.
class WasapiCaptureThread : public QThread
{
    Q_OBJECT

public:
    /// Told in English, on the capture thread, why sound is missing.
    using FailureHandler = std::function<void(const QString &)>;

    /// The first part begins at `startMs` of the steady clock. `format`: as an earlier thread's format(), or empty to
    /// ask the device.
    WasapiCaptureThread(const QString &filePath, qint64 startMs, const QByteArray &format,
                        const CaptureDependencies &seams, FailureHandler failed, QObject *parent);
    ~WasapiCaptureThread() override;

    // From any thread.
    /// The part ends at `atMs`; sound from later is dropped.
    void pauseAt(qint64 atMs);
    /// Goes on with a new part that begins at `atMs`.
    void resumeAt(qint64 atMs, const QString &filePath);
    void requestStop() { m_stopRequested = true; }
    /// The device's format as soon as it is known, else empty.
    QByteArray format() const;

protected:
    void run() override;

private:
    void capture();
    bool captureByEvents();
    void captureByPolling();
    void drain();

    void obeyRequests();
    bool readPacket();
    void padWithSilence();
    void keepSizes();
    void replaceDevice();
    void checkPart();
    void reportOnce(const QString &problem);

    struct Requests {
        bool isPaused = false;
        qint64 pausedAtMs = 0;
        QString pendingPath; ///< empty without a part to switch to
        qint64 pendingStartMs = 0;
        qint64 currentEndMs = 0; ///< of the part before the pending one
    };

    const QString m_firstPath;
    const qint64 m_startMs;
    const CaptureDependencies m_seams;
    const FailureHandler m_failed;

    std::atomic<bool> m_stopRequested{false};
    mutable QMutex m_mutex; // guards the next two
    Requests m_requests;
    QByteArray m_format;

    // The rest belongs to the capture thread.
    std::unique_ptr<CaptureDevice> m_device;
    std::unique_ptr<WavPartWriter> m_part;
    bool m_isDeviceGone = false;
    bool m_hasFailed = false;
    qint64 m_lastPacketMs = 0;
    qint64 m_lastSizesMs = 0;
    qint64 m_lastSearchMs = 0;
};

} // namespace kel
