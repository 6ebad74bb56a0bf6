#pragma once

#include <QAudioFormat>
#include <QByteArray>
#include <QFile>
#include <QString>

namespace kel
{

/// A WAV file that is being played: finds the samples behind any chunks, and reads them as they are needed, so that a
/// recording of hours takes no more memory than one of seconds. The file is treated as hostile.
class WavFrameReader
{
public:
    /// False when the file cannot be played; errorString() tells why.
    bool open(const QString &path);
    void close();

    bool isOpen() const { return m_file.isOpen(); }
    QString errorString() const { return m_errorString; }
    const QAudioFormat &format() const { return m_format; }
    int frameBytes() const { return m_format.bytesPerFrame(); }
    /// Whole sample frames that the file states, or that are there when it states too many or was never completed.
    qint64 frameCount() const { return m_frameCount; }
    qint64 durationMs() const;

    /// The bytes of one sample frame, valid until the next call; null when there is none or it cannot be read.
    const char *frame(qint64 index);

private:
    bool walkChunks();
    bool readFormat(quint32 size);
    bool setFormat(int tag, quint32 channels, quint32 rate, int bits);
    bool fail(const QString &text);

    QFile m_file;
    QString m_errorString;
    QAudioFormat m_format;
    qint64 m_dataStart = 0;
    qint64 m_dataSize = 0;
    qint64 m_frameCount = 0;
    QByteArray m_window; ///< frames read ahead
    qint64 m_windowFirst = 0;
    qint64 m_windowFrames = 0;
};

} // namespace kel
