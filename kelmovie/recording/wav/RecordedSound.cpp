#include "recording/wav/RecordedSound.h"

#include "logging/Log.h"
#include "recording/wav/SoundFiles.h"

#include <QDebug>

#include <algorithm>
#include <cstring>
#include <utility>

namespace kel
{

namespace
{

constexpr qint64 kBlockSamples = 1 << 16;
// A file can claim any length. A recording has at most a million frames, which last 12 days at one a second.
constexpr qint64 kMaxBytes = qint64(1) << 50;
constexpr qint64 kMaxMs = qint64(12) * 24 * 60 * 60 * 1000;
constexpr std::size_t kMaxOpenFiles = 200; // of the thousand that a process may have open

qint64 bytesOf(const QStringList &files)
{
    qint64 bytes = 0;
    for (const QString &path : files) {
        WavReader file;
        if (file.open(path) && file.hasHeader())
            bytes += file.dataSize();
    }
    return bytes;
}

QString openProblem(WavReader *file, const QString &path)
{
    return file->open(path) ? QString() : QStringLiteral("Failed to open file: ") + file->errorString();
}

} // namespace

QStringList RecordedSound::files(const QString &voiceDir, QLatin1String source)
{
    const StoredSound stored = findSound(voiceDir, source);
    if (stored.whole.isEmpty())
        return stored.parts;
    if (stored.parts.isEmpty())
        return {stored.whole};
    // Earlier versions deleted each part as soon as it had been appended to the sound file.
    if (!stored.hasFirstPart)
        return QStringList(stored.whole) + stored.parts;
    return bytesOf({stored.whole}) < bytesOf(stored.parts) ? stored.parts : QStringList(stored.whole);
}

RecordedSound::RecordedSound(const QStringList &files, Integers32 integers32)
{
    setErrorString(QStringLiteral("There is no sound file"));
    for (const QString &path : files) {
        auto file = std::make_unique<WavReader>();
        QString problem = openProblem(file.get(), path);
        if (problem.isEmpty() && files.size() > 1 && file->isTooShort())
            continue; // its recording ended before the first sound
        if (problem.isEmpty() && m_segments.empty())
            problem = takeFormat(*file, integers32);
        if (problem.isEmpty()) {
            add(path, std::move(file));
            continue;
        }
        setErrorString(problem);
        if (files.size() > 1)
            m_leftOut += QStringLiteral("%1%2: %3").arg(QLatin1String(m_leftOut.isEmpty() ? "" : "; "), path, problem);
    }
    if (m_segments.empty())
        return;
    setDataSize(m_segments.back().end * m_converter.bytes());
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    limitTo(kMaxMs);
}

/// The first file that states a format has that of all.
QString RecordedSound::takeFormat(const WavReader &file, Integers32 integers32)
{
    if (!file.hasHeader())
        return QStringLiteral("Invalid WAV file: RIFF header not found");
    if (!file.isIntact())
        return QStringLiteral("Invalid WAV file: missing fmt or data chunk");
    QString problem;
    m_converter = SampleConverter::from(file.header(), integers32 == Integers32::AsFloats, &problem);
    m_header = m_converter.header(file.header());
    m_fmtChunk = file.fmtChunk();
    return problem;
}

void RecordedSound::add(const QString &path, std::unique_ptr<WavReader> file)
{
    if (file->hasHeader() && file->fmtChunk() != m_fmtChunk)
        qCWarning(logRecording).noquote() << "[RecordedSound]" << path << "has another format than the file before";
    // Without an incomplete frame, which would swap the channels of all that follows.
    const qint64 first = m_segments.empty() ? 0 : m_segments.back().end;
    const qint64 bytes = std::min(file->dataSize(), kMaxBytes - first * m_converter.storedBytes());
    const qint64 frames = bytes / (m_converter.storedBytes() * m_header.channelCount);
    if (m_segments.size() >= kMaxOpenFiles)
        file->close();
    m_segments.push_back({path, std::move(file), first, first + frames * m_header.channelCount});
}

qint64 RecordedSound::durationMs() const
{
    return isOpen() ? m_dataSize / m_header.blockAlign * 1000 / m_header.sampleRate : 0;
}

void RecordedSound::limitTo(qint64 ms)
{
    if (ms < durationMs())
        setDataSize(ms * m_header.sampleRate / 1000 * m_header.blockAlign);
}

void RecordedSound::setDataSize(qint64 bytes)
{
    m_dataSize = bytes;
    m_header.setDataSize(bytes);
    m_headerBytes = m_header.toBytes();
}

qint64 RecordedSound::readData(char *data, qint64 maxSize)
{
    qint64 done = 0;
    const qint64 start = pos();
    if (start < WavHeader::kSize) {
        done = std::min<qint64>(maxSize, WavHeader::kSize - start);
        std::memcpy(data, m_headerBytes.constData() + start, size_t(done));
    }
    const qint64 end = std::min(maxSize, std::max<qint64>(done, size() - start));
    while (done < end)
        done += copySound(data + done, start + done - WavHeader::kSize, end - done);
    return done;
}

/// Copies at least one byte. `offset` is that of the first in the converted sound.
qint64 RecordedSound::copySound(char *data, qint64 offset, qint64 size)
{
    const int bytes = m_converter.bytes();
    const qint64 first = offset / bytes;
    const auto segment = std::upper_bound(m_segments.begin(), m_segments.end(), first,
                                          [](qint64 sample, const Segment &other) { return sample < other.end; });
    const qint64 skipped = offset % bytes;
    const qint64 count = std::min({(skipped + size + bytes - 1) / bytes, segment->end - first, kBlockSamples});
    const QByteArray stored = storedSamples(*segment, first, count);
    QByteArray samples(int(count * bytes), Qt::Uninitialized);
    m_converter.convert(stored.constData(), count, samples.data());
    const qint64 copied = std::min(size, samples.size() - skipped);
    std::memcpy(data, samples.constData() + skipped, size_t(copied));
    return copied;
}

/// Always as many as asked for: zeros stand in for what a file has lost since it was opened.
QByteArray RecordedSound::storedSamples(const Segment &segment, qint64 first, qint64 count)
{
    const int bytes = m_converter.storedBytes();
    WavReader &file = *segment.file;
    const bool isKeptOpen = file.isOpen();
    QByteArray stored;
    if ((isKeptOpen || file.open(segment.path)) && file.seek((first - segment.first) * bytes))
        stored = file.read(count * bytes);
    if (!isKeptOpen)
        file.close();
    return stored.append(QByteArray(int(count * bytes) - stored.size(), '\0'));
}

} // namespace kel
