#pragma once

#include "audio/capture/CaptureDependencies.h"
#include "audio/capture/CaptureDevice.h"

#include <QByteArray>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QThread>

#include <atomic>
#include <memory>

namespace kel
{

class CaptureParts;

/// Records what the default output plays, or what the default microphone hears, into part files. The thread owns the
/// device.
///
/// While the device delivers nothing, silence is written, so that the duration of the file is the time that passed. A
/// device that is missing, or removed while recording, is looked for once a second.
///
/// A call into the sound system may never return. The thread therefore owns what it uses, together with nobody but
/// `parts`, and can be left behind while it runs; it must not be deleted before it has finished.
class WasapiCaptureThread : public QThread
{
    Q_OBJECT

public:
    /// `format`: the required one; empty for the device's own.
    WasapiCaptureThread(EDataFlow flow, const QByteArray &format, std::shared_ptr<CaptureParts> parts,
                        const CaptureDependencies &dependencies, QObject *parent);

    // From any thread.
    void requestStop() { m_stopRequested = true; }
    /// Whether a device is open, so that there may be sound which is not written yet.
    bool isCapturing() const { return m_isCapturing; }
    /// The format of the sound; empty until it is known.
    QByteArray format() const;
    /// The reasons, in English, why sound is missing, since the last call.
    QStringList takeProblems();

signals:
    /// takeProblems() has something new.
    void problemFound();

protected:
    void run() override;

private:
    void openDevice();
    void begin(const CaptureFormat &format);
    void closeDevice();
    bool readPacket();
    void padWithSilence();
    void drain();
    void waitForSound();
    void updateSizesRegularly();
    void checkParts();
    void checkDevice();
    void report(CaptureDevice::Failure failure);
    void reportOnce(const QString &problem, const char *log = nullptr);
    QString deviceName() const;

    const EDataFlow m_flow;
    const std::shared_ptr<CaptureParts> m_parts;
    const CaptureDependencies m_dependencies;

    std::atomic<bool> m_stopRequested{false};
    std::atomic<bool> m_isCapturing{false};
    mutable QMutex m_mutex; // guards the next two
    QByteArray m_format;
    QStringList m_problems;

    // Used by the capture thread only.
    std::unique_ptr<CaptureDevice> m_device; // null while there is none
    bool m_hasBegun = false;
    bool m_hasFailed = false;
    qint64 m_lastPacketMs = 0; // or silence
    qint64 m_lastSoundMs = 0;
    qint64 m_lastSizesMs = 0;
    qint64 m_nextSearchMs = 0;
};

} // namespace kel
