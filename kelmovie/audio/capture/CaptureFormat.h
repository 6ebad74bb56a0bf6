#pragma once

#include "recording/wav/WavHeader.h"

#include <coreaudio/CoreAudio.h>

#include <QByteArray>

namespace kel
{

/// The format of captured sound: a WAVEFORMATEX with its extension.
class CaptureFormat
{
public:
    CaptureFormat() = default;
    explicit CaptureFormat(const QByteArray &bytes);
    explicit CaptureFormat(const WAVEFORMATEX &format);

    /// 16-bit integers.
    static CaptureFormat int16(DWORD sampleRate, WORD channelCount);

    /// Unusable for capture: too short, or with a rate or size of 0.
    bool isNull() const;

    /// Valid as long as this object.
    const WAVEFORMATEX *get() const { return reinterpret_cast<const WAVEFORMATEX *>(m_bytes.constData()); }
    const QByteArray &bytes() const { return m_bytes; }

    /// The same format with 16-bit integer samples.
    CaptureFormat asInt16() const;

    bool isPlainFloat() const;
    bool isIntegerPcm() const;

    /// The header of a WAV file in this format. It has no extensible form; its tag is that of the samples.
    WavHeader wavHeader() const;

private:
    quint16 resolvedTag() const;

    QByteArray m_bytes;
};

} // namespace kel
