#include "kelmovie/support/SoundFile.h"
#include "recording/wav/RecordedSound.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace kel;

namespace
{

constexpr QLatin1String kSource("system_audio");

/// Stereo with 1000 frames a second.
QByteArray wav(const QByteArray &samples, int stated = -1)
{
    WavHeader header = WavHeader::pcm(1000, 2, 16);
    header.setDataSize(stated < 0 ? samples.size() : stated);
    if (stated == 0)
        header.riffSize = 0;
    return header.toBytes() + samples;
}

QByteArray chunk(const char *name, const QByteArray &content)
{
    return name + SoundFile::littleEndian<quint32>({quint32(content.size())}) + content;
}

/// Mono. `guidTag`: of an extensible format, which `tag` then is.
QByteArray file(quint16 tag, quint16 bits, const QByteArray &samples, int guidTag = -1)
{
    const auto blockAlign = quint16((bits + 7) / 8);
    QByteArray fmt = SoundFile::littleEndian<quint16>({tag, 1}) +
                     SoundFile::littleEndian<quint32>({1000, 1000U * blockAlign}) +
                     SoundFile::littleEndian<quint16>({blockAlign, bits});
    if (guidTag >= 0)
        fmt += SoundFile::littleEndian<quint16>({22, bits, 0, 0, quint16(guidTag)}) + QByteArray(14, 'g');
    return "RIFF????WAVE" + chunk("fmt ", fmt) + chunk("data", samples);
}

const QByteArray A(4000, 'a'), B(2000, 'b'), C(800, 'c');

} // namespace

class RecordedSoundTest : public QObject
{
    Q_OBJECT

private slots:
    void choosesFiles_data();
    void choosesFiles();
    void reads_data();
    void reads();
    void convertsSamples_data();
    void convertsSamples();
    void readsAnywhere();
    void refuses_data();
    void refuses();
};

void RecordedSoundTest::choosesFiles_data()
{
    // Oldest first.
    const TestTable<QVector<QPair<QString, QByteArray>>, QStringList> row("found", "chosen");
    const QString whole("system_audio_1.wav"), part0("system_audio_1_part0.wav"), part1("system_audio_1_part1.wav"),
        part2("system_audio_1_part2.wav"), part10("system_audio_1_part10.wav");

    row("none", {{"microphone_1.wav", wav(A)}, {"sound.wav", wav(A)}}, {});
    row("the newest", {{"system_audio_2.wav", wav(A)}, {whole, wav(B)}}, {whole});
    row("parts by number", {{part10, wav(A)}, {part2, wav(B)}, {part0, wav(C)}}, {part0, part2, part10});
    row("parts of the newest only", {{"system_audio_2_part1.wav", wav(A)}, {part0, wav(B)}}, {part0});
    row("left after joining", {{part0, wav(A)}, {whole, wav(A + B)}}, {whole});
    row("a failed join", {{part0, wav(A)}, {part1, wav(B)}, {whole, wav("")}}, {part0, part1});
    row("an empty output", {{part0, wav(A)}, {whole, ""}}, {part0});
    row("a join that was cut off", {{part0, wav(A)}, {part1, wav(B)}, {whole, wav(A + B.left(1000))}}, {part0, part1});
    row("garbage in place of the output", {{part0, wav(A)}, {whole, A + A}}, {part0});
    row("parts deleted as they were appended", {{part1, wav(B)}, {part2, wav(C)}, {whole, wav(A)}},
        {whole, part1, part2});
}

void RecordedSoundTest::choosesFiles()
{
    using Files = QVector<QPair<QString, QByteArray>>;
    QFETCH(Files, found);
    QFETCH(QStringList, chosen);
    const QTemporaryDir recording;
    const QString voice = recording.filePath("Voice/");
    int age = found.size();
    for (const auto &[name, bytes] : found) {
        writeFile(voice + name, bytes);
        QFile written(voice + name);
        QVERIFY(written.open(QIODevice::ReadWrite));
        QVERIFY(written.setFileTime(QDateTime::currentDateTime().addSecs(-age--), QFileDevice::FileModificationTime));
    }
    QStringList names;
    for (const QString &path : RecordedSound::files(recording.filePath("Voice"), kSource))
        names << QFileInfo(path).fileName();
    QCOMPARE(names, chosen);
}

