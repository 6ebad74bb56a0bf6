#include "audio/processing/KelAudioSpeedProcessor.h"

#include "audio/processing/FloatSamples.h"
#include "audio/processing/SpeedFrameMap.h"
#include "audio/processing/StretchedSound.h"
#include "files/WriteAll.h"
#include "recording/wav/WavChunks.h"
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
constexpr int kStretchedFrames = 16'384; // at a time
constexpr int kFloatBits = 32;
constexpr int kPcmBits = 16;

template <int FrameBytes>
void gatherFixed(const char *frames, const std::vector<int> &sources, int count, char *out)
{
    for (int i = 0; i < count; ++i)
        std::memcpy(out + qint64(i) * FrameBytes, frames + qint64(sources[i] - sources[0]) * FrameBytes, FrameBytes);
}

/// Copies the frames with the numbers in `sources` from `frames`, a block that begins with the first of them.
void gather(const char *frames, qint64 frameBytes, const std::vector<int> &sources, int count, char *out)
{
    switch (frameBytes) { // the usual sizes, whose loops the compiler can vectorize
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

/// Returns the peak of the finite samples, at least `peak`. Samples that are not finite become 0.
float convertFloatToInt16(const char *floats, qint64 count, float gain, float peak, char *out)
{
    constexpr qint32 infinity = 0x7f800000;
    qint32 peakBits = 0;
    std::memcpy(&peakBits, &peak, sizeof peak);
    for (qint64 i = 0; i < count; ++i) {
        const quint32 bits = qFromLittleEndian<quint32>(floats + i * 4);
        const auto magnitude =
            qint32(bits & 0x7fffffff); // the bits of positive floats are in the same order as their values
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

bool isValid(double speed)
{
    return speed > 0.0 && !std::isinf(speed);
}

} // namespace

struct KelAudioSpeedProcessor::WavFile {
    QIODevice &file;
    qint64 dataBegin = 0;
    qint64 dataBytes = 0; ///< present in the file, whatever the header says
    quint32 sampleRate = 0;
    int channelCount = 0;
    int bitsPerSample = 0;

    qint64 frameBytes() const { return qint64(channelCount) * (bitsPerSample / 8); }
    bool isFloat() const { return bitsPerSample == kFloatBits; }
    qint64 frameCount() const { return dataBytes / frameBytes(); }
    FloatSamples sampleFormat() const { return {bitsPerSample, isFloat()}; }
    /// Stores silence for frames that do not exist. False when it cannot read those that do.
    bool readFrames(qint64 first, int count, float *samples)
    {
        std::fill_n(samples, std::ptrdiff_t(count) * channelCount, 0.0F);
        const qint64 from = std::clamp<qint64>(first, 0, frameCount());
        const qint64 present = std::clamp<qint64>(first + count, 0, frameCount()) - from;
        QByteArray bytes(int(present * frameBytes()), Qt::Uninitialized);
        if (!file.seek(dataBegin + from * frameBytes()) || file.read(bytes.data(), bytes.size()) != bytes.size())
            return false;
        sampleFormat().read(bytes.constData(), present * channelCount, samples + (from - first) * channelCount);
        return true;
    }
    bool canBeStretched(double speed) const
    {
        return (bitsPerSample == 8 || bitsPerSample == kPcmBits || isFloat()) &&
               StretchedSound::supports(int(sampleRate), channelCount, speed);
    }
};

KelAudioSpeedProcessor::KelAudioSpeedProcessor(QObject *parent)
    : QObject(parent)
{
}

KelAudioSpeedProcessor::~KelAudioSpeedProcessor() = default;

bool KelAudioSpeedProcessor::processAudio(const QString &inputPath, double speed, const QString &outputPath)
{
    m_errorMessage.clear();
    m_writeError.clear();
    if (inputPath.isEmpty() || outputPath.isEmpty())
        return fail(QStringLiteral("Input or output path is empty"));
    if (!isValid(speed))
        return fail(QStringLiteral("Invalid speed factor"));
    if (qFuzzyCompare(speed, 1.0)) {
        const bool isCopied = copy(inputPath, outputPath);
        emit processingFinished(isCopied);
        return isCopied;
    }
    QFile input(inputPath);
    if (!input.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("Cannot open WAV file: ") + inputPath);
    return processAudio(input, speed, outputPath);
}

bool KelAudioSpeedProcessor::processAudio(QIODevice &input, double speed, const QString &outputPath)
{
    m_errorMessage.clear();
    m_writeError.clear();
    if (!isValid(speed))
        return fail(QStringLiteral("Invalid speed factor"));
    WavFile wav{input};
    if (!readWavFile(&wav))
        return false;
    if (m_keepsPitch && wav.canBeStretched(speed)) {
        if (!writeStretchedFile(outputPath, wav, speed))
            return false;
        emit processingFinished(true);
        return true;
    }
    const qint64 frames = wav.frameBytes() > 0 ? wav.dataBytes / wav.frameBytes() : 0;
    const SpeedFrameMap map(int(std::min<qint64>(frames, std::numeric_limits<int>::max())), speed);
    if (frames > std::numeric_limits<int>::max() || map.isTooLong())
        return fail(QStringLiteral("Too many audio frames"));
    if (speed < 1.0 && map.outFrames() < 1)
        return fail(QStringLiteral("Invalid input parameters for frame repetition"));
    if (wav.frameBytes() < 1 || wav.sampleRate < 1)
        return fail(QStringLiteral("Invalid WAV format: %1 channels of %2 bits at %3 Hz")
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
    // Input and output may be the same file, which must not be removed.
    if (QFileInfo(inputPath) == QFileInfo(outputPath) && QFileInfo::exists(inputPath))
        return true;
    QFile::remove(outputPath);
    return QFile::copy(inputPath, outputPath) || fail(QStringLiteral("Failed to copy input file"));
}

/// Finds the samples without reading them. The format is read at its fixed offset in the header that the module writes.
bool KelAudioSpeedProcessor::readWavFile(WavFile *wav)
{
    QIODevice &file = wav->file;
    const QByteArray head = file.read(WavHeader::kSize);
    if (head.size() < WavHeader::kSize)
        return fail(QStringLiteral("Invalid WAV file: header too short"));
    if (!WavHeader::isRiffWave(head.constData()))
        return fail(QStringLiteral("Not a valid WAV file"));
    const WavHeader header = WavHeader::fromBytes(head.constData());
    wav->sampleRate = header.sampleRate;
    wav->channelCount = header.channelCount;
    wav->bitsPerSample = header.bitsPerSample;

    WavChunks chunks(file, WavChunks::Padding::None);
    while (chunks.next()) {
        if (chunks.isData()) {
            const qint64 present = file.size() - chunks.offset();
            // A file of 4 GiB and more states the largest number.
            const bool isToEnd = chunks.size() == std::numeric_limits<quint32>::max();
            wav->dataBegin = chunks.offset();
            wav->dataBytes = isToEnd ? present : std::min<qint64>(chunks.size(), present);
            break;
        }
    }
    return wav->dataBytes > 0 || fail(QStringLiteral("No audio data found in WAV file"));
}

bool KelAudioSpeedProcessor::writeWavFile(const QString &path, WavFile &wav, const SpeedFrameMap &map)
{
    const int bits = wav.isFloat() ? kPcmBits : wav.bitsPerSample;
    WavHeader header = WavHeader::pcm(wav.sampleRate, quint16(wav.channelCount), quint16(bits));
    header.setDataSize(qint64(map.outFrames()) * wav.channelCount * (bits / 8));
    QSaveFile output(path);
    if (!begin(output, header))
        return false;
    // The gain is known only after a full pass; the few sounds that exceed full scale need a second one.
    float gain = 1.0F;
    if (!changeSpeed(wav, map, &gain, output))
        return false;
    if (gain < 1.0F && (!output.seek(WavHeader::kSize) || !changeSpeed(wav, map, &gain, output)))
        return false;
    return commit(output, wav);
}

bool KelAudioSpeedProcessor::writeStretchedFile(const QString &path, WavFile &wav, double speed)
{
    const qint64 frameBytes = wav.frameBytes();
    const auto outFrames = qint64(double(wav.frameCount()) / speed);
    WavHeader header = WavHeader::pcm(wav.sampleRate, quint16(wav.channelCount), quint16(wav.bitsPerSample));
    header.formatTag = wav.isFloat() ? WavHeader::kIeeeFloat : WavHeader::kPcm;
    header.setDataSize(outFrames * frameBytes);
    QSaveFile output(path);
    if (!begin(output, header))
        return false;
    bool isReadable = true;
    const auto source = [&](qint64 first, int count, float *frames) {
        isReadable = wav.readFrames(first, count, frames) && isReadable;
    };
    StretchedSound sound(int(wav.sampleRate), wav.channelCount, source, 0, speed);
    std::vector<float> samples(std::size_t(kStretchedFrames) * std::size_t(wav.channelCount));
    QByteArray out;
    int percent = -1;
    for (qint64 first = 0; first < outFrames; first += kStretchedFrames) {
        if (m_isCancelled)
            return fail(QStringLiteral("Cancelled"));
        if (const auto reached = int(first * 100 / outFrames); reached > percent)
            emit progressChanged(percent = reached);
        const auto count = int(std::min<qint64>(kStretchedFrames, outFrames - first));
        sound.read(samples.data(), count);
        if (!isReadable)
            return fail(QStringLiteral("Cannot read WAV file to its end"));
        out.resize(int(count * frameBytes));
        wav.sampleFormat().write(samples.data(), qint64(count) * wav.channelCount, out.data());
        if (!writeAll(output, out))
            return failToWrite(output);
    }
    emit progressChanged(100);
    return commit(output, wav);
}

bool KelAudioSpeedProcessor::begin(QSaveFile &output, const WavHeader &header)
{
    if (!output.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        failToWrite(output);
        return fail(QStringLiteral("Cannot create output WAV file: ") + output.fileName());
    }
    return writeAll(output, header.toBytes()) || failToWrite(output);
}

bool KelAudioSpeedProcessor::commit(QSaveFile &output, WavFile &wav)
{
    wav.file.close(); // it may be the output, which some systems cannot replace while it is open
    return output.commit() || failToWrite(output);
}

/// Writes the frames of the map. Floats are scaled by `gain`, which is then set to the gain that keeps them within full
/// scale.
bool KelAudioSpeedProcessor::changeSpeed(WavFile &wav, const SpeedFrameMap &map, float *gain, QSaveFile &output)
{
    const qint64 frameBytes = wav.frameBytes();
    const bool isFirstPass = *gain == 1.0F;
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
            return fail(QStringLiteral("Cancelled"));
        if (isFirstPass && first % progressStep == 0)
            emit progressChanged(int(qint64(first) * 100 / outFrames));
        count = std::min({blockFrames, outFrames - first, progressStep - first % progressStep});
        map.sourceFrames(first, count, sources.data());
        const int span = sources[size_t(count) - 1] - sources[0] + 1;
        in.resize(int(span * frameBytes));
        if (!wav.file.seek(wav.dataBegin + sources[0] * frameBytes) || wav.file.read(in.data(), in.size()) != in.size())
            return fail(QStringLiteral("Cannot read WAV file to its end"));
        gather(in.constData(), frameBytes, sources, count, out.data());
        const char *bytes = out.constData();
        qint64 size = count * frameBytes;
        if (wav.isFloat()) {
            peak = convertFloatToInt16(bytes, size / 4, *gain, peak, pcm.data());
            bytes = pcm.constData();
            size /= 2;
        }
        if (!writeAll(output, QByteArray::fromRawData(bytes, int(size))))
            return failToWrite(output);
    }
    if (isFirstPass)
        emit progressChanged(100);
    *gain = 1.0F / peak;
    return true;
}

bool KelAudioSpeedProcessor::fail(const QString &message)
{
    m_errorMessage = message;
    return false;
}

bool KelAudioSpeedProcessor::failToWrite(const QSaveFile &output)
{
    m_writeError = QStringLiteral("Cannot write %1: %2").arg(output.fileName(), output.errorString());
    return fail(QStringLiteral("Failed to write complete WAV file"));
}
