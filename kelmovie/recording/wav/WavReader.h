#pragma once

#include "recording/wav/WavChunks.h"
#include "recording/wav/WavHeader.h"

#include <QByteArray>
#include <QFile>
#include <QString>

namespace kel
{

/// Finds the sound in a WAV file of a recording, whoever wrote it and whether or not it was completed, and reads it.
class WavReader
{
public:
    /// `path` is RECORDING/TRACK/NAME. False when the file cannot be opened; errorString() says why. A file that holds
    /// no WAV header is opened: all of it counts as sound.
    bool open(const QString &path);
    void close() { m_file.close(); }
    bool isOpen() const { return m_file.isOpen(); }
    bool hasReadError() const { return m_file.error() == QFileDevice::ReadError; }
    QString errorString() const { return m_errorString.isEmpty() ? m_file.errorString() : m_errorString; }

    /// Shorter than a header, so without sound.
    bool isTooShort() const { return m_file.size() < WavHeader::kSize; }

    /// False for bare samples.
    bool hasHeader() const { return !m_fmtChunk.isEmpty(); }

    /// False if the header is too damaged to find the sound behind it; header() is then a guess.
    bool isIntact() const { return m_isIntact; }

    /// Whether the file begins with nothing but the 44 bytes of WavHeader.
    bool isCanonical() const { return m_isIntact && m_dataOffset == WavHeader::kSize; }

    /// The header in its 44-byte form, with the number of bits that a sample takes in the file; and the "fmt " chunk of
    /// that form.
    WavHeader header() const { return m_header; }
    QByteArray fmtChunk() const { return m_fmtChunk; }

    /// Bytes of sound. The stated size counts only where other chunks follow it: a recording that was not completed
    /// states too little or too much.
    qint64 dataSize() const { return m_dataSize; }

    /// Moves to a byte of the sound.
    bool seek(qint64 offset) { return m_file.seek(m_dataOffset + offset); }

    /// The next bytes of the sound, at most `size`.
    QByteArray read(qint64 size) { return m_file.read(size); }

private:
    void findSound(const QByteArray &start);
    bool findSound(WavChunks::Padding padding);
    void takeFormat(const QByteArray &chunk);
    qint64 soundBytes(quint32 stated);
    bool isEndOfFile(qint64 offset) const;

    QFile m_file;
    QString m_errorString;
    WavHeader m_header;
    QByteArray m_fmtChunk;
    bool m_isIntact = false;
    qint64 m_dataOffset = 0;
    qint64 m_dataSize = 0;
};

} // namespace kel
