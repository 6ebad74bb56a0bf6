#include "audio/processing/KelAudioSpeedProcessor.h"

#include "audio/processing/SpeedFrameMap.h"
#include "recording/wav/WavHeader.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

using namespace kel;

namespace
{

constexpr qint64 kBlockBytes = 1 << 20;
constexpr int kMostChunks = 10'000; // in front of the samples; a hostile file has millions
constexpr int kFloatBits = 32;
constexpr int kPcmBits = 16;

template <int FrameBytes>
void gatherFixed(const char *frames, const std::vector<int> &sources, int count, char *out)
{
    for (int i = 0; i < count; ++i)
        std::memcpy(out + qint64(i) * FrameBytes, frames + qint64(sources[i] - sources[0]) * FrameBytes, FrameBytes);
}

/// Copies the frames named by `sources` from a block that begins with the first of them.
void gather(const char *frames, qint64 frameBytes, const std::vector<int> &sources, int count, char *out)
{
    switch (frameBytes) { // those with which recordings are made are worth a loop of their own
    case 2:
        return gatherFixed<2>(frames, sources, count, out);
    case 4:
        return gatherFixed<4>(frames, sources, count, out);
    case 8:
        return gatherFixed<8>(frames, sources, count, out);
    default:
        for (int i = 0; i < count; ++i)
            std::memcpy(out + i * frameBytes, frames + (sources[i] - sources[0]) * frameBytes, size_t(frameBytes));
    }
}

/// Returns the largest magnitude among the finite samples or `peak`. Samples that are not finite become 0.
float convertFloatToInt16(const char *floats, qint64 count, float gain, float peak, char *out)
{
    constexpr qint32 infinity = 0x7f800000;
    qint32 peakBits = 0;
    std::memcpy(&peakBits, &peak, sizeof peak);
    for (qint64 i = 0; i < count; ++i) {
        const quint32 bits = qFromLittleEndian<quint32>(floats + i * 4);
        const auto magnitude = qint32(bits & 0x7fffffff); // positive floats sort as their bits do
        const bool isFinite = magnitude < infinity;
        peakBits = std::max(peakBits, isFinite ? magnitude : 0);
        const quint32 finiteBits = isFinite ? bits : 0;
        float sample;
        std::memcpy(&sample, &finiteBits, sizeof sample);
        const float scaled = sample * gain;
        qToLittleEndian(qint16(std::clamp(double(scaled) * 32767.0, -32768.0, 32767.0)), out + i * 2);
    }
    std::memcpy(&peak, &peakBits, sizeof peak);
    return peak;
}

} // namespace

struct KelAudioSpeedProcessor::WavFile {
    QFile file;
    qint64 dataBegin = 0;
    qint64 dataBytes = 0; ///< that are there, whatever the header says
    quint32 sampleRate = 0;
    int channelCount = 0;
    int bitsPerSample = 0;

    qint64 frameBytes() const { return qint64(channelCount) * (bitsPerSample / 8); }
    bool isFloat() const { return bitsPerSample == kFloatBits; }
};

KelAudioSpeedProcessor::KelAudioSpeedProcessor(QObject *parent)
    : QObject(parent)
{
}

KelAudioSpeedProcessor::~KelAudioSpeedProcessor() = default;

bool KelAudioSpeedProcessor::processAudio(const QString &inputPath, double speed, const QString &outputPath)
{
    m_errorMessage.clear();
    if (inputPath.isEmpty() || outputPath.isEmpty())
        return fail("Input or output path is empty");
    if (!(speed > 0.0) || std::isinf(speed))
        return fail("Invalid speed factor");
    if (qFuzzyCompare(speed, 1.0)) {
        const bool isCopied = copy(inputPath, outputPath);
        emit processingFinished(isCopied);
        return isCopied;
    }
    WavFile wav;
    if (!readWavFile(inputPath, &wav))
        return false;
    const qint64 frames = wav.frameBytes() > 0 ? wav.dataBytes / wav.frameBytes() : 0;
    const SpeedFrameMap map(int(std::min<qint64>(frames, std::numeric_limits<int>::max())), speed);
    if (frames > std::numeric_limits<int>::max() || map.isTooLong())
        return fail("Too many audio frames");
    if (speed < 1.0 && map.outFrames() < 1)
        return fail("Invalid input parameters for frame repetition");
    if (wav.frameBytes() < 1 || wav.sampleRate < 1)
        return fail(QString("Invalid WAV format: %1 channels of %2 bits at %3 Hz")
                        .arg(wav.channelCount)
                        .arg(wav.bitsPerSample)
                        .arg(wav.sampleRate));
    if (!writeWavFile(outputPath, wav, map))
        return false;
    emit processingFinished(true);
    return true;
}

bool KelAudioSpeedProcessor::copy(const QString &inputPath, const QString &outputPath)
{
    // A file that is asked to become itself must not be removed first.
    if (QFileInfo(inputPath) == QFileInfo(outputPath) && QFileInfo::exists(inputPath))
        return true;
    QFile::remove(outputPath);
    return QFile::copy(inputPath, outputPath) || fail("Failed to copy input file");
}

