#include "audio/capture/CaptureFormat.h"

#include <cstddef>
#include <cstring>

namespace kel
{

CaptureFormat::CaptureFormat(const QByteArray &bytes)
    : m_bytes(bytes)
{
}

CaptureFormat::CaptureFormat(const WAVEFORMATEX &format)
    : m_bytes(reinterpret_cast<const char *>(&format), int(sizeof format) + format.cbSize)
{
}

CaptureFormat CaptureFormat::int16(DWORD sampleRate, WORD channelCount)
{
    WAVEFORMATEX format{};
    format.nSamplesPerSec = sampleRate;
    format.nChannels = channelCount;
    return CaptureFormat(format).asInt16();
}

bool CaptureFormat::isNull() const
{
    return m_bytes.size() < int(sizeof(WAVEFORMATEX)) || m_bytes.size() < int(sizeof(WAVEFORMATEX)) + get()->cbSize ||
           get()->nSamplesPerSec == 0 || get()->nChannels == 0 || get()->nBlockAlign == 0;
}

CaptureFormat CaptureFormat::asInt16() const
{
    WAVEFORMATEX format;
    std::memcpy(&format, m_bytes.constData(), sizeof format);
    format.wFormatTag = WavHeader::kPcm;
    format.wBitsPerSample = 16;
    format.nBlockAlign = WORD(format.nChannels * 2);
    format.nAvgBytesPerSec = format.nBlockAlign * format.nSamplesPerSec;
    CaptureFormat converted;
    converted.m_bytes = QByteArray(reinterpret_cast<const char *>(&format), sizeof format) +
                        m_bytes.mid(int(sizeof format), format.cbSize);
    return converted;
}

bool CaptureFormat::isPlainFloat() const
{
    return get()->wFormatTag == WavHeader::kIeeeFloat;
}

bool CaptureFormat::isIntegerPcm() const
{
    return resolvedTag() == WavHeader::kPcm;
}

WavHeader CaptureFormat::wavHeader() const
{
    WavHeader header;
    header.formatTag = resolvedTag();
    header.channelCount = get()->nChannels;
    header.sampleRate = get()->nSamplesPerSec;
    header.byteRate = get()->nAvgBytesPerSec;
    header.blockAlign = get()->nBlockAlign;
    header.bitsPerSample = get()->wBitsPerSample;
    return header;
}

quint16 CaptureFormat::resolvedTag() const
{
    constexpr int kSubFormatOffset = offsetof(WAVEFORMATEXTENSIBLE, SubFormat);
    if (get()->wFormatTag == WavHeader::kExtensible && m_bytes.size() >= kSubFormatOffset + int(sizeof(GUID))) {
        GUID subFormat;
        std::memcpy(&subFormat, m_bytes.constData() + kSubFormatOffset, sizeof subFormat);
        if (IsEqualGUID(subFormat, KSDATAFORMAT_SUBTYPE_PCM))
            return WavHeader::kPcm;
        if (IsEqualGUID(subFormat, KSDATAFORMAT_SUBTYPE_IEEE_FLOAT))
            return WavHeader::kIeeeFloat;
    }
    return get()->wFormatTag;
}

} // namespace kel
