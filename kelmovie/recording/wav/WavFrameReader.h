#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <memory>

namespace kel
{

/// Reads a WAV file by sample frames as they are needed, so that a recording of hours takes no more memory than one of
/// seconds. Does not trust the file's sizes and counts.
class WavFrameReader
{
public:
    struct Format {
        int channelCount = 0;
        int sampleRate = 0; ///< Hz
        int bitsPerSample = 0;
        bool isFloat = false; ///< otherwise integers, unsigned if they have 8 bits

        int frameBytes() const { return channelCount * (bitsPerSample / 8); }
    };

    /// False when the file cannot be played; errorString() says why.
    bool open(const QString &path);
    /// The same for a WAV file in an open device.
    bool open(std::unique_ptr<QIODevice> file);
    void close();

    bool isOpen() const { return m_file != nullptr; }
    QString errorString() const { return m_errorString; }
    const Format &format() const { return m_format; }
    int frameBytes() const { return m_format.frameBytes(); }
    /// Whole sample frames: as stated, or as present in a file that states too many or was never completed.
    qint64 frameCount() const { return m_frameCount; }
    qint64 durationMs() const;

    /// The bytes of one sample frame, valid until the next call; null when it does not exist or cannot be read.
    const char *frame(qint64 index);

private:
    bool findSamples();
    bool readFormat(quint32 size);
    bool setFormat(int tag, quint32 channels, quint32 rate, int bits);
    bool fail(const QString &text);

    std::unique_ptr<QIODevice> m_file;
    QString m_errorString;
    Format m_format;
    qint64 m_dataStart = 0;
    qint64 m_dataSize = 0;
    qint64 m_frameCount = 0;
    QByteArray m_window; ///< frames read ahead
    qint64 m_windowFirst = 0;
    qint64 m_windowFrames = 0;
};

} // namespace kel
