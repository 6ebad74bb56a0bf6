#include "recording/wav/WavFrameReader.h"

#include "recording/wav/WavChunks.h"
#include "recording/wav/WavHeader.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
#include <limits>
#include <utility>

namespace kel
{

namespace
{

constexpr int kRiffHeaderSize = 12;
constexpr int kFmtSize = 16;
constexpr qint64 kReadSize = 102'400;
constexpr quint32 kMaxRate = 10'000'000; // Hz; keeps every product of a rate and a time in range

} // namespace

bool WavFrameReader::open(const QString &path)
{
    close();
    auto file = std::make_unique<QFile>(path);
    // Opening a pipe would block until its other end is opened.
    if (!QFileInfo(path).isFile() || !file->open(QIODevice::ReadOnly))
        return fail(QStringLiteral("Failed to open file: ") + path);
    return open(std::move(file));
}

bool WavFrameReader::open(std::unique_ptr<QIODevice> file)
{
    close();
    if (!file->isOpen())
        return fail(file->errorString());
    m_file = std::move(file);
    if (!findSamples()) {
        close();
        return false;
    }
    m_frameCount = m_dataSize / frameBytes();
    return true;
}

void WavFrameReader::close()
{
    m_file.reset();
    m_format = Format();
    m_dataStart = m_dataSize = m_frameCount = 0;
    m_window.clear();
    m_windowFirst = m_windowFrames = 0;
}

qint64 WavFrameReader::durationMs() const
{
    return isOpen() ? m_frameCount * 1000 / m_format.sampleRate : 0;
}

bool WavFrameReader::findSamples()
{
    const QByteArray riff = m_file->read(kRiffHeaderSize);
    if (riff.size() != kRiffHeaderSize || !WavHeader::isRiffWave(riff.constData()))
        return fail(QStringLiteral("Invalid WAV file: RIFF header not found"));
    const bool isUnfinished = qFromLittleEndian<quint32>(riff.constData() + 4) == 0;

    const qint64 fileSize = m_file->size();
    bool hasFormat = false;
    bool hasData = false;
    WavChunks chunks(*m_file, WavChunks::Padding::None);
    while (!(hasFormat && hasData) && chunks.next()) {
        if (chunks.isFormat()) {
            if (!readFormat(chunks.size()))
                return false;
            hasFormat = true;
        } else if (chunks.isData()) {
            // Sizes are written last: an interrupted recording has none yet, or one beyond its end. A file of 4 GiB
            // and more states the largest number.
            const quint32 size = chunks.size();
            const qint64 present = fileSize - chunks.offset();
            const bool isToEnd = size > present || size == std::numeric_limits<quint32>::max();
            m_dataStart = chunks.offset();
            m_dataSize = isToEnd || (size == 0 && isUnfinished) ? present : size;
            hasData = true;
        }
    }
    return (hasFormat && hasData) || fail(QStringLiteral("Invalid WAV file: missing fmt or data chunk"));
}

bool WavFrameReader::readFormat(quint32 size)
{
    const QByteArray fmt = m_file->read(std::min<qint64>(size, kFmtSize));
    if (fmt.size() < kFmtSize)
        return fail(QStringLiteral("Invalid WAV file: fmt chunk too small"));
    return setFormat(qFromLittleEndian<quint16>(fmt.constData()), qFromLittleEndian<quint16>(fmt.constData() + 2),
                     qFromLittleEndian<quint32>(fmt.constData() + 4), qFromLittleEndian<quint16>(fmt.constData() + 14));
}

bool WavFrameReader::setFormat(int tag, quint32 channels, quint32 rate, int bits)
{
    const bool isInteger = tag == WavHeader::kPcm || tag == WavHeader::kExtensible;
    if (!isInteger && tag != WavHeader::kIeeeFloat)
        return fail(QStringLiteral("Unsupported audio format: %1").arg(tag));
    if (isInteger && bits != 8 && bits != 16 && bits != 32)
        return fail(QStringLiteral("Unsupported bits per sample: %1").arg(bits));
    if (channels == 0 || rate == 0 || rate > kMaxRate)
        return fail(QStringLiteral("Invalid WAV file: %1 channels at %2 Hz").arg(channels).arg(rate));
    m_format.channelCount = int(channels);
    m_format.sampleRate = int(rate);
    m_format.bitsPerSample = isInteger ? bits : 32;
    m_format.isFloat = !isInteger;
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
        const bool isFound = m_file->seek(m_dataStart + index * size);
        const qint64 got = isFound ? m_file->read(m_window.data(), m_window.size()) : 0;
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
