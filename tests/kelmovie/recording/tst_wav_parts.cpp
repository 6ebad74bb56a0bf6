#include "kelmovie/support/SoundFile.h"
#include "recording/wav/WavChunks.h"
#include "recording/wav/WavPartMerger.h"
#include "recording/wav/WavPartWriter.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

using namespace kel;

namespace
{
/// Stereo, 16 bits. `sizes`: the size that the header states, 0 for a file that was never completed.
QByteArray wav(const QByteArray &sound, quint32 rate = 44100, qint64 sizes = 0)
{
    WavHeader header = WavHeader::pcm(rate, 2, 16);
    header.setDataSize(sizes);
    return header.toBytes() + sound;
}

/// With an extensible format of 16-bit integers, between other chunks, one of them of odd size.
QByteArray longWav(const QByteArray &sound)
{
    const QByteArray fmt = WavHeader::pcm(44100, 2, 16).toBytes().mid(20, 16).replace(0, 2, QByteArray("\xfe\xff", 2)) +
                           QByteArray("\x16\0\x10\0\x3\0\0\0", 8) +
                           QByteArray("\1\0\0\0\0\0\x10\0\x80\0\0\xaa\0\x38\x9b\x71", 16);
    return "RIFF" + SoundFile::littleEndian<quint32>({0}) + "WAVEJUNK" + SoundFile::littleEndian<quint32>({3}) +
           QByteArray("abc\0", 4) + "fmt " + SoundFile::littleEndian<quint32>({40}) + fmt + "LIST" +
           SoundFile::littleEndian<quint32>({4}) + "info" + "data" + SoundFile::littleEndian<quint32>({0x7fff0000}) +
           sound;
}

/// With more empty chunks in front of the format than are read.
QByteArray hostileWav(const QByteArray &sound)
{
    const QByteArray good = wav(sound);
    return good.left(12) + QByteArray("junk\0\0\0\0", 8).repeated(WavChunks::kMaxChunks) + good.mid(12);
}

const QByteArray A(4000, 'a'), B((1 << 20) + 4004, 'b'), C(800, 'c');
} // namespace

class WavPartsTest : public QObject
{
    Q_OBJECT

private slots:
    void headerBytes();
    void sizesAreClamped();
    void join_data();
    void join();
    void fullDiskLosesNoSound();
    void followsTheClock_data();
    void followsTheClock();
};

void WavPartsTest::headerBytes()
{
    WavHeader header = WavHeader::pcm(48000, 2, 16);
    header.formatTag = WavHeader::kIeeeFloat;
    header.setDataSize(0x01020304);
    const QByteArray bytes = header.toBytes();
    QCOMPARE(bytes, QByteArray::fromHex("52494646 28030201 57415645 666d7420 10000000 0300 0200 80bb0000 00ee0200 0400 "
                                        "1000 64617461 04030201"));
    QCOMPARE(WavHeader::fromBytes(bytes.constData()).toBytes(), bytes);
    QVERIFY(WavHeader::isRiffWave(bytes.constData()));
    QVERIFY(!WavHeader::isRiffWave("RIFF\0\0\0\0AVI "));
}

void WavPartsTest::sizesAreClamped()
{
    WavHeader header;
    header.setDataSize((qint64(1) << 32) - 36);
    QCOMPARE(header.dataSize, 0xffffffdcu);
    QCOMPARE(header.riffSize, 0xffffffffu);
    header.setDataSize(qint64(5) << 32);
    QCOMPARE(header.dataSize, 0xffffffffu);
}

