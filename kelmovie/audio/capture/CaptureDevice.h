#pragma once

#include "audio/capture/CaptureFormat.h"

#include <coreaudio/CoreAudio.h>

#include <QString>

namespace kel
{

struct CaptureDependencies;

/// Captures sound from a default device: what the output plays or, with eCapture, what the microphone hears. Used by
/// one thread, which has initialized COM.
class CaptureDevice
{
public:
    explicit CaptureDevice(const CaptureDependencies &dependencies, EDataFlow flow = eRender);
    ~CaptureDevice();
    CaptureDevice(const CaptureDevice &) = delete;
    CaptureDevice &operator=(const CaptureDevice &) = delete;

    /// Opens the device and a stream that is ready to start. A null format means the device's own. False when there is
    /// no such device or it refuses the format; everything is closed again then.
    bool open(const CaptureFormat &format = CaptureFormat());
    void close();

    /// The requested format or the device's own, and the format of the stream: 16-bit integers if the device format is
    /// plain floats and the device can convert.
    const CaptureFormat &deviceFormat() const { return m_deviceFormat; }
    const CaptureFormat &streamFormat() const { return m_streamFormat; }

    bool start() { return SUCCEEDED(m_client->Start()); }
    void stop() { m_client->Stop(); }
    bool setEventHandle(HANDLE event) { return SUCCEEDED(m_client->SetEventHandle(event)); }

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

    /// Acquires the oldest packet and holds it until release().
    Result acquire(Packet *packet);
    void release();

private:
    bool initialize(const CaptureFormat &format);
    qint64 plausibleTime(DWORD flags, UINT64 counterPosition, UINT32 frames) const;

    const CaptureDependencies &m_dependencies;
    const EDataFlow m_flow;
    CaptureFormat m_deviceFormat;
    CaptureFormat m_streamFormat;
    IMMDeviceEnumerator *m_enumerator = nullptr;
    IMMDevice *m_device = nullptr;
    IAudioClient *m_client = nullptr;
    IAudioCaptureClient *m_capture = nullptr;
    UINT32 m_heldFrames = 0;
};

} // namespace kel
