#pragma once

#include "audio/capture/CaptureFormat.h"

#include <coreaudio/CoreAudio.h>

namespace kel
{

struct CaptureDependencies;

/// Captures sound from a default device: what the output plays or, with eCapture, what the microphone hears. Used by
/// one thread, which has initialized COM.
class CaptureDevice
{
public:
    CaptureDevice(const CaptureDependencies &dependencies, EDataFlow flow);
    ~CaptureDevice();
    CaptureDevice(const CaptureDevice &) = delete;
    CaptureDevice &operator=(const CaptureDevice &) = delete;

    enum class Failure { None, NoServer, NoDevice, NoBufferSize, NoCaptureClient, NotStarted };

    /// Opens the device and a stream that is ready to start. A null format means the device's own, with 16-bit integers
    /// instead of plain floats if the device can convert. On failure everything is closed again.
    Failure open(const CaptureFormat &format = CaptureFormat());
    void close();

    const CaptureFormat &format() const { return m_format; }

    Failure start() { return SUCCEEDED(m_client->Start()) ? Failure::None : Failure::NotStarted; }
    void stop() { m_client->Stop(); }

    /// Has wait() end when there is sound. False when the device refuses events, which it may, because the stream was
    /// opened for polling.
    bool enableEvents();
    /// Waits a moment, so that more sound can arrive.
    void wait();

    struct Packet {
        const char *data = nullptr; ///< null when silent
        qint64 size = 0;            ///< bytes
        qint64 recordedAtMs = 0;    ///< of the first frame
    };
    enum class Result {
        Packet, ///< a packet was acquired
        Empty,  ///< no packet is available at present
        Gone    ///< the device was removed or is not open
    };

    /// False while the system delivers nothing because it does not respond.
    bool isResponding() const;

    /// Acquires the oldest packet and holds it until release().
    Result acquire(Packet *packet);
    void release();

private:
    Failure tryToOpen(const CaptureFormat &format);
    bool activate();
    bool initialize(const CaptureFormat &format);
    bool initializeWithOwnFormat();
    void closeEvent();
    bool accepts(const CaptureFormat &format, DWORD moreFlags = 0);
    qint64 plausibleTime(DWORD flags, UINT64 counterPosition, UINT32 frames) const;

    const CaptureDependencies &m_dependencies;
    const EDataFlow m_flow;
    CaptureFormat m_format;
    IMMDeviceEnumerator *m_enumerator = nullptr;
    IMMDevice *m_device = nullptr;
    IAudioClient *m_client = nullptr;
    IAudioCaptureClient *m_capture = nullptr;
    HANDLE m_event = nullptr; // null without events
    UINT32 m_heldFrames = 0;
};

} // namespace kel
