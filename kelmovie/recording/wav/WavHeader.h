#pragma once

#include <QByteArray>
#include <QtGlobal>

class QFileDevice;

namespace kel
{

/// The 44 bytes that every WAV file of the module begins with: RIFF, a plain 16-byte "fmt " chunk, "data". All fields
/// are little-endian.
///
///     offset  0 "RIFF"   4 riffSize       8 "WAVE"
///            12 "fmt "  16 16            20 formatTag   22 channelCount  24 sampleRate
///            28 byteRate                 32 blockAlign  34 bitsPerSample
///            36 "data"  40 dataSize      44 interleaved samples
struct WavHeader {
    static constexpr int kSize = 44;
    /// The whole "fmt " chunk. The samples of two files can be joined if it is the same in both.
    static constexpr int kFmtChunkOffset = 12;
    static constexpr int kFmtChunkSize = 24;

    static constexpr quint16 kPcm = 1;
    static constexpr quint16 kIeeeFloat = 3;
    static constexpr quint16 kExtensible = 65534;

    /// The header for integer samples without padding.
    static WavHeader pcm(quint32 sampleRate, quint16 channelCount, quint16 bitsPerSample);

    /// Reads the fields at their fixed offsets without checking them; `bytes` holds at least kSize bytes.
    static WavHeader fromBytes(const char *bytes);

    /// Whether `bytes`, at least 12 of them, are "RIFF", any size, "WAVE".
    static bool isRiffWave(const char *bytes);

    QByteArray toBytes() const;

    /// Sets both sizes. Files of 4 GiB and more state the largest number that fits.
    void setDataSize(qint64 bytes);

    /// Overwrites both sizes of an open file that begins with a header, and leaves its position after byte 44. False
    /// when they cannot be written.
    static bool writeSizes(QFileDevice &file, qint64 dataBytes);

    quint32 riffSize = 0; ///< dataSize + 36
    quint16 formatTag = kPcm;
    quint16 channelCount = 0;
    quint32 sampleRate = 0; ///< Hz
    quint32 byteRate = 0;   ///< sampleRate × blockAlign
    quint16 blockAlign = 0; ///< bytes of one sample of every channel
    quint16 bitsPerSample = 0;
    quint32 dataSize = 0;
};

} // namespace kel
