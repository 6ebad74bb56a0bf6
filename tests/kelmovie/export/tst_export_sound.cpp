#include "audio/processing/StretchedSound.h"
#include "kelmovie/support/ExportFixture.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"
#include "support/FileSizeLimit.h"
#include "support/Sound.h"
#include "support/TestTable.h"

#include <KelMovie/KelMovieUI.h>

#include <QProcess>
#include <QtTest>

using namespace kel;

using SetUp = std::function<void()>;
Q_DECLARE_METATYPE(SetUp)

/// Exports recordings with sound as MP4 files, which the ffmpeg program decodes.
class ExportSoundTest : public QObject, ExportFixture
{
    Q_OBJECT

private slots:
    void init();
    void hasSound_data();
    void hasSound();
    void matchesPlayback_data();
    void matchesPlayback();
    void anySound_data();
    void anySound();
    void keepsPermissionsAndAnyName();
    void exportsVideoWithoutSound();
    void fullDisk();
    void cancelWhileMixing();
    void trimsAudioFile();

private:
    static constexpr double kSystemHertz = 440;
    static constexpr double kMicrophoneHertz = 1'000;

    using ExportFixture::runExport;
    bool runExport() { return runExport(KelExportDependencies::real()); }
    QString systemAudio() const { return recording->filePath("Voice/system_audio_20260101_101010.wav"); }
};