void WavPartsTest::join_data()
{
    // An empty part stands for a missing file. The log is that of system audio, see join().
    const TestTable<QList<QByteArray>, QByteArray, QStringList, QList<int>> row("parts", "output", "log", "kept");
    const QByteArray nothing("(no file)");
    const QString unopened("无法打开分段文件:"), tooShort("分段文件数据不足:"), remains("目录下仍有残留分段文件:"),
        noHeader("首分段头部读取失败:"), noResult("合并后的文件无效或不存在:");
    const QByteArray list = "LIST" + SoundFile::littleEndian<quint32>({6}) + "INFO12";
    const auto whole = [](const QByteArray &sound) { return wav(sound, 44100, sound.size()); };

    row("none", {}, nothing, {"没有分段文件需要合并"}, {});
    row("one is renamed unchanged", {wav(A, 44100, 17)}, wav(A, 44100, 17), {}, {});
    row("one with a longer header", {longWav(A)}, whole(A), {}, {});
    row("one without a header", {A}, A, {}, {});
    row("a missing one", {""}, nothing, {"重命名分段文件失败:", noResult}, {});
    row("several", {wav(A), wav(B, 44100, 5), wav(C)}, whole(A + B + C), {}, {});
    row("without sound", {wav(""), wav("")}, whole(""), {noResult}, {});
    row("another format", {wav(A), wav(C, 48000)}, whole(A + C), {"WAV分段格式不匹配，播放可能失败!"}, {});
    row("missing and short parts", {wav(A), "", "RIFFshort", wav(C)}, whole(A + C), {unopened, tooShort, remains}, {2});
    row("the first is missing", {"", wav(B), wav(C)}, whole(B + C), {unopened}, {});
    row("the first is short", {"RIFF", wav(B), wav(C)}, whole(B + C), {tooShort, remains}, {0});
    row("bare samples after the first", {wav(A), B, C}, whole(A + B + C), {}, {});
    row("bare samples first", {A, wav(C)}, whole(A + C), {}, {});
    row("bare samples only", {A, B}, nothing, {noHeader, noHeader, noResult, remains}, {0, 1});
    row("chunks behind the sound", {wav(A, 44100, A.size()) + list, wav(C, 44100, C.size()) + list}, whole(A + C), {},
        {});
    row("longer headers", {longWav(A), wav(B), longWav(C)}, whole(A + B + C), {}, {});
    row("more chunks than are read", {wav(A), hostileWav(C)}, whole(A + hostileWav(C).mid(WavHeader::kSize)),
        {"WAV分段格式不匹配，播放可能失败!"}, {});
    row("an incomplete frame", {wav(A + "xyz"), wav(C)}, whole(A + C), {}, {});
}

void WavPartsTest::join()
{
    QFETCH(QList<QByteArray>, parts);
    QFETCH(QByteArray, output);
    QFETCH(QList<int>, kept);
    QFETCH(QStringList, log);
    for (const bool isMicrophone : {false, true}) {
        const QTemporaryDir directory;
        const QString outputPath = directory.filePath("sound.wav");
        QStringList paths;
        QStringList expectedFiles;
        for (int i = 0; i < parts.size(); ++i) {
            const QString name = QString("sound_part%1.wav").arg(i);
            paths << directory.filePath(name);
            if (!parts[i].isEmpty())
                writeFile(paths.last(), parts[i]);
            if (kept.contains(i))
                expectedFiles << name;
        }
        if (output != "(no file)")
            expectedFiles.prepend("sound.wav");

        LogCapture logged;
        const QString problem =
            isMicrophone ? mergeMicrophoneParts(paths, outputPath) : mergePartFiles(paths, outputPath);
        QStringList texts;
        for (const QString &line : logged.take())
            texts << line.mid(2).section(' ', 0, 0);
        QStringList expected = log;
        if (isMicrophone) {
            expected.removeAll("目录下仍有残留分段文件:");
            for (QString &text : expected)
                text.replace("重命名分段", "重命名麦克风分段")
                    .replace("无法打开分段", "无法打开麦克风分段")
                    .replace("WAV分段", "麦克风WAV分段")
                    .replace("合并后的文件", "合并后的麦克风文件");
            expected.replaceInStrings(QRegularExpression("^分段"), "麦克风分段");
        }
        QCOMPARE(texts, expected);
        QVERIFY2(readFile(outputPath) == output, isMicrophone ? "microphone" : "system audio");
        QCOMPARE(QDir(directory.path()).entryList(QDir::Files), expectedFiles);
        QCOMPARE(!problem.isEmpty(), output == "(no file)" && !kept.isEmpty());
        for (const int i : kept)
            QCOMPARE(readFile(paths[i]), parts[i]);
    }
}

