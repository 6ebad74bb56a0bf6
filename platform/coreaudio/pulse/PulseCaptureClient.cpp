#include "coreaudio/pulse/PulseCaptureClient.h"

#include <utility>

namespace kel
{

PulseCaptureClient::PulseCaptureClient(std::shared_ptr<PulseRecordStream> stream)
    : m_stream(std::move(stream))
{
}

HRESULT PulseCaptureClient::GetBuffer(BYTE **data, UINT32 *frames, DWORD *flags, UINT64 *devicePosition,
                                      UINT64 *counterPosition)
{
    if (!data || !frames || !flags)
        return E_POINTER;
    *data = nullptr;
    *frames = 0;
    *flags = 0;
    if (m_heldFrames > 0)
        return AUDCLNT_E_OUT_OF_ORDER;
    const PulseRecordStream::Packet packet = m_stream->peek();
    if (packet.frames == 0)
        return m_stream->isAlive() ? AUDCLNT_S_BUFFER_EMPTY : AUDCLNT_E_DEVICE_INVALIDATED;
    m_heldFrames = packet.frames;
    *data = const_cast<BYTE *>(packet.data);
    *frames = packet.frames;
    *flags = packet.isSilent ? AUDCLNT_BUFFERFLAGS_SILENT : 0;
    if (devicePosition)
        *devicePosition = packet.firstFrame;
    if (counterPosition)
        *counterPosition = packet.recordedAtNs100;
    return S_OK;
}

HRESULT PulseCaptureClient::ReleaseBuffer(UINT32 frames)
{
    if (frames == 0) { // not consumed: the next GetBuffer returns it again
        m_heldFrames = 0;
        return S_OK;
    }
    if (m_heldFrames == 0)
        return AUDCLNT_E_OUT_OF_ORDER;
    if (frames != m_heldFrames)
        return AUDCLNT_E_INVALID_SIZE;
    m_heldFrames = 0;
    m_stream->drop(frames);
    return S_OK;
}

HRESULT PulseCaptureClient::GetNextPacketSize(UINT32 *frames)
{
    if (!frames)
        return E_POINTER;
    *frames = m_stream->peek().frames;
    return *frames > 0 || m_stream->isAlive() ? S_OK : AUDCLNT_E_DEVICE_INVALIDATED;
}

} // namespace kel
