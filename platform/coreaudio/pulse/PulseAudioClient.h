#pragma once

#include "coreaudio/pulse/PulseConnection.h"
#include "coreaudio/pulse/PulseRecordStream.h"
#include "coreaudio/sdk/AudioInterfaces.h"
#include "coreaudio/sdk/ComObject.h"

namespace kel
{

/// Records in shared mode what an input captures or, with the loopback flag, what an output plays. The server converts:
/// all integer and float formats of WAV files are supported, at every sample rate.
class PulseAudioClient : public ComObject<IAudioClient, IID_IAudioClient>
{
public:
    PulseAudioClient(std::shared_ptr<PulseConnection> connection, PulseConnection::Source source, EDataFlow flow);

    /// The buffer has the maximum size of the server; `bufferDuration` is ignored.
    HRESULT STDMETHODCALLTYPE Initialize(AUDCLNT_SHAREMODE mode, DWORD flags, REFERENCE_TIME bufferDuration,
                                         REFERENCE_TIME periodicity, const WAVEFORMATEX *format,
                                         LPCGUID session) override;
    HRESULT STDMETHODCALLTYPE GetBufferSize(UINT32 *frames) override;
    /// The size of the next packet. AUDCLNT_E_SERVICE_NOT_RUNNING while the server does not respond.
    HRESULT STDMETHODCALLTYPE GetCurrentPadding(UINT32 *frames) override;

    /// Float samples at the device's sample rate and channel count.
    HRESULT STDMETHODCALLTYPE GetMixFormat(WAVEFORMATEX **format) override;
    HRESULT STDMETHODCALLTYPE Start() override;
    HRESULT STDMETHODCALLTYPE Stop() override;
    HRESULT STDMETHODCALLTYPE GetService(REFIID interfaceId, void **object) override;

    /// Not supported: callers poll the stream.
    HRESULT STDMETHODCALLTYPE SetEventHandle(HANDLE) override { return AUDCLNT_E_EVENTHANDLE_NOT_EXPECTED; }

    HRESULT STDMETHODCALLTYPE GetStreamLatency(REFERENCE_TIME *) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsFormatSupported(AUDCLNT_SHAREMODE, const WAVEFORMATEX *, WAVEFORMATEX **) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetDevicePeriod(REFERENCE_TIME *, REFERENCE_TIME *) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }

private:
    const std::shared_ptr<PulseConnection> m_connection;
    const PulseConnection::Source m_source;
    const EDataFlow m_flow;
    std::shared_ptr<PulseRecordStream> m_stream; // null before Initialize
};

} // namespace kel
