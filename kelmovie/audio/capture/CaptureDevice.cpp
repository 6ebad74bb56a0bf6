#include "audio/capture/CaptureDevice.h"

#include "audio/capture/CaptureDependencies.h"
#include "logging/Log.h"

#include <QDebug>

namespace kel
{

namespace
{
constexpr REFERENCE_TIME kBufferDuration = 10'000'000; // one second
constexpr qint64 kCounterUnitsPerMs = 10'000;
constexpr qint64 kMaxPacketAgeMs = 30'000; // longer than any buffer

template <typename Interface>
void releaseObject(Interface *&object)
{
    if (object)
        object->Release();
    object = nullptr;
}
} // namespace

CaptureDevice::CaptureDevice(const CaptureDependencies &dependencies, EDataFlow flow)
    : m_dependencies(dependencies)
    , m_flow(flow)
{
}

CaptureDevice::~CaptureDevice()
{
    close();
}

bool CaptureDevice::open(const CaptureFormat &format)
{
    if (FAILED(m_dependencies.createEnumerator(&m_enumerator)) ||
        FAILED(m_enumerator->GetDefaultAudioEndpoint(m_flow, eConsole, &m_device)) ||
        FAILED(m_device->Activate(IID_IAudioClient, CLSCTX_ALL, nullptr, reinterpret_cast<void **>(&m_client))) ||
        !initialize(format)) {
        close();
        return false;
    }
    UINT32 bufferFrames = 0;
    if (FAILED(m_client->GetBufferSize(&bufferFrames))) {
        qCWarning(logAudio) << "获取音频缓冲区大小失败";
        close();
        return false;
    }
    if (FAILED(m_client->GetService(IID_IAudioCaptureClient, reinterpret_cast<void **>(&m_capture)))) {
        qCWarning(logAudio) << "获取音频捕获客户端失败";
        close();
        return false;
    }
    return true;
}

bool CaptureDevice::initialize(const CaptureFormat &format)
{
    m_deviceFormat = format;
    if (m_deviceFormat.isNull()) {
        WAVEFORMATEX *mix = nullptr;
        if (FAILED(m_client->GetMixFormat(&mix)) || !mix)
            return false;
        m_deviceFormat = CaptureFormat(*mix);
        CoTaskMemFree(mix);
        if (m_deviceFormat.isNull())
            return false;
    }
    const auto accepts = [this](const CaptureFormat &requested) {
        m_streamFormat = requested;
        const DWORD flags = m_flow == eRender ? AUDCLNT_STREAMFLAGS_LOOPBACK : 0;
        return SUCCEEDED(
            m_client->Initialize(AUDCLNT_SHAREMODE_SHARED, flags, kBufferDuration, 0, requested.get(), nullptr));
    };
    return (m_deviceFormat.isPlainFloat() && accepts(m_deviceFormat.asInt16())) || accepts(m_deviceFormat);
}

void CaptureDevice::close()
{
    releaseObject(m_capture);
    releaseObject(m_client);
    releaseObject(m_device);
    releaseObject(m_enumerator);
}

CaptureDevice::Result CaptureDevice::acquire(Packet *packet)
{
    BYTE *data = nullptr;
    UINT32 frames = 0;
    DWORD flags = 0;
    UINT64 counterPosition = 0;
    if (!m_capture || FAILED(m_capture->GetBuffer(&data, &frames, &flags, nullptr, &counterPosition)))
        return Result::Gone;
    if (frames == 0)
        return Result::Empty;
    m_heldFrames = frames;
    packet->data = flags & AUDCLNT_BUFFERFLAGS_SILENT ? nullptr : reinterpret_cast<const char *>(data);
    packet->size = qint64(frames) * m_streamFormat.get()->nBlockAlign;
    packet->recordedAtMs = plausibleTime(flags, counterPosition, frames);
    return Result::Packet;
}

/// The stated time of a packet or, if that is impossible, the present time.
qint64 CaptureDevice::plausibleTime(DWORD flags, UINT64 counterPosition, UINT32 frames) const
{
    const qint64 nowMs = m_dependencies.nowMs();
    const qint64 statedMs = qint64(counterPosition / kCounterUnitsPerMs);
    if ((flags & AUDCLNT_BUFFERFLAGS_TIMESTAMP_ERROR) != 0 || statedMs > nowMs || statedMs < nowMs - kMaxPacketAgeMs)
        return nowMs - qint64(frames) * 1000 / m_streamFormat.get()->nSamplesPerSec;
    return statedMs;
}

void CaptureDevice::release()
{
    m_capture->ReleaseBuffer(m_heldFrames);
    m_heldFrames = 0;
}

} // namespace kel
