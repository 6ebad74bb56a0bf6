// Sound files and their parts.

#include "FuzzTarget.h"

#include "audio/processing/KelAudioSpeedProcessor.h"
#include "avcodec/AudioTrack.h"
#include "avcodec/audio/AudioReader.h"
#include "recording/wav/RecordedSound.h"
#include "recording/wav/WavFrameReader.h"
#include "recording/wav/WavHeader.h"
#include "recording/wav/WavPartMerger.h"

#include <QFile>
#include <QFileInfo>

#include <array>
#include <memory>
#include <utility>

using namespace kel;

namespace
{

void wav(const QByteArray &input)
{
    WavFrameReader reader;
    if (!reader.open(writeScratch("sound.wav", input)))
        return;
    const qint64 count = reader.frameCount();
    expect(count * reader.frameBytes() <= input.size(), "only samples that are in the file are promised");
    for (const qint64 index : {qint64(-1), qint64(0), count / 2, count - 1, count}) {
        const char *const frame = reader.frame(index);
        expect(!frame || (index >= 0 && index < count), "no samples beyond the end");
        if (frame)
            QByteArray(frame, reader.frameBytes()); // reads every byte
    }
}

/// Writes the input as two parts of the same length; the last byte may belong to none.
QStringList writeParts(const QByteArray &input)
{
    QStringList parts;
    const int size = input.size() / 2;
    for (int i = 0; i < 2; ++i)
        parts << writeScratch(QString("microphone_20260131_123456_part%1.wav").arg(i), input.mid(i * size, size));
    return parts;
}

void recordedSound(const QByteArray &input)
{
    const QStringList parts = writeParts(input);
    for (const auto integers32 : {RecordedSound::Integers32::AsStored, RecordedSound::Integers32::AsFloats}) {
        auto sound = std::make_unique<RecordedSound>(parts, integers32);
        if (!sound->isOpen())
            continue;
        // Converted samples have at most four bytes for three.
        expect(sound->size() <= WavHeader::kSize + input.size() / 3 * 4 + 4, "no sound that the parts do not have");
        expect(sound->readAll().size() == sound->size(), "all of it can be read");
        sound->seek(0);
        WavFrameReader reader;
        const qint64 size = sound->size();
        expect(reader.open(std::move(sound)), "it can be played");
        expect(reader.frameCount() * reader.frameBytes() == size - WavHeader::kSize, "to its end");
    }
}

void wavParts(const QByteArray &input)
{
    const QString output = scratchPath("microphone_20260131_123456.wav");
    QFile::remove(output);
    mergeMicrophoneParts(writeParts(input), output); // as after a crash: their times are not known
    const qint64 size = QFileInfo(output).size();
    expect(size == 0 || size >= WavHeader::kSize, "a sound file has a whole header");
}

void wavSpeed(const QByteArray &input)
{
    KelAudioSpeedProcessor processor;
    for (const double speed : {0.5, 2.0})
        processor.processAudio(writeScratch("sound.wav", input), speed, scratchPath("speed.wav"));
}

void soundDecoder(const QByteArray &input)
{
    av::AudioReader reader;
    QString error;
    if (!reader.open({writeScratch("sound.wav", input)}, &error))
        return;
    std::array<float, 4096> left{};
    std::array<float, 4096> right{};
    for (int block = 0; block < 16; ++block) {
        const int count = reader.read(left.data(), right.data(), int(left.size()));
        expect(count >= 0 && count <= int(left.size()), "no more samples than there is room for");
        if (count < int(left.size()))
            break;
    }
}

} // namespace

std::vector<FuzzTarget> soundTargets()
{
    return {{"wav", wav},
            {"recorded_sound", recordedSound},
            {"wav_parts", wavParts},
            {"wav_speed", wavSpeed},
            {"sound_decoder", soundDecoder}};
}