/// A join that fails or dies half-way leaves the parts as they were.
void WavPartsTest::fullDiskLosesNoSound()
{
    const QTemporaryDir directory;
    const QString output = directory.filePath("s.wav");
    const QStringList paths{directory.filePath("s_part0.wav"), directory.filePath("s_part1.wav"),
                            directory.filePath("s_part2.wav")};
    const QList<QByteArray> sounds{A, B, C};
    for (int i = 0; i < 3; ++i)
        writeFile(paths[i], wav(sounds[i]));
    for (const qint64 space : {0, 20, WavHeader::kSize, WavHeader::kSize + A.size() + B.size() / 2}) {
        QString problem;
        {
            const FileSizeLimit limit{quint64(space)};
            problem = mergePartFiles(paths, output);
        }
        QVERIFY2(problem.contains(FileSizeLimit::errorText()), qPrintable(problem));
        QVERIFY(!QFile::exists(output));
        QCOMPARE(QDir(directory.path()).entryList(QDir::Files),
                 (QStringList{"s_part0.wav", "s_part1.wav", "s_part2.wav"}));
        for (int i = 0; i < 3; ++i)
            QVERIFY(readFile(paths[i]) == wav(sounds[i]));
    }
    writeFile(output + ".tmp", "left by a process that died");
    QCOMPARE(mergePartFiles(paths, output), QString());
    QVERIFY(readFile(output) == wav(A + B + C, 44100, (A + B + C).size()));
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files), QStringList{"s.wav"});
}

void WavPartsTest::followsTheClock_data()
{
    const TestTable<double, int, int, int> row("rate", "jumpMs", "cuts", "gaps");
    row("exact", 1.0, 0, 0, 0);
    row("fast device", 1.0005, 0, 0, 0);
    row("slow device", 0.9995, 0, 0, 0);
    row("jitter", 1.0, 15, 0, 0);
    row("sound is missing", 1.0, 3000, 0, 1);
    row("more sound than time", 1.0, -3000, 1, 0);
}

/// A device numbers its samples, from a moment before the part begins. `rate` is the speed of its clock; after 100 s,
/// it states times that differ by `jumpMs`. In the file, each sample is where the clock had it. Deviations are
/// corrected by single samples, in `cuts` or `gaps`.
void WavPartsTest::followsTheClock()
{
    QFETCH(double, rate);
    QFETCH(int, jumpMs);
    QFETCH(int, cuts);
    QFETCH(int, gaps);
    constexpr int kRate = 1000; // a sample a millisecond
    constexpr int kPacketMs = 40;
    constexpr int kFirst = -25;
    constexpr int kSamples = 200 * kRate;
    constexpr int kEndMs = 190'000;
    constexpr qint64 kStartMs = 500'000;
    const QTemporaryDir directory;
    WavHeader format = WavHeader::pcm(kRate, 1, 32);
    format.formatTag = WavHeader::kIeeeFloat;
    WavPartWriter writer(format);
    QVERIFY(writer.open(directory.filePath("part.wav"), kStartMs));
    const auto timeOf = [&](int sample) { return sample / rate + (sample >= kFirst + kSamples / 2 ? jumpMs : 0); };
    for (int first = kFirst; first < kSamples; first += kPacketMs) {
        if (first == kFirst + kSamples / 2) // a pause will begin later
            writer.setEnd(kStartMs + kEndMs);
        QVector<float> packet;
        for (int i = 0; i < kPacketMs; ++i)
            packet << float(first + i);
        writer.writePacket(reinterpret_cast<const char *>(packet.constData()), packet.size() * qint64(sizeof(float)),
                           kStartMs + std::lround(timeOf(first)));
    }
    writer.close();

    WavHeader header;
    const QVector<float> sound = SoundFile::exactSamples(directory.filePath("part.wav"), &header);
    QCOMPARE(sound.size(), kEndMs);
    const int toleranceMs = 5 + (qAbs(jumpMs) < 25 ? qAbs(jumpMs) : 0);
    int foundCuts = 0;
    int foundGaps = 0;
    for (int at = 1; at < kEndMs - toleranceMs; ++at) {
        const int sample = int(sound[at]);
        const int before = int(sound[at - 1]);
        foundGaps += sample == 0 && before > 0 ? 1 : 0;
        foundCuts += before > 0 && sample > before + 2 ? 1 : 0;
        if (sample != 0)
            QVERIFY2(std::abs(timeOf(sample) - at) <= toleranceMs, qPrintable(QString("%1 at %2").arg(sample).arg(at)));
    }
    QCOMPARE(foundGaps, gaps);
    QCOMPARE(foundCuts, cuts);
}

QTEST_GUILESS_MAIN(WavPartsTest)
#include "tst_wav_parts.moc"
