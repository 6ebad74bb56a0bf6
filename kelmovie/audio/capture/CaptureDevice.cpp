#include "audio/capture/CaptureDevice.h"

#include "audio/capture/CaptureDependencies.h"

namespace kel
{

namespace
{
constexpr REFERENCE_TIME kBufferDuration = 10'000'000; // one second
constexpr qint64 kCounterUnitsPerMs = 10'000;
constexpr qint64 kMaxPacketAgeMs = 30'000; // longer than any buffer
constexpr qint64 kMaxPacketLeadMs = 3'000; // of sound that is captured before an output with a long buffer plays it
constexpr DWORD kEventWaitMs = 200;

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

CaptureDevice::Failure CaptureDevice::open(const CaptureFormat &format)
{
    const Failure failure = tryToOpen(format);
    if (failure != Failure::None)
        close();
    return failure;
}

CaptureDevice::Failure CaptureDevice::tryToOpen(const CaptureFormat &format)
{
    if (FAILED(m_dependencies.createEnumerator(&m_enumerator)))
        return Failure::NoServer;
    if (FAILED(m_enumerator->GetDefaultAudioEndpoint(m_flow, eConsole, &m_device)) || !activate() ||
        !initialize(format))
        return Failure::NoDevice;
    UINT32 bufferFrames = 0;
    if (FAILED(m_client->GetBufferSize(&bufferFrames)))
        return Failure::NoBufferSize;
    if (FAILED(m_client->GetService(IID_IAudioCaptureClient, reinterpret_cast<void **>(&m_capture))))
        return Failure::NoCaptureClient;
    return Failure::None;
}

bool CaptureDevice::activate()
{
    releaseObject(m_client);
    return SUCCEEDED(m_device->Activate(IID_IAudioClient, CLSCTX_ALL, nullptr, reinterpret_cast<void **>(&m_client)));
}

bool CaptureDevice::initialize(const CaptureFormat &format)
{
    if (format.isNull())
        return initializeWithOwnFormat();
    return accepts(format) ||
           accepts(format, AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM | AUDCLNT_STREAMFLAGS_SRC_DEFAULT_QUALITY);
}

bool CaptureDevice::initializeWithOwnFormat()
{
    WAVEFORMATEX *mix = nullptr;
    if (FAILED(m_client->GetMixFormat(&mix)) || !mix)
        return false;
    const CaptureFormat own(*mix);
    CoTaskMemFree(mix);
    if (own.isNull())
        return false;
    return (own.isPlainFloat() && accepts(own.asInt16())) || accepts(own);
}

bool CaptureDevice::accepts(const CaptureFormat &format, DWORD moreFlags)
{
    m_format = format;
    const DWORD flags = (m_flow == eRender ? AUDCLNT_STREAMFLAGS_LOOPBACK : 0) | moreFlags;
    if (m_client &&
        SUCCEEDED(m_client->Initialize(AUDCLNT_SHAREMODE_SHARED, flags, kBufferDuration, 0, format.get(), nullptr)))
        return true;
    activate(); // a client that has refused a format may refuse all others, too
    return false;
}

bool CaptureDevice::enableEvents()
{
    m_event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    if (m_event && SUCCEEDED(m_client->SetEventHandle(m_event)))
        return true;
    closeEvent();
    return false;
}

void CaptureDevice::wait()
{
    if (m_event)
        WaitForSingleObject(m_event, kEventWaitMs);
    else
        m_dependencies.rest();
}

void CaptureDevice::closeEvent()
{
    if (m_event)
        CloseHandle(m_event);
    m_event = nullptr;
}

void CaptureDevice::close()
{
    releaseObject(m_capture);
    releaseObject(m_client);
    releaseObject(m_device);
    releaseObject(m_enumerator);
    closeEvent();
}

bool CaptureDevice::isResponding() const
{
    UINT32 frames = 0;
    return SUCCEEDED(m_client->GetCurrentPadding(&frames));
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
    packet->size = qint64(frames) * m_format.get()->nBlockAlign;
    packet->recordedAtMs = plausibleTime(flags, counterPosition, frames);
    return Result::Packet;
}

/// The stated time of a packet or, if that is impossible, the present time.
qint64 CaptureDevice::plausibleTime(DWORD flags, UINT64 counterPosition, UINT32 frames) const
{
    const qint64 nowMs = m_dependencies.nowMs();
    const qint64 statedMs = qint64(counterPosition / kCounterUnitsPerMs);
    if ((flags & AUDCLNT_BUFFERFLAGS_TIMESTAMP_ERROR) != 0 || statedMs > nowMs + kMaxPacketLeadMs ||
        statedMs < nowMs - kMaxPacketAgeMs)
        return nowMs - qint64(frames) * 1000 / m_format.get()->nSamplesPerSec;
    return statedMs;
}

void CaptureDevice::release()
{
    m_capture->ReleaseBuffer(m_heldFrames);
    m_heldFrames = 0;
}

} // namespace kel
