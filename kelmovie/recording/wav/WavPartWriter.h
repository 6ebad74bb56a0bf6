#pragma once

#include "files/PrivateFile.h"
#include "recording/wav/WavHeader.h"

#include <QString>

namespace kel
{

/// Writes a part of recorded sound as a WAV file whose timeline follows the clock: sound recorded a number of
/// milliseconds after the start of the part is that far from its beginning, even if the device dropped or delayed
/// packets.
///
/// Gaps are filled with silence. Sound that arrives late replaces the silence; sound is never overwritten: what
/// overlaps it is left out. A device whose clock runs faster or slower is kept in step by single frames, inaudibly. The
/// first failed write is kept in errorString(); later writes are attempted all the same.
class WavPartWriter
{
public:
    explicit WavPartWriter(const WavHeader &format);
    ~WavPartWriter();
    WavPartWriter(const WavPartWriter &) = delete;
    WavPartWriter &operator=(const WavPartWriter &) = delete;

    /// Begins a part at `startMs` of the steady clock, with a header and no sound. An existing file is replaced.
    bool open(const QString &path, qint64 startMs);
    bool isOpen() const { return m_file.isOpen(); }

    /// Writes silence up to `ms` of the steady clock, unless the part is longer already.
    void writeSilenceTo(qint64 ms);

    /// Writes `size` bytes of sound whose first frame was recorded at `recordedAtMs`; null `data` means zeros. Sound
    /// from before the start or after the end of the part is dropped.
    void writePacket(const char *data, qint64 size, qint64 recordedAtMs);

    /// Whether all sound until the end set by setEnd() was written.
    bool isComplete() const { return m_end != kNoEnd && m_heardEnd >= m_end; }

    /// Sets the end of the part: anything written beyond `endMs` is cut off when the part is closed.
    void setEnd(qint64 endMs);

    /// Writes the size of the sound so far to the header.
    void updateSizes();

    /// Completes the part: cuts or extends it to its end, if that was set, and writes its final size.
    void close();

    QString errorString() const { return m_error; }

private:
    static constexpr qint64 kNoEnd = -1;

    qint64 bytesAt(qint64 ms) const;
    qint64 bytesOf(qint64 ms) const;
    void writeContinuing(const char *data, qint64 size, qint64 position);
    void write(const char *data, qint64 size);
    void resizeTo(qint64 size);
    void appendZeros(qint64 size);
    bool append(const char *data, qint64 size);
    void fail();

    const WavHeader m_format;
    PrivateFile m_file;
    qint64 m_startMs = 0;
    qint64 m_size = 0;     // bytes of sound and silence
    qint64 m_soundEnd = 0; // only filled-in silence follows, which sound may still replace
    qint64 m_heardEnd = 0; // of the last packet, even if it was left out
    qint64 m_end = kNoEnd; // in bytes
    QString m_error;
};

} // namespace kel
