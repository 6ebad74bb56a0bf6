#include "audio/processing/KelAudioSpeedProcessor.h"
#include "audio/processing/StretchedSound.h"
#include "kelmovie/support/SoundFile.h"
#include "recording/wav/WavChunks.h"
#include "support/FileSizeLimit.h"
#include "support/Sound.h"
#include "support/TestTable.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

using namespace kel;

namespace
{

QByteArray wav(int channels, int bits, const QByteArray &samples)
{
    return SoundFile::wav(48'000, quint16(bits), samples, quint16(channels));
}

/// Frames that begin with their number, for sounds of several blocks.
QByteArray numberedFrames(int count, int frameBytes)
{
    QByteArray frames(count * frameBytes, 0);
    for (int i = 0; i < count; ++i)
        qToLittleEndian<qint32>(i, frames.data() + i * frameBytes);
    return frames;
}

} // namespace

class AudioSpeedTest : public QObject
{
    Q_OBJECT

private slots:
    void changesSpeed_data();
    void changesSpeed();
    void changesLongSound();
    void keepsPitch_data();
    void keepsPitch();
    void malformed_data();
    void malformed();
    void handlesFiles();
    void givesUpCleanly();

private:
    void write(const QByteArray &bytes) const { writeFile(m_input, bytes); }

    QTemporaryDir m_dir;
    const QString m_input = m_dir.filePath("in.wav");
    const QString m_output = m_dir.filePath("out.wav");
};

void AudioSpeedTest::changesSpeed_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<double>("speed");
    QTest::addColumn<QByteArray>("output");

    const auto row = [](const char *name, int channels, int bits, const QByteArray &in, double speed,
                        const QByteArray &out) {
        QTest::newRow(name) << wav(channels, bits, in) << speed << wav(channels, bits == 32 ? 16 : bits, out);
    };
    row("every second", 2, 16, "aaaabbbbccccdddd", 2.0, "aaaacccc");
    row("each twice", 2, 16, "aaaabbbb", 0.5, "aaaaaaaabbbbbbbb");
    row("one and a half", 1, 16, "aabbccddee", 1.5, "aabbdd");
    row("three quarters", 1, 16, "aabbccdd", 0.75, "aaaabbccdd");
    row("24 bits", 1, 24, "aaabbbcccdddeeefff", 3.0, "aaaddd");
    row("64 bits", 1, 64, "aaaaaaaabbbbbbbb", 0.5, "aaaaaaaaaaaaaaaabbbbbbbbbbbbbbbb");
    row("incomplete frame", 1, 16, "aabbccd", 2.0, "aa");
    row("less than a frame", 2, 16, "abc", 2.0, "");
    row("faster than it is long", 1, 16, "aabb", 3.0, "");
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    row("floats", 1, 32, SoundFile::littleEndian<float>({0.5F, 0, -1.0F, 1.0F}), 0.999999,
        SoundFile::littleEndian<qint16>({16383, 0, -32767, 32767}));
    row("loud floats", 1, 32, SoundFile::littleEndian<float>({2.0F, -2.0F, 1.0F, 0.5F}), 0.9,
        SoundFile::littleEndian<qint16>({32767, -32767, 16383, 8191}));
    row("loud frames are dropped", 2, 32, SoundFile::littleEndian<float>({0.5F, 0.25F, 9.0F, 9.0F}), 2.0,
        SoundFile::littleEndian<qint16>({16383, 8191}));
    row("not finite", 1, 32, SoundFile::littleEndian<float>({nan, infinity, -infinity, -nan, 1.0F}), 0.9,
        SoundFile::littleEndian<qint16>({0, 0, 0, 0, 32767}));

    const QByteArray plain = wav(1, 16, "aabbccdd");
    QTest::newRow("chunks in between") << plain.left(36) + QByteArray("LIST\3\0\0\0xyz", 11) + plain.mid(36) << 2.0
                                       << wav(1, 16, "aacc");
    QTest::newRow("size beyond the file")
        << plain.left(40) + QByteArray("\0\0\0\x70", 4) + "aabbccdd" << 2.0 << wav(1, 16, "aacc");
    QTest::newRow("size of 4 GiB") << plain.left(40) + QByteArray(4, '\xff') + "aabbccdd" << 2.0 << wav(1, 16, "aacc");
}

void AudioSpeedTest::changesSpeed()
{
    QFETCH(QByteArray, input);
    QFETCH(double, speed);
    QFETCH(QByteArray, output);

    write(input);
    KelAudioSpeedProcessor processor;
    const QSignalSpy finished(&processor, &KelAudioSpeedProcessor::processingFinished);
    QVERIFY2(processor.processAudio(m_input, speed, m_output), qPrintable(processor.errorMessage()));
    QCOMPARE(readFile(m_output).toHex(' '), output.toHex(' '));
    QCOMPARE(finished, QList<QVariantList>{{true}});
}

