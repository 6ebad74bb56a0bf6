#include "recording/wav/WavFrameReader.h"

#include "recording/wav/WavHeader.h"

#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
#include <limits>

namespace kel
{

namespace
{

constexpr int kRiffHeaderSize = 12;
constexpr int kChunkHeaderSize = 8;
constexpr int kFmtSize = 16;
constexpr int kMostChunks = 10'000; // a hostile file has millions of empty ones
constexpr qint64 kReadSize = 102'400;
constexpr quint32 kMaxRate = 10'000'000; // Hz; keeps every product of a rate and a time in range

} // namespace

bool WavFrameReader::open(const QString &path)
{
    close();
    m_file.setFileName(path);
    // Opening a pipe would wait for its other end.
    if (!QFileInfo(path).isFile() || !m_file.open(QIODevice::ReadOnly))
        return fail("Failed to open file: " + path);
    if (!walkChunks()) {
        close();
        return false;
    }
    m_frameCount = m_dataSize / frameBytes();
    return true;
}

void WavFrameReader::close()
{
    m_file.close();
    m_format = QAudioFormat();
    m_dataStart = m_dataSize = m_frameCount = 0;
    m_window.clear();
    m_windowFirst = m_windowFrames = 0;
}

qint64 WavFrameReader::durationMs() const
{
    return isOpen() ? m_frameCount * 1000 / m_format.sampleRate() : 0;
}

bool WavFrameReader::walkChunks()
{
    const QByteArray riff = m_file.read(kRiffHeaderSize);
    if (riff.size() != kRiffHeaderSize || !WavHeader::isRiffWave(riff.constData()))
        return fail("Invalid WAV file: RIFF header not found");
    const bool isUnfinished = qFromLittleEndian<quint32>(riff.constData() + 4) == 0;

    const qint64 fileSize = m_file.size();
    qint64 position = kRiffHeaderSize;
    bool hasFormat = false;
    bool hasData = false;
    for (int i = 0; i < kMostChunks && !(hasFormat && hasData) && m_file.seek(position); ++i) {
        const QByteArray chunk = m_file.read(kChunkHeaderSize);
        if (chunk.size() < kChunkHeaderSize)
            break;
        const quint32 size = qFromLittleEndian<quint32>(chunk.constData() + 4);
        position += kChunkHeaderSize;
        if (chunk.startsWith("fmt ")) {
            if (!readFormat(size))
                return false;
            hasFormat = true;
        } else if (chunk.startsWith("data")) {
            // Sizes are written last: a recording that was cut off still has none, or more than there is. A file of
            // 4 GiB and more states the largest number.
            const qint64 present = fileSize - position;
            const bool isToEnd = size > present || size == std::numeric_limits<quint32>::max();
            m_dataStart = position;
            m_dataSize = isToEnd || (size == 0 && isUnfinished) ? present : size;
            hasData = true;
        }
        position += size;
    }
    return (hasFormat && hasData) || fail("Invalid WAV file: missing fmt or data chunk");
}

bool WavFrameReader::readFormat(quint32 size)
{
    const QByteArray fmt = m_file.read(std::min<qint64>(size, kFmtSize));
    if (fmt.size() < kFmtSize)
        return fail("Invalid WAV file: fmt chunk too small");
    return setFormat(qFromLittleEndian<quint16>(fmt.constData()), qFromLittleEndian<quint16>(fmt.constData() + 2),
                     qFromLittleEndian<quint32>(fmt.constData() + 4), qFromLittleEndian<quint16>(fmt.constData() + 14));
}

bool WavFrameReader::setFormat(int tag, quint32 channels, quint32 rate, int bits)
{
    const bool isInteger = tag == WavHeader::Pcm || tag == WavHeader::Extensible;
    if (!isInteger && tag != WavHeader::IeeeFloat)
        return fail(QString("Unsupported audio format: %1").arg(tag));
    if (isInteger && bits != 8 && bits != 16 && bits != 32)
        return fail(QString("Unsupported bits per sample: %1").arg(bits));
    if (channels == 0 || rate == 0 || rate > kMaxRate)
        return fail(QString("Invalid WAV file: %1 channels at %2 Hz").arg(channels).arg(rate));
    m_format.setCodec("audio/pcm");
    m_format.setByteOrder(QAudioFormat::LittleEndian);
    m_format.setChannelCount(int(channels));
    m_format.setSampleRate(int(rate));
    m_format.setSampleSize(isInteger ? bits : 32);
    m_format.setSampleType(!isInteger  ? QAudioFormat::Float
                           : bits == 8 ? QAudioFormat::UnSignedInt
                                       : QAudioFormat::SignedInt);
    return true;
}

const char *WavFrameReader::frame(qint64 index)
{
    if (index < 0 || index >= m_frameCount)
        return nullptr;
    const qint64 size = frameBytes();
    if (index < m_windowFirst || index >= m_windowFirst + m_windowFrames) {
        const qint64 frames = std::min(std::max<qint64>(kReadSize / size, 1), m_frameCount - index);
        m_window.resize(int(frames * size));
        const bool isFound = m_file.seek(m_dataStart + index * size);
        const qint64 got = isFound ? m_file.read(m_window.data(), m_window.size()) : 0;
        m_windowFirst = index;
        m_windowFrames = std::max<qint64>(got, 0) / size;
        if (m_windowFrames == 0)
            return nullptr;
    }
    return m_window.constData() + (index - m_windowFirst) * size;
}

bool WavFrameReader::fail(const QString &text)
{
    m_errorString = text;
    return false;
}

} // namespace kel
