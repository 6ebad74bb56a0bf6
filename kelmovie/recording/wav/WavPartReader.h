#pragma once

#include "recording/wav/WavHeader.h"

#include <QByteArray>
#include <QFile>
#include <QString>

namespace kel
{

/// Reads a part file that is to be joined: finds its sound behind any other chunks. The stated size of the sound is
/// ignored, because a part that was never completed still has all the sound in the file.
class WavPartReader
{
public:
    explicit WavPartReader(const QString &path);

    bool open();
    void close() { m_file.close(); }
    bool hasReadError() const { return m_file.error() == QFileDevice::ReadError; }
    QString errorString() const { return m_file.errorString(); }

    /// Shorter than a header, so without sound.
    bool isTooShort() const { return m_file.size() < WavHeader::kSize; }

    /// False for bare samples, which are all sound.
    bool hasHeader() const { return !m_fmtChunk.isEmpty(); }

    /// The header in its 44-byte form, and the "fmt " chunk of that form.
    WavHeader header() const { return m_header; }
    QByteArray fmtChunk() const { return m_fmtChunk; }

    qint64 dataSize() const { return m_file.size() - m_dataOffset; }

    /// The next bytes of the sound, at most `size`.
    QByteArray read(qint64 size) { return m_file.read(size); }

private:
    void findSound();
    void takeFormat(const QByteArray &chunk);

    QFile m_file;
    WavHeader m_header;
    QByteArray m_fmtChunk;
    qint64 m_dataOffset = 0;
};

} // namespace kel
