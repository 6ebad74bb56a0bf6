#pragma once

#include <QByteArray>
#include <QtGlobal>

class QFileDevice;

namespace kel
{

/// The 44 bytes with which every WAV file of the module begins: RIFF, a plain 16-byte "fmt " chunk, "data". All fields
/// are little-endian.
///
///     offset  0 "RIFF"   4 riffSize       8 "WAVE"
///            12 "fmt "  16 16            20 formatTag   22 channelCount  24 sampleRate
///            28 byteRate                 32 blockAlign  34 bitsPerSample
///            36 "data"  40 dataSize      44 interleaved samples
struct WavHeader {
    static constexpr int Size = 44;
    /// The whole "fmt " chunk, which two files have in common when their samples can be joined.
    static constexpr int FmtChunkOffset = 12;
    static constexpr int FmtChunkSize = 24;

    static constexpr quint16 Pcm = 1;
    static constexpr quint16 IeeeFloat = 3;
    static constexpr quint16 Extensible = 65534;

    /// Of integer samples without padding.
    static WavHeader pcm(quint32 sampleRate, quint16 channelCount, quint16 bitsPerSample);

    /// Takes the fields from their fixed offsets, whatever stands there; `bytes` holds at least Size bytes.
    static WavHeader fromBytes(const char *bytes);

    /// "RIFF", any size, "WAVE"; `bytes` holds at least 12 bytes.
    static bool isRiffWave(const char *bytes);

    QByteArray toBytes() const;

    /// Sets both sizes. Files of 4 GiB and more state the largest number that fits.
    void setDataSize(qint64 bytes);

    /// Overwrites both sizes of an open file that begins with a header, and leaves its position after byte 44. False
    /// when the device did not take them.
    static bool writeSizes(QFileDevice &file, qint64 dataBytes);

    quint32 riffSize = 0; ///< dataSize + 36
    quint16 formatTag = Pcm;
    quint16 channelCount = 0;
    quint32 sampleRate = 0; ///< Hz
    quint32 byteRate = 0;   ///< sampleRate × blockAlign
    quint16 blockAlign = 0; ///< bytes of one sample of every channel
    quint16 bitsPerSample = 0;
    quint32 dataSize = 0;
};

} // namespace kel
