#pragma once

#include "audio/capture/CaptureFormat.h"

#include <coreaudio/CoreAudio.h>

#include <QString>

namespace kel
{

struct CaptureDependencies;

/// A default device whose sound is recorded: what the output plays or, with eCapture, what the microphone hears.
/// Belongs to one thread, which has initialised COM.
class CaptureDevice
{
public:
    explicit CaptureDevice(const CaptureDependencies &seams, EDataFlow flow = eRender);
    ~CaptureDevice();
    CaptureDevice(const CaptureDevice &) = delete;
    CaptureDevice &operator=(const CaptureDevice &) = delete;

    /// Everything up to a stream that can be started. A null format asks the device for its own. False, with
    /// everything closed again, when there is no such device or it refuses the format.
    bool open(const CaptureFormat &format = CaptureFormat());
    void close();

    /// What the device was asked for or said itself; and what the stream is in, which is 16-bit integers where the
    /// former is plain floats and the device converts.
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
    enum class Answer { Packet, Nothing, Gone };

    /// Asks for the oldest packet. It is held until release().
    Answer acquire(Packet *packet);
    void release();

private:
    bool initialize(const CaptureFormat &format);
    qint64 plausibleTime(DWORD flags, UINT64 counterPosition, UINT32 frames) const;

    const CaptureDependencies &m_seams;
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
