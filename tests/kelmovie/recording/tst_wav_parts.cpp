#include "kelmovie/support/SoundFile.h"
#include "recording/wav/InterruptedSoundRepair.h"
#include "recording/wav/WavChunks.h"
#include "recording/wav/WavPartMerger.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"

#include <QTemporaryDir>
#include <QtTest>

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
    void microphoneSoundKeepsItsTime();
    void repairsInterruptedSound_data();
    void repairsInterruptedSound();
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
    const auto whole = [](const QByteArray &sound) { return wav(sound, 44100, sound.size()); };

    row("none", {}, nothing, {"没有分段文件需要合并"}, {});
    row("one is renamed unchanged", {wav(A, 44100, 17)}, wav(A, 44100, 17), {}, {});
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

/// All sound is in the output, which is playable, or in a part that still exists.
void WavPartsTest::fullDiskLosesNoSound()
{
    const QTemporaryDir directory;
    const QStringList paths{directory.filePath("s_part0.wav"), directory.filePath("s_part1.wav"),
                            directory.filePath("s_part2.wav")};
    writeFile(paths[0], wav(A));
    writeFile(paths[1], wav(B));
    writeFile(paths[2], wav(C));
    QString problem;
    {
        const FileSizeLimit limit(WavHeader::kSize + A.size() + B.size() / 2);
        problem = mergePartFiles(paths, directory.filePath("s.wav"));
    }
    QVERIFY2(problem.contains("s_part1.wav"), qPrintable(problem));
    QVERIFY(readFile(directory.filePath("s.wav")) == wav(A, 44100, A.size()));
    QVERIFY(!QFile::exists(paths[0]));
    QVERIFY(readFile(paths[1]) == wav(B));
    QVERIFY(readFile(paths[2]) == wav(C));
}

/// 1000 frames of 4 bytes a second: one per millisecond.
void WavPartsTest::microphoneSoundKeepsItsTime()
{
    const QTemporaryDir directory;
    QStringList paths;
    for (int i = 0; i < 4; ++i)
        paths << directory.filePath(QString("m_part%1.wav").arg(i));
    writeFile(paths[0], wav(QByteArray(400 * 4, 'a'), 1000)); // started late, and was recorded 10 ms too long
    writeFile(paths[1], wav(QByteArray(90 * 4, 'b'), 1000));  // delivered too little
    writeFile(paths[3], wav(QByteArray(50 * 4, 'd'), 1000));  // follows a part that was never written
    QCOMPARE(mergeMicrophoneParts(paths, directory.filePath("m.wav"),
                                  {{500, 110, 10}, {200, 20, 0}, {30, 0, 0}, {50, 0, 0}}),
             QString());
    const auto frames = [](int count, char value) { return QByteArray(count * 4, value); };
    const QByteArray joined =
        frames(110, 0) + frames(390, 'a') + frames(20, 0) + frames(90, 'b') + frames(90 + 30, 0) + frames(50, 'd');
    QVERIFY(readFile(directory.filePath("m.wav")) == wav(joined, 1000, joined.size()));

    writeFile(paths[0], wav(QByteArray(400 * 4, 'a'), 1000));
    mergeMicrophoneParts({paths[0]}, directory.filePath("late.wav"), {{500, 100, 0}});
    QVERIFY(readFile(directory.filePath("late.wav")) == wav(frames(100, 0) + frames(400, 'a'), 1000, 500 * 4));
}

void WavPartsTest::repairsInterruptedSound_data()
{
    const TestTable<int, QStringList> row("ageSeconds", "files");
    row("interrupted", 3600,
        {"microphone_2.wav", "system_audio_1.wav", "system_audio_9.wav", "system_audio_9_part0.wav"});
    row("still running", 0,
        {"microphone_2_part0.wav", "system_audio_1_part0.wav", "system_audio_1_part10.wav", "system_audio_1_part2.wav",
         "system_audio_9.wav", "system_audio_9_part0.wav"});
}

void WavPartsTest::repairsInterruptedSound()
{
    QFETCH(int, ageSeconds);
    QFETCH(QStringList, files);
    const QTemporaryDir directory;
    const QList<QPair<QString, QByteArray>> found{
        {"system_audio_1_part0.wav", wav(A)},  {"system_audio_1_part2.wav", wav(B)},
        {"system_audio_1_part10.wav", wav(C)}, {"microphone_2_part0.wav", wav(A)},
        {"system_audio_9.wav", wav(A)},        {"system_audio_9_part0.wav", wav(C)}};
    for (const auto &[name, bytes] : found) {
        writeFile(directory.filePath(name), bytes);
        QFile file(directory.filePath(name));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds), QFileDevice::FileModificationTime));
    }
    repairInterruptedSound(directory.path());
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files, QDir::Name), files);
    if (ageSeconds > 0) {
        const QByteArray sound = A + B + C;
        QVERIFY(readFile(directory.filePath("system_audio_1.wav")) == wav(sound, 44100, sound.size()));
    }
}

QTEST_GUILESS_MAIN(WavPartsTest)
#include "tst_wav_parts.moc"