void ExportSoundTest::init()
{
    // The recording clock ticks every 33 ms at 30 fps: 4 s have 121 frames.
    reset(121, 30);
    static const QByteArray system = Sound::make(4.0, Sound::tone(kSystemHertz, 0.4, 1.5, 2.5)).wav();
    static const QByteArray voice = Sound::make(4.0, Sound::tone(kMicrophoneHertz, 0.3), 44'100, 1).wav(false);
    recording->set(&KelRecordingMetadata::durationMs, qint64(4'000))
        .sound("system_audio_20260101_101010.wav", system)
        .sound("microphone_20260101_101010.wav", voice);
    request.fps = 10;
    loadManager();
}

void ExportSoundTest::hasSound_data()
{
    const TestTable<double, int, int, bool> row("speed", "from", "to", "keepsPitch");
    for (double speed : {0.5, 1.0, 2.0}) {
        const QByteArray at = " at " + QByteArray::number(speed);
        row("all" + at, speed, -1, -1, false);
        row("a part" + at, speed, 1'000, 3'200, false);
        row("a part with its pitch" + at, speed, 1'000, 3'200, true);
    }
}

void ExportSoundTest::hasSound()
{
    QFETCH(double, speed);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(bool, keepsPitch);

    KelPlaybackRules rules;
    rules.keepsPitch = keepsPitch;
    loadManager(rules);
    request.speed = speed;
    request.trimStartMs = from;
    request.trimEndMs = to;
    request.fps = 30;
    QVERIFY2(runExport(), qPrintable(error));
    QCOMPARE(warning, QString());
    const Sound sound = Sound::decode(request.outputPath);
    // A part begins with frame 30 and, as that shows what has changed in the time before, half a frame earlier.
    const double begin = from < 0 ? 0 : 29.5 * 4 / 121;
    const auto at = [&](double recorded) { return (recorded - begin) / speed; };
    const double pitch = keepsPitch && StretchedSound::supports(48'000, 2, speed) ? 1.0 : speed;
    // Stretching shifts phases, which a long measurement would cancel out.
    const double end = keepsPitch ? at(1.52) + 0.1 : at(2.48);
    const double system = sound.level(kSystemHertz * pitch, at(1.52), end);
    const double microphone = sound.level(kMicrophoneHertz * pitch, at(1.52), end);
    // Only while both are heard is the sound that loud.
    const double starts = sound.onset(0.45) - at(1.5);
    const double ends = sound.end(0.45) - at(2.5);
    const double lasts = sound.seconds() - (to < 0 ? 4.0 : (to - from) / 1000.0) / speed;
    const QString found =
        QString("%1, %2; %3, %4, %5 s off").arg(system).arg(microphone).arg(starts).arg(ends).arg(lasts);
    const double late = keepsPitch ? 0.015 : 0.003;
    const bool isInTime = std::fabs(starts) < late && std::fabs(ends) < late && std::fabs(lasts) < 0.045;
    const double tolerance = keepsPitch ? 0.05 : 0.02;
    QVERIFY2(std::fabs(system - 0.4) < tolerance && std::fabs(microphone - 0.3) < tolerance && isInTime,
             qPrintable(found));
    QVERIFY(sound.level(kSystemHertz * pitch, at(begin), at(1.48)) < 0.02);
    QVERIFY(sound.level(kSystemHertz * pitch, at(2.52), at(3.1)) < 0.02);
    QCOMPARE(monitor.reports.last(), 100);
    QVERIFY(std::is_sorted(monitor.reports.cbegin(), monitor.reports.cend()));
    QVERIFY(isTidy());
}

void ExportSoundTest::matchesPlayback_data()
{
    const TestTable<double, double, SetUp> row("system", "microphone", "setUp");
    row("system audio muted", 0.0, 0.3, [this] { engine().voiceTrack()->setSystemAudioMuted(true); });
    row("system audio off", 0.0, 0.3, [this] { engine().voiceTrack()->setSystemAudioEnabled(false); });
    row("microphone without volume", 0.4, 0.0, [this] { engine().voiceTrack()->setMicrophoneVolume(0.0); });
    row("quiet", 0.04, 0.3, [this] { engine().voiceTrack()->setSystemAudioVolume(0.1); });
    row("volume and gain", 0.2, 0.6, [this] {
        engine().voiceTrack()->setSystemAudioVolume(0.5);
        engine().voiceTrack()->setMicrophoneVolume(0.8);
        engine().voiceTrack()->setMicrophoneGain(2.5);
    });
    row("no gain", 0.0, 0.3, [this] { engine().voiceTrack()->setSystemAudioGain(0.0); });
    row("microphone not recorded", 0.4, 0.0, [this] {
        recording->set(&KelRecordingMetadata::microphoneAudio, false);
        loadManager();
    });
    row("both muted", 0.0, 0.0, [this] {
        engine().voiceTrack()->setSystemAudioMuted(true);
        engine().voiceTrack()->setMicrophoneMuted(true);
    });
    row("directory without sound", 0.0, 0.0, [this] { request.trackDataDir = outputDir->path(); });
    row("no voice directory", 0.0, 0.0, [this] {
        manager.reset(); // it has the sound file open
        QDir(recording->path() + "/Voice").removeRecursively();
        loadManager();
    });
}

void ExportSoundTest::matchesPlayback()
{
    QFETCH(SetUp, setUp);
    QFETCH(double, system);
    QFETCH(double, microphone);

    setUp();
    QVERIFY2(runExport(), qPrintable(error));
    const Sound sound = Sound::decode(request.outputPath);
    QCOMPARE(sound.samples.empty(), system + microphone == 0.0);
    QVERIFY(std::fabs(sound.level(kSystemHertz, 1.6, 2.4) - system) < 0.02);
    QVERIFY(std::fabs(sound.level(kMicrophoneHertz, 1.6, 2.4) - microphone) < 0.02);
    QVERIFY(isTidy());
}

void ExportSoundTest::anySound_data()
{
    // Arguments of the ffmpeg program, what is done to the file then, and its level or why it cannot be played.
    const TestTable<double, QStringList, SetUp, double, QString> row("speed", "conversion", "damage", "level",
                                                                     "problem");
    const auto path = [this] { return systemAudio(); };
    const auto edit = [path](qint64 offset, const QByteArray &bytes) {
        QFile sound(path());
        QVERIFY(sound.open(QIODevice::ReadWrite) && sound.seek(offset) && sound.write(bytes) == bytes.size());
    };
    for (const double speed : {1.0, 2.0}) {
        const auto good = [&](const char *name, const QStringList &conversion, const SetUp &damage, double level) {
            row(QByteArray(name) + " at " + QByteArray::number(speed), speed, conversion, damage, level, {});
        };
        good(
            "24 bits, with other chunks", {"-c:a", "pcm_s24le"}, [] {}, 0.4);
        good(
            "32 bits", {"-c:a", "pcm_s32le"}, [] {}, 0.4);
        good(
            "5.1, center", {"-c:a", "pcm_f32le", "-af", "pan=5.1|FC=c0"}, [] {}, 0.4 * M_SQRT1_2);
        const SetUp unfinished = [=] {
            edit(4, QByteArray(4, 0));
            edit(40, QByteArray(4, 0));
        };
        good("never finished", {}, unfinished, 0.4);
        const SetUp parts = [=] {
            const QByteArray whole = readFile(path());
            writeFile(path().replace(".wav", "_part0.wav"), whole.left(800'044));
            writeFile(path().replace(".wav", "_part1.wav"), whole.left(44) + whole.mid(800'044));
            QVERIFY(QFile::resize(path(), 44)); // left by a join on a full disk
        };
        good("parts", {}, parts, 0.4);
    }
    const auto bad = [&](const char *name, const QStringList &conversion, const SetUp &damage, const char *problem) {
        row(name, 2.0, conversion, damage, 0.0, problem);
    };
    bad(
        "compressed", {"-c:a", "adpcm_ms"}, [] {}, "Unsupported audio format: 2");
    bad(
        "a truncated header", {}, [=] { QVERIFY(QFile::resize(path(), 20)); }, "RIFF header not found");
    const SetUp emptied = [=] { QVERIFY(QFile::resize(path(), 44)); };
    bad("no samples", {}, emptied, "speed of %1 stays unchanged: No audio data found");
    bad(
        "garbage", {}, [=] { edit(0, "garbage"); }, "RIFF header not found");
    const SetUp removed = [=] { QDir(QFileInfo(path()).path()).removeRecursively(); };
    bad("no directory", {}, removed, "no directory");
#ifdef Q_OS_UNIX
    const SetUp pipe = [=] { QVERIFY(QFile::remove(path()) && QProcess::execute("mkfifo", {path()}) == 0); };
    bad("a pipe", {}, pipe, "system_audio_20260101_101010.wav is not an ordinary file");
#endif
}

/// Sound is exported, or the export says why it is not. Loading and exporting change nothing in the recording.
void ExportSoundTest::anySound()
{
    QFETCH(double, speed);
    QFETCH(QStringList, conversion);
    QFETCH(SetUp, damage);
    QFETCH(double, level);
    QFETCH(QString, problem);

    manager.reset();
    const QString path = systemAudio();
    if (!conversion.isEmpty()) {
        QVERIFY(QFile::rename(path, path + ".original"));
        HostProgram::run("ffmpeg",
                         QStringList{"-v", "error", "-i", path + ".original"} + conversion + QStringList{path});
    }
    damage();
    const auto contents = [voice = QDir(QFileInfo(path).path())] {
        QMap<QString, QByteArray> files;
        for (const QString &name : voice.entryList(QDir::Files))
            files.insert(name, readFile(voice.filePath(name)));
        return files;
    };
    const auto before = contents();
    loadManager();
    request.speed = speed;
    QVERIFY2(runExport(), qPrintable(error));
    const Sound sound = Sound::decode(request.outputPath);
    const double heard = sound.level(kSystemHertz * speed, 1.6 / speed, 2.4 / speed);
    QVERIFY2(std::fabs(heard - level) < 0.02, qPrintable(QString::number(heard)));
    QVERIFY2(problem.isEmpty() ? warning.isEmpty() : warning.contains(problem.replace("%1", path)),
             qPrintable(warning));
    if (problem.isEmpty())
        QVERIFY(std::fabs(sound.onset(0.45) - 1.5 / speed) < 0.005); // louder than the microphone alone
    QVERIFY(contents() == before);
    QVERIFY(isTidy());
}

void ExportSoundTest::keepsPermissionsAndAnyName()
{
    for (const char *name : {"out.mkv", "out.bin"}) {
        init();
        request.outputPath = outputDir->filePath(name);
        writeFile(request.outputPath, "old");
        QVERIFY(QFile::setPermissions(request.outputPath, QFile::ReadOwner | QFile::WriteOwner));
        const QFile::Permissions permissions = QFileInfo(request.outputPath).permissions();
        QVERIFY2(runExport(), qPrintable(error));
        QVERIFY(std::fabs(Sound::decode(request.outputPath).level(kMicrophoneHertz, 0.5, 3.5) - 0.3) < 0.02);
        QCOMPARE(QFileInfo(request.outputPath).permissions(), permissions);
        QVERIFY(isTidy());
    }
}

void ExportSoundTest::exportsVideoWithoutSound()
{
    // What the scripted encoder writes cannot be mixed.
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("The sound could not be added: Cannot read video"));
    QVERIFY2(runExport(scriptedEncoders(encoder)), qPrintable(error));
    QVERIFY(warning.startsWith("The sound could not be added: Cannot read video"));
    QCOMPARE(output(), QByteArray("encoded"));
    QVERIFY(isTidy());
}

void ExportSoundTest::fullDisk()
{
    for (const double speed : {1.0, 2.0}) { // while mixing, while the speed is changed
        init();
        request.speed = speed;
        writeFile(request.outputPath, "with sound");
        const FileSizeLimit limit(30'000);
        QVERIFY(!runExport());
        QVERIFY2(error.contains(QRegularExpression("Cannot write .*/.*: " + FileSizeLimit::errorPattern())),
                 qPrintable(error));
        QCOMPARE(failure, KelExportPipeline::Failure::Sound);
        QCOMPARE(output(), QByteArray("with sound"));
        QVERIFY(isTidy());
    }
}

void ExportSoundTest::cancelWhileMixing()
{
    request.speed = 0.1; // takes long enough to be cancelled
    monitor.cancelFromPercent = 96;
    QVERIFY(!runExport());
    QCOMPARE(error, QString());
    QVERIFY(!QFile::exists(request.outputPath));
    QVERIFY(isTidy());
}

void ExportSoundTest::trimsAudioFile()
{
    const QString source = systemAudio();
    const QString trimmed = outputDir->filePath("out.m4a");
    QCOMPARE(KelMovieUI::createTrimmedAudioFile(source, 1'000, 3'000, trimmed), trimmed);
    const Sound sound = Sound::decode(trimmed);
    QVERIFY2(std::fabs(sound.seconds() - 2.0) < 0.022, qPrintable(QString::number(sound.seconds())));
    QVERIFY2(std::fabs(sound.onset(0.2) - 0.5) < 0.003, qPrintable(QString::number(sound.onset(0.2))));
    QVERIFY2(std::fabs(sound.end(0.2) - 1.5) < 0.003, qPrintable(QString::number(sound.end(0.2))));
    QVERIFY(isTidy());

    QTest::ignoreMessage(QtWarningMsg, "Failed to create trimmed audio file");
    QCOMPARE(KelMovieUI::createTrimmedAudioFile(source + "x", 0, 100, trimmed), QString());
    QCOMPARE(Sound::decode(trimmed).seconds(), sound.seconds());
    QVERIFY(isTidy());
    setTemporaryPath("/proc"); // where no file can be created
    QTest::ignoreMessage(QtWarningMsg, "Failed to create minimal video file for audio trimming");
    QCOMPARE(KelMovieUI::createTrimmedAudioFile(source, 0, 100, trimmed), QString());
}

QTEST_MAIN(ExportSoundTest)
#include "tst_export_sound.moc"