/// Finds the samples and leaves them in the file. The format is taken from its place in the header that every writer of
/// ours makes.
bool KelAudioSpeedProcessor::readWavFile(const QString &path, WavFile *wav)
{
    QFile &file = wav->file;
    file.setFileName(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail("Cannot open WAV file: " + path);
    const QByteArray head = file.read(WavHeader::Size);
    if (head.size() < WavHeader::Size)
        return fail("Invalid WAV file: header too short");
    if (!WavHeader::isRiffWave(head.constData()))
        return fail("Not a valid WAV file");
    const WavHeader header = WavHeader::fromBytes(head.constData());
    wav->sampleRate = header.sampleRate;
    wav->channelCount = header.channelCount;
    wav->bitsPerSample = header.bitsPerSample;

    const qint64 fileSize = file.size();
    qint64 position = WavHeader::FmtChunkOffset;
    for (int i = 0; i < kMostChunks && file.seek(position); ++i) {
        const QByteArray chunk = file.read(8);
        if (chunk.size() < 8)
            break;
        const quint32 size = qFromLittleEndian<quint32>(chunk.constData() + 4);
        position += chunk.size();
        if (chunk.startsWith("data")) {
            // A longer file than the field can tell states the largest number.
            const bool isToEnd = size == std::numeric_limits<quint32>::max();
            wav->dataBegin = position;
            wav->dataBytes = isToEnd ? fileSize - position : std::min<qint64>(size, fileSize - position);
            break;
        }
        position += size;
    }
    return wav->dataBytes > 0 || fail("No audio data found in WAV file");
}

bool KelAudioSpeedProcessor::writeWavFile(const QString &path, WavFile &wav, const SpeedFrameMap &map)
{
    const int bits = wav.isFloat() ? kPcmBits : wav.bitsPerSample;
    WavHeader header = WavHeader::pcm(wav.sampleRate, quint16(wav.channelCount), quint16(bits));
    header.setDataSize(qint64(map.outFrames()) * wav.channelCount * (bits / 8));
    QSaveFile output(path);
    if (!output.open(QIODevice::WriteOnly))
        return fail("Cannot create output WAV file: " + path);
    if (output.write(header.toBytes()) != WavHeader::Size)
        return fail("Failed to write complete WAV file");
    // Few sounds exceed full scale, and only the end tells: those are done again.
    float gain = 1.0F;
    if (!changeSpeed(wav, map, &gain, output))
        return false;
    if (gain < 1.0F && (!output.seek(WavHeader::Size) || !changeSpeed(wav, map, &gain, output)))
        return false;
    wav.file.close(); // may be what is replaced, which some systems refuse while it is open
    return output.commit() || fail("Failed to write complete WAV file");
}

/// Writes the frames of the map. Floats are scaled by `gain`, which then becomes what would have been the right one.
bool KelAudioSpeedProcessor::changeSpeed(WavFile &wav, const SpeedFrameMap &map, float *gain, QSaveFile &output)
{
    const qint64 frameBytes = wav.frameBytes();
    const bool isFirstRun = *gain == 1.0F;
    const int outFrames = map.outFrames();
    const int progressStep = std::max(outFrames / 100, 1);
    const double framesOfBlock = double(kBlockBytes) / double(frameBytes);
    const int blockFrames = std::max(int(framesOfBlock / std::max(map.speed(), 1.0)), 1);
    std::vector<int> sources(static_cast<size_t>(blockFrames));
    QByteArray in;
    QByteArray out(int(blockFrames * frameBytes), Qt::Uninitialized);
    QByteArray pcm(wav.isFloat() ? out.size() / 2 : 0, Qt::Uninitialized);
    float peak = 1.0F;
    int count = 0;
    for (int first = 0; first < outFrames; first += count) {
        if (m_isCancelled)
            return fail("Cancelled");
        if (isFirstRun && first % progressStep == 0)
            emit progressChanged(int(qint64(first) * 100 / outFrames));
        count = std::min({blockFrames, outFrames - first, progressStep - first % progressStep});
        map.sourceFrames(first, count, sources.data());
        const int span = sources[size_t(count) - 1] - sources[0] + 1;
        in.resize(int(span * frameBytes));
        if (!wav.file.seek(wav.dataBegin + sources[0] * frameBytes) || wav.file.read(in.data(), in.size()) != in.size())
            return fail("Cannot read WAV file: " + wav.file.fileName());
        gather(in.constData(), frameBytes, sources, count, out.data());
        const char *bytes = out.constData();
        qint64 size = count * frameBytes;
        if (wav.isFloat()) {
            peak = convertFloatToInt16(bytes, size / 4, *gain, peak, pcm.data());
            bytes = pcm.constData();
            size /= 2;
        }
        if (output.write(bytes, size) != size)
            return fail("Failed to write complete WAV file");
    }
    if (isFirstRun)
        emit progressChanged(100);
    *gain = 1.0F / peak;
    return true;
}

bool KelAudioSpeedProcessor::fail(const QString &message)
{
    m_errorMessage = message;
    return false;
}
