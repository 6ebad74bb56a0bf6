#pragma once

#include "recording/wav/WavHeader.h"

#include <QFile>
#include <QString>

namespace kel
{

/// One stretch of recorded sound as a WAV file whose timeline follows the clock: what was recorded so many milliseconds
/// after the part's start stands that far from its beginning, whatever the device left out or brought late.
///
/// Silence only stands in for sound that has not come. Where sound comes after all, it takes the place of the silence;
/// sound itself is never overwritten. A write that fails is kept in errorString(); later ones are tried all the same.
class WavPartWriter
{
public:
    explicit WavPartWriter(const WavHeader &format);
    ~WavPartWriter();

    /// Begins a part at `startMs` of the steady clock, with a header and no sound. An existing file is replaced.
    bool open(const QString &path, qint64 startMs);
    bool isOpen() const { return m_file.isOpen(); }

    /// A tenth of a second.
    void writeSilence();

    /// Null `data` means zeros. Sound from before the start, or after the end, does not belong to the part.
    void writePacket(const char *data, qint64 size, qint64 recordedAtMs);

    /// From now on the part is to end at `endMs`: what is written beyond that is cut off when it is closed.
    void setEnd(qint64 endMs);

    /// Makes the header's sizes those of the sound written so far.
    void updateSizes();

    /// Completes the part: its end where it was set, its sizes right.
    void close();

    QString errorString() const { return m_error; }

private:
    static constexpr qint64 NoEnd = -1;

    qint64 bytesAt(qint64 ms) const;
    void resizeTo(qint64 size);
    void appendZeros(qint64 size);
    bool append(const char *data, qint64 size);
    void fail();

    const WavHeader m_format;
    QFile m_file;
    qint64 m_startMs = 0;
    qint64 m_size = 0;     // bytes of sound and silence
    qint64 m_soundEnd = 0; // from here on it is silence that was never recorded
    qint64 m_end = NoEnd;  // in bytes
    QString m_error;
};

} // namespace kel
