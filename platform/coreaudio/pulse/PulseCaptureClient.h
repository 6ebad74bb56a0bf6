#pragma once

#include "coreaudio/pulse/PulseRecordStream.h"
#include "coreaudio/sdk/AudioInterfaces.h"
#include "coreaudio/sdk/ComObject.h"

namespace kel
{

/// Provides a stream's packets, one at a time.
class PulseCaptureClient : public ComObject<IAudioCaptureClient, IID_IAudioCaptureClient>
{
public:
    explicit PulseCaptureClient(std::shared_ptr<PulseRecordStream> stream);

    /// Returns AUDCLNT_E_DEVICE_INVALIDATED once the device or the server is gone.
    HRESULT STDMETHODCALLTYPE GetBuffer(BYTE **data, UINT32 *frames, DWORD *flags, UINT64 *devicePosition,
                                        UINT64 *counterPosition) override;
    HRESULT STDMETHODCALLTYPE ReleaseBuffer(UINT32 frames) override;
    HRESULT STDMETHODCALLTYPE GetNextPacketSize(UINT32 *frames) override;

private:
    const std::shared_ptr<PulseRecordStream> m_stream;
    UINT32 m_heldFrames = 0; // size of the packet between GetBuffer and ReleaseBuffer
};

} // namespace kel