void RecordedSoundTest::reads_data()
{
    const TestTable<QList<QByteArray>, QByteArray, QString, QStringList> row("files", "samples", "leftOut", "log");
    const QByteArray list = chunk("LIST", "INFO12"), fmt = wav("").mid(12, 24);

    row("one", {wav(A)}, A, "", {});
    row("parts", {wav(A), wav(B), wav(C)}, A + B + C, "", {});
    row("never finished", {wav(A, 0)}, A, "", {});
    row("with sizes of a second ago", {wav(A, 3000), wav(B, 0)}, A + B, "", {});
    row("with sizes beyond the end", {wav(A, 0x7fff0000)}, A, "", {});
    row("other chunks", {wav(A) + list + chunk("id3 ", "odd"), wav(B) + list}, A + B, "", {});
    row("other chunks in front", {"RIFF????WAVE" + chunk("JUNK", "odd") + '\0' + fmt + list + chunk("data", A)}, A, "",
        {});
    row("without padding", {"RIFF????WAVE" + chunk("JUNK", "odd") + fmt + chunk("data", A)}, A, "", {});
    row("sound in front", {"RIFF????WAVE" + chunk("data", A) + fmt}, A, "", {});
    row("incomplete frames", {wav(A + "xyz"), wav(B + "x")}, A + B, "", {});
    row("a short part", {wav(A), "RIFF", wav(C)}, A + C, "", {});
    row("a part with another format", {wav(A), file(1, 8, B)}, A + B, "",
        {"W [RecordedSound] @1 has another format than the file before"});
    row("a missing part", {"", wav(B)}, B, "@0: Failed to open file: " + qt_error_string(2), {});
    row("unusable parts in front", {A, "short", file(85, 16, A), wav(C)}, C,
        "@0: Invalid WAV file: RIFF header not found; @2: Unsupported audio format: 85", {});
}

void RecordedSoundTest::reads()
{
    QFETCH(QList<QByteArray>, files);
    QFETCH(QByteArray, samples);
    QFETCH(QString, leftOut);
    QFETCH(QStringList, log);
    const QTemporaryDir recording;
    QStringList paths;
    for (int i = 0; i < files.size(); ++i) {
        paths << recording.filePath(QString("Voice/%1.wav").arg(i));
        if (!files[i].isEmpty())
            writeFile(paths[i], files[i]);
        for (QString &line : log)
            line.replace(QString("@%1").arg(i), paths[i]);
        leftOut.replace(QString("@%1").arg(i), paths[i]);
    }
    LogCapture logged;
    RecordedSound sound(paths);
    QCOMPARE(logged.take(), log);
    QCOMPARE(sound.leftOut(), leftOut);
    QVERIFY2(sound.isOpen(), qPrintable(sound.errorString()));
    QCOMPARE(sound.durationMs(), qint64(samples.size() / 4));
    const QByteArray bytes = sound.readAll();
    QCOMPARE(bytes.left(WavHeader::kSize), wav(samples).left(WavHeader::kSize));
    QVERIFY(bytes.mid(WavHeader::kSize) == samples);
    QVERIFY(sound.atEnd());

    sound.limitTo(100);
    QVERIFY(sound.seek(0));
    QVERIFY(sound.readAll() == wav(samples.left(400)));
}

void RecordedSoundTest::convertsSamples_data()
{
    const TestTable<QByteArray, bool, QVector<float>> row("file", "asFloats", "floats"); // none: unchanged
    const QByteArray int24("\0\0\x80\xff\xff\x7f\0\0\0\0\0\xc0", 12);
    const QVector<float> from24{-1.0F, 8388607.0F / 8388608.0F, 0.0F, -0.5F};
    const auto int32 = SoundFile::littleEndian<qint32>({-2147483647 - 1, 0, 1 << 30});
    const auto float32 = SoundFile::littleEndian<float>({-1.0F, 0.25F});
    const auto float64 = SoundFile::littleEndian<double>({-1.0, 0.25});

    row("8 bits", file(1, 8, int24), true, {});
    row("16 bits", file(1, 16, int24), true, {});
    row("16 bits, extensible", file(65534, 16, int24, 1), true, {});
    row("24 bits", file(1, 24, int24), false, from24);
    row("24 bits, extensible", file(65534, 24, int24, 1), false, from24);
    row("20 bits in 24", file(1, 20, int24), false, from24);
    row("32 bits", file(1, 32, int32), false, {});
    row("32 bits as floats", file(1, 32, int32), true, {-1.0F, 0.0F, 0.5F});
    row("floats", file(3, 32, float32), true, {-1.0F, 0.25F});
    row("floats, extensible", file(65534, 32, float32, 3), false, {-1.0F, 0.25F});
    row("floats of 64 bits", file(3, 64, float64), false, {-1.0F, 0.25F});
}