/// Across blocks, each frame is the one that is heard then, and none is left out or repeated too often.
void AudioSpeedTest::changesLongSound()
{
    constexpr int frames = 400'003;
    for (const int frameBytes : {4, 8, 6}) {
        const QByteArray samples = numberedFrames(frames, frameBytes);
        // Mono for 8 bytes: stereo frames of that size would be floats.
        write(frameBytes == 8 ? wav(1, 64, samples) : wav(frameBytes / 2, 16, samples));
        for (const double speed : {0.3, 1.7, 70'000.0}) {
            KelAudioSpeedProcessor processor;
            QVector<int> progress;
            connect(&processor, &KelAudioSpeedProcessor::progressChanged, [&](int percent) { progress << percent; });
            QVERIFY2(processor.processAudio(m_input, speed, m_output), qPrintable(processor.errorMessage()));
            const QByteArray output = readFile(m_output).mid(WavHeader::kSize);
            QCOMPARE(output.size() / frameBytes, int(frames / speed));
            for (int i = 0; i < output.size() / frameBytes; ++i) {
                const int number = qFromLittleEndian<qint32>(output.constData() + i * frameBytes);
                if (std::abs(number - i * speed) > 1)
                    QFAIL(qPrintable(QString("%1 at %2, speed %3").arg(number).arg(i).arg(speed)));
            }
            QVERIFY(std::is_sorted(progress.cbegin(), progress.cend()));
            QVERIFY(progress.first() == 0 && progress.last() == 100 && (progress.size() > 99) == (speed < 1000));
        }
    }
}

void AudioSpeedTest::keepsPitch_data()
{
    QTest::addColumn<double>("speed");
    QTest::addColumn<bool>("isFloat");
    for (const double speed : {0.1, 0.8, 1.5, 2.0, 16.0})
        QTest::addRow("at %g", speed) << speed << (speed != 2.0);
}

/// A tone from 30.5 s to 36.5 s stays a tone of the same pitch at the right time: off by no more than 10 ms of the
/// output or, when it is slower, of the input.
void AudioSpeedTest::keepsPitch()
{
    QFETCH(double, speed);
    QFETCH(bool, isFloat);
    if (!StretchedSound::supports(16'000, 2, speed))
        QSKIP("built without SoundTouch");
    constexpr double hertz = 440, from = 30.5, to = 36.5;
    QVERIFY(Sound::make(40, Sound::tone(hertz, 0.5, from, to), 16'000).save(m_input, isFloat));
    KelAudioSpeedProcessor processor;
    processor.setKeepsPitch(true);
    QSignalSpy progress(&processor, &KelAudioSpeedProcessor::progressChanged);
    QVERIFY2(processor.processAudio(m_input, speed, m_output), qPrintable(processor.errorMessage()));

    WavHeader header;
    const QVector<float> samples = SoundFile::exactSamples(m_output, &header);
    QCOMPARE(samples.size(), int(40 * 16'000 / speed));
    QCOMPARE(int(header.channelCount), 2);
    const Sound sound{16'000, 1, {samples.begin(), samples.end()}};
    const double tolerance = speed < 0.5 ? 0.015 / speed : 0.0105 / std::min(speed, 1.0);
    QVERIFY2(std::abs(sound.onset(0.25) - from / speed) < tolerance, qPrintable(QString::number(sound.onset(0.25))));
    QVERIFY2(std::abs(sound.end(0.25) - to / speed) < tolerance, qPrintable(QString::number(sound.end(0.25))));
    QVERIFY(sound.peak() < 0.55);
    // Measured in short parts: the phase may jump between pieces.
    for (double time = from / speed + tolerance; time + 0.1 < to / speed - tolerance; time += 0.1) {
        const double level = sound.level(hertz, time, time + 0.1);
        QVERIFY2(level > 0.42, qPrintable(QString("%1 at %2").arg(level).arg(time)));
    }
    QVERIFY(progress.size() > 2 && progress.last().first().toInt() == 100);
}

void AudioSpeedTest::malformed_data()
{
    const TestTable<QByteArray, double, QString> row("bytes", "speed", "error");

    const QByteArray good = wav(1, 16, "aabb");
    const auto with = [&](int offset, const QByteArray &bytes) {
        return QByteArray(good).replace(offset, bytes.size(), bytes);
    };
    const QByteArray none("\0\0\0\0", 4);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    row("speed 0", good, 0.0, "Invalid speed factor");
    row("speed below 0", good, -1.0, "Invalid speed factor");
    row("speed NaN", good, nan, "Invalid speed factor");
    row("infinite speed", good, std::numeric_limits<double>::infinity(), "Invalid speed factor");
    row("too many frames", good, 1e-10, "Too many audio frames");
    row("empty file", {}, 2.0, "Invalid WAV file: header too short");
    row("43 bytes", good.left(43), 2.0, "Invalid WAV file: header too short");
    row("not RIFF", with(0, "RIFX"), 2.0, "Not a valid WAV file");
    row("not WAVE", with(8, "AVI "), 2.0, "Not a valid WAV file");
    row("no samples", good.left(44), 2.0, "No audio data found in WAV file");
    row("data of size 0", with(40, none), 2.0, "No audio data found in WAV file");
    row("no data chunk", with(36, "dada"), 2.0, "No audio data found in WAV file");
    row("more chunks than are read",
        good.left(12) + QByteArray("fmt \0\0\0\0", 8).repeated(WavChunks::kMaxChunks) + good.mid(12), 2.0,
        "No audio data found in WAV file");
    row("no channels", with(22, none.left(2)), 2.0, "Invalid WAV format: 0 channels of 16 bits");
    row("no channels, slower", with(22, none.left(2)), 0.5, "Invalid input parameters for frame repetition");
    row("7 bits", with(34, "\7"), 2.0, "Invalid WAV format: 1 channels of 7 bits");
    row("no rate", with(24, none), 2.0, "Invalid WAV format: 1 channels of 16 bits at 0 Hz");
    row("less than a frame, slower", wav(2, 16, "abc"), 0.5, "Invalid input parameters for frame repetition");
}

void AudioSpeedTest::malformed()
{
    QFETCH(QByteArray, bytes);
    QFETCH(double, speed);
    QFETCH(QString, error);

    write(bytes);
    QFile::remove(m_output);
    KelAudioSpeedProcessor processor;
    const QSignalSpy finished(&processor, &KelAudioSpeedProcessor::processingFinished);
    QVERIFY(!processor.processAudio(m_input, speed, m_output));
    QVERIFY2(processor.errorMessage().startsWith(error), qPrintable(processor.errorMessage()));
    QVERIFY(finished.isEmpty());
    QVERIFY(!QFile::exists(m_output));
}

void AudioSpeedTest::handlesFiles()
{
    KelAudioSpeedProcessor processor;
    const QSignalSpy finished(&processor, &KelAudioSpeedProcessor::processingFinished);
    write("not even a WAV file");
    QVERIFY(processor.processAudio(m_input, 1.0 + 1e-13, m_output));
    QCOMPARE(readFile(m_output), QByteArray("not even a WAV file"));
    QVERIFY(processor.processAudio(m_input, 1.0, m_input));
    QCOMPARE(readFile(m_input), QByteArray("not even a WAV file"));

    QVERIFY(!processor.processAudio(m_dir.filePath("missing.wav"), 1.0, m_output));
    QCOMPARE(processor.errorMessage(), QString("Failed to copy input file"));
    QCOMPARE(finished, (QList<QVariantList>{{true}, {true}, {false}}));
    QVERIFY(!processor.processAudio(m_dir.filePath("missing.wav"), 2.0, m_output));
    QCOMPARE(processor.errorMessage(), "Cannot open WAV file: " + m_dir.filePath("missing.wav"));
    QVERIFY(!processor.processAudio(m_input, 2.0, QString()));
    QCOMPARE(processor.errorMessage(), QString("Input or output path is empty"));
    QVERIFY(!processor.processAudio(m_input, 2.0, m_dir.filePath("nowhere/out.wav")));
    QCOMPARE(finished.size(), 3);

    write(wav(1, 16, "aabbccdd"));
    QVERIFY2(processor.processAudio(m_input, 2.0, m_input), "it may replace its input");
    QCOMPARE(readFile(m_input), wav(1, 16, "aacc"));
}

void AudioSpeedTest::givesUpCleanly()
{
    write(wav(2, 16, numberedFrames(400'000, 4)));
    QFile::remove(m_output);
    for (const bool keepsPitch : {false, true}) {
        KelAudioSpeedProcessor processor;
        processor.setKeepsPitch(keepsPitch);
        {
            const FileSizeLimit fullDisk(100'000);
            QVERIFY(!processor.processAudio(m_input, 2.0, m_output));
            QCOMPARE(processor.errorMessage(), QString("Failed to write complete WAV file"));
        }
        connect(&processor, &KelAudioSpeedProcessor::progressChanged, [&](int) { processor.cancel(); });
        QVERIFY(!processor.processAudio(m_input, 2.0, m_output));
        QCOMPARE(processor.errorMessage(), QString("Cancelled"));
    }
    QCOMPARE(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"in.wav"});
}

QTEST_GUILESS_MAIN(AudioSpeedTest)
#include "tst_audio_speed.moc"
