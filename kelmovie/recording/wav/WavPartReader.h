#pragma once

#include "recording/wav/WavHeader.h"

#include <QByteArray>
#include <QFile>
#include <QString>

namespace kel
{

/// A part file opened for joining: where its sound begins, whatever stands before it. No size that the file states
/// about its sound is trusted; a part that was never completed has all the sound that is in the file.
class WavPartReader
{
public:
    explicit WavPartReader(const QString &path);

    bool open();
    void close() { m_file.close(); }
    bool hasReadError() const { return m_file.error() == QFileDevice::ReadError; }
    QString errorString() const { return m_file.errorString(); }

    /// Shorter than a header: there is no sound in it.
    bool isTooShort() const { return m_file.size() < WavHeader::Size; }

    /// False for bare samples, which are all sound.
    bool hasHeader() const { return !m_fmtChunk.isEmpty(); }

    /// In the 44-byte form, and the bytes of the format in it.
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
