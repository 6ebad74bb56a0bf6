#pragma once

#include "recording/wav/WavHeader.h"

#include <coreaudio/CoreAudio.h>

#include <QByteArray>

namespace kel
{

/// The format of captured sound: a WAVEFORMATEX with the bytes that extend it.
class CaptureFormat
{
public:
    CaptureFormat() = default;
    explicit CaptureFormat(const QByteArray &bytes);
    explicit CaptureFormat(const WAVEFORMATEX &format);

    /// Too short, or of no rate or size: nothing can be captured in it.
    bool isNull() const;

    /// Valid while this object is.
    const WAVEFORMATEX *get() const { return reinterpret_cast<const WAVEFORMATEX *>(m_bytes.constData()); }
    const QByteArray &bytes() const { return m_bytes; }

    /// The same sound in 16-bit integers.
    CaptureFormat asInt16() const;

    bool isPlainFloat() const;
    bool isIntegerPcm() const;

    /// Of a WAV file in this format, which knows no extensible form: its tag says what the samples are.
    WavHeader wavHeader() const;

private:
    quint16 resolvedTag() const;

    QByteArray m_bytes;
};

} // namespace kel
