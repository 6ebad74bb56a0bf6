#include "coreaudio/pulse/PulseAudioClient.h"

#include "coreaudio/pulse/PulseCaptureClient.h"

#include <cstring>
#include <utility>

namespace kel
{

namespace
{
/// PA_SAMPLE_INVALID for formats that the server does not support.
pa_sample_format_t sampleFormat(const WAVEFORMATEX &format)
{
    bool isFloat = format.wFormatTag == WAVE_FORMAT_IEEE_FLOAT;
    bool isInteger = format.wFormatTag == WAVE_FORMAT_PCM;
    if (format.wFormatTag == WAVE_FORMAT_EXTENSIBLE && format.cbSize >= sizeof(WAVEFORMATEXTENSIBLE) - sizeof format) {
        WAVEFORMATEXTENSIBLE extensible;
        std::memcpy(&extensible, &format, sizeof extensible);
        isFloat = extensible.SubFormat == KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
        isInteger = extensible.SubFormat == KSDATAFORMAT_SUBTYPE_PCM;
    }
    if (isFloat)
        return format.wBitsPerSample == 32 ? PA_SAMPLE_FLOAT32LE : PA_SAMPLE_INVALID;
    if (!isInteger)
        return PA_SAMPLE_INVALID;
    switch (format.wBitsPerSample) {
    case 8:
        return PA_SAMPLE_U8;
    case 16:
        return PA_SAMPLE_S16LE;
    case 24:
        return PA_SAMPLE_S24LE;
    case 32:
        return PA_SAMPLE_S32LE;
    default:
        return PA_SAMPLE_INVALID;
    }
}
} // namespace

PulseAudioClient::PulseAudioClient(std::shared_ptr<PulseConnection> connection, PulseConnection::Source source,
                                   EDataFlow flow)
    : m_connection(std::move(connection))
    , m_source(std::move(source))
    , m_flow(flow)
{
}

HRESULT PulseAudioClient::GetMixFormat(WAVEFORMATEX **format)
{
    if (!format)
        return E_POINTER;
    auto *mix = static_cast<WAVEFORMATEXTENSIBLE *>(CoTaskMemAlloc(sizeof(WAVEFORMATEXTENSIBLE)));
    *format = mix ? &mix->Format : nullptr;
    if (!mix)
        return E_OUTOFMEMORY;
    *mix = {};
    mix->Format.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
    mix->Format.nChannels = m_source.format.channels;
    mix->Format.nSamplesPerSec = m_source.format.rate;
    mix->Format.wBitsPerSample = 32;
    mix->Format.nBlockAlign = WORD(mix->Format.nChannels * sizeof(float));
    mix->Format.nAvgBytesPerSec = mix->Format.nSamplesPerSec * mix->Format.nBlockAlign;
    mix->Format.cbSize = sizeof(WAVEFORMATEXTENSIBLE) - sizeof(WAVEFORMATEX);
    mix->Samples.wValidBitsPerSample = 32;
    mix->SubFormat = KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
    return S_OK;
}

HRESULT PulseAudioClient::Initialize(AUDCLNT_SHAREMODE mode, DWORD flags, REFERENCE_TIME, REFERENCE_TIME,
                                     const WAVEFORMATEX *format, LPCGUID)
{
    if (!format)
        return E_POINTER;
    if (m_stream)
        return AUDCLNT_E_ALREADY_INITIALIZED;
    constexpr DWORD supported =
        AUDCLNT_STREAMFLAGS_LOOPBACK | AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM | AUDCLNT_STREAMFLAGS_SRC_DEFAULT_QUALITY;
    if (mode != AUDCLNT_SHAREMODE_SHARED || (flags & ~supported) != 0)
        return E_INVALIDARG;
    if ((m_flow == eRender) != ((flags & AUDCLNT_STREAMFLAGS_LOOPBACK) != 0))
        return AUDCLNT_E_WRONG_ENDPOINT_TYPE;
    pa_sample_spec spec;
    spec.format = sampleFormat(*format);
    spec.rate = format->nSamplesPerSec;
    spec.channels = std::uint8_t(format->nChannels);
    if (spec.format == PA_SAMPLE_INVALID || format->nChannels > PA_CHANNELS_MAX || !pa_sample_spec_valid(&spec) ||
        pa_frame_size(&spec) != format->nBlockAlign)
        return AUDCLNT_E_UNSUPPORTED_FORMAT;
    m_stream = PulseRecordStream::open(m_connection, m_source, spec);
    return m_stream ? S_OK : AUDCLNT_E_DEVICE_INVALIDATED;
}

HRESULT PulseAudioClient::GetBufferSize(UINT32 *frames)
{
    if (!frames)
        return E_POINTER;
    *frames = 0;
    if (!m_stream)
        return AUDCLNT_E_NOT_INITIALIZED;
    *frames = m_stream->bufferFrames();
    return *frames > 0 ? S_OK : AUDCLNT_E_DEVICE_INVALIDATED;
}

HRESULT PulseAudioClient::GetCurrentPadding(UINT32 *frames)
{
    if (!frames)
        return E_POINTER;
    *frames = 0;
    if (!m_stream)
        return AUDCLNT_E_NOT_INITIALIZED;
    *frames = m_stream->peek().frames;
    return m_stream->isAnswered() ? S_OK : AUDCLNT_E_SERVICE_NOT_RUNNING;
}

HRESULT PulseAudioClient::Start()
{
    if (!m_stream)
        return AUDCLNT_E_NOT_INITIALIZED;
    return m_stream->start() ? S_OK : AUDCLNT_E_DEVICE_INVALIDATED;
}

HRESULT PulseAudioClient::Stop()
{
    if (!m_stream)
        return AUDCLNT_E_NOT_INITIALIZED;
    return m_stream->stop() ? S_OK : AUDCLNT_E_DEVICE_INVALIDATED;
}

HRESULT PulseAudioClient::GetService(REFIID interfaceId, void **object)
{
    if (!m_stream)
        return AUDCLNT_E_NOT_INITIALIZED;
    auto *client = new PulseCaptureClient(m_stream);
    const HRESULT result = client->QueryInterface(interfaceId, object);
    client->Release();
    return result;
}

} // namespace kel