void RecordedSoundTest::convertsSamples()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, asFloats);
    QFETCH(QVector<float>, floats);
    const QTemporaryDir recording;
    const QString path = recording.filePath("Voice/a.wav");
    writeFile(path, file);
    RecordedSound sound({path}, asFloats ? RecordedSound::Integers32::AsFloats : RecordedSound::Integers32::AsStored);
    QVERIFY2(sound.isOpen(), qPrintable(sound.errorString()));
    const QByteArray bytes = sound.readAll();
    const WavHeader header = WavHeader::fromBytes(bytes.constData());
    QCOMPARE(header.formatTag, floats.isEmpty() ? WavHeader::kPcm : WavHeader::kIeeeFloat);
    const QByteArray samples = bytes.mid(WavHeader::kSize);
    if (floats.isEmpty()) {
        QCOMPARE(samples, file.right(samples.size()));
        QCOMPARE(header.sampleRate, 1000U);
        return;
    }
    QCOMPARE(samples.size(), floats.size() * 4);
    for (int i = 0; i < floats.size(); ++i)
        QCOMPARE(qFromLittleEndian<float>(samples.constData() + i * 4), floats[i]);

    // Any byte can be read by itself.
    for (int i = 0; i < bytes.size(); ++i) {
        QVERIFY(sound.seek(i));
        QCOMPARE(sound.read(1), bytes.mid(i, 1));
    }
}

/// Also across files, and when files are deleted or shrink meanwhile: what is missing is silent.
void RecordedSoundTest::readsAnywhere()
{
    const QTemporaryDir recording;
    const QStringList paths{recording.filePath("Voice/a.wav"), recording.filePath("Voice/b.wav"),
                            recording.filePath("Voice/c.wav")};
    QByteArray numbers(1 << 20, Qt::Uninitialized);
    for (int i = 0; i < numbers.size() / 4; ++i)
        qToLittleEndian(i, numbers.data() + i * 4);
    const QByteArray first = numbers.left(400'000), second = numbers.mid(400'000, 100), third = numbers.mid(400'100);
    writeFile(paths[0], wav(first));
    writeFile(paths[1], wav(second));
    writeFile(paths[2], wav(third));
    RecordedSound sound(paths);
    const QByteArray all = wav(numbers);
    for (const int at : {0, 43, 44, 300'001, 400'043, 400'044, 400'143, 400'145, 44, 1'000'000}) {
        QVERIFY(sound.seek(at));
        QVERIFY2(sound.read(300'003) == all.mid(at, 300'003), qPrintable(QString::number(at)));
    }
    QVERIFY(QFile::remove(paths[1])); // joined meanwhile
    QVERIFY(sound.seek(0));
    QVERIFY(sound.readAll() == all);
    QVERIFY(QFile::resize(paths[2], qint64(1) << 43));
    QCOMPARE(RecordedSound({paths[2]}).durationMs(), qint64(12) * 24 * 3'600'000);
    QVERIFY(QFile::resize(paths[2], WavHeader::kSize + 1000));
    QVERIFY(sound.seek(0));
    QVERIFY(sound.readAll() == wav(first + second + third.left(1000) + QByteArray(third.size() - 1000, 0)));
}

void RecordedSoundTest::refuses_data()
{
    const TestTable<QByteArray, QString> row("file", "problem");
    const QString noHeader("Invalid WAV file: RIFF header not found"),
        noChunk("Invalid WAV file: missing fmt or data chunk");
    row("nothing", {}, "There is no sound file");
    row("empty", "", noHeader);
    row("garbage", QByteArray(1000, 'x'), noHeader);
    row("a truncated header", wav(A).left(30), noHeader);
    row("no sound", wav("").left(36) + chunk("LIST", "INFO12"), noChunk);
    row("12 bits", file(1, 12, A).replace(32, 2, QByteArray(2, '\0')), "Unsupported bits per sample: 12");
    row("a compressed format", file(85, 16, A), "Unsupported audio format: 85");
    row("no channels", file(1, 16, A).replace(22, 2, QByteArray(2, '\0')), "Invalid WAV file: 0 channels at 1000 Hz");
    row("too many channels", file(3, 32, A).replace(22, 2, QByteArray("\0\x40", 2)),
        "Invalid WAV file: 16384 channels at 1000 Hz");
    row("no rate", file(1, 16, A).replace(24, 4, QByteArray(4, '\0')), "Invalid WAV file: 1 channels at 0 Hz");
}

void RecordedSoundTest::refuses()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, problem);
    const QTemporaryDir recording;
    const QString path = recording.filePath("Voice/a.wav");
    QStringList paths;
    if (!file.isNull()) {
        writeFile(path, file);
        paths << path;
    }
    RecordedSound sound(paths);
    QVERIFY(!sound.isOpen());
    QCOMPARE(sound.errorString(), problem);
    QCOMPARE(sound.durationMs(), qint64(0));
}

QTEST_GUILESS_MAIN(RecordedSoundTest)
#include "tst_recorded_sound.moc"
