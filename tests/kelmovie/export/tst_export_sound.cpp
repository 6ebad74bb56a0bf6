#include "audio/processing/StretchedSound.h"
#include "export/ExportInternals.h"
#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/ScriptedDecoder.h"
#include "kelmovie/support/ScriptedEncoder.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"
#include "support/EnvironmentChange.h"
#include "support/FileSizeLimit.h"
#include "support/Files.h"
#include "support/Sound.h"

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelMovieUI.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QProcess>
#include <QtTest>

using namespace kel;

using SetUp = std::function<void()>;
Q_DECLARE_METATYPE(SetUp)

namespace
{

class Monitor : public KelExportMonitor
{
public:
    void exportProgress(int percent) override { reports.append(percent); }
    bool isExportCancelled() override { return !reports.isEmpty() && reports.last() >= cancelFromPercent; }

    QVector<int> reports;
    int cancelFromPercent = 101;
};

} // namespace

/// Exports recordings with sound as MP4 files, which the ffmpeg program decodes.
class ExportSoundTest : public QObject
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
    void placesFile_data();
    void placesFile();
    void exportsVideoWithoutSound();
    void fullDisk_data();
    void fullDisk();
    void cancelWhileMixing();
    void trimsAudioFile();

private:
    static constexpr double kSystemHertz = 440;
    static constexpr double kMicrophoneHertz = 1'000;

    void loadManager(const KelPlaybackRules &rules = {})
    {
        KelPlaybackDependencies dependencies = KelPlaybackDependencies::real();
        dependencies.decoders = scriptedDecoders(decoder);
        manager = PlaybackInternals::load(recording->path(), dependencies, rules);
        request.playbackManager = manager.get();
    }
    bool runExport(const KelExportDependencies &dependencies = KelExportDependencies::real())
    {
        const auto pipeline = ExportInternals::createPipeline(request, &monitor, dependencies);
        const bool isComplete = pipeline->run();
        error = pipeline->errorString();
        warning = pipeline->warningString();
        return isComplete;
    }
    /// Nothing of an export is left but its output.
    bool isTidy() const
    {
        return QDir(temporary->path()).isEmpty() &&
               QDir(outputDir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size() <= 1;
    }

    const QString defaultTemporaryPath = QDir::tempPath();
    std::unique_ptr<QTemporaryDir> temporary;
    std::unique_ptr<QTemporaryDir> outputDir;
    std::unique_ptr<RecordingOnDisk> recording;
    std::shared_ptr<DecoderScript> decoder;
    std::unique_ptr<KelPlaybackTrackManager> manager;
    KelExportRequest request;
    Monitor monitor;
    QString error;
    QString warning;
};

void ExportSoundTest::init()
{
    setTemporaryPath(defaultTemporaryPath);
    temporary = std::make_unique<QTemporaryDir>();
    outputDir = std::make_unique<QTemporaryDir>();
    // The recording clock ticks every 33 ms at 30 fps: 4 s have 121 frames.
    recording = std::make_unique<RecordingOnDisk>();
    recording->frames(121, 30)
        .set(&KelRecordingMetadata::durationMs, qint64(4'000))
        .sound("system_audio_20260101_101010.wav", Sound::make(4.0, Sound::tone(kSystemHertz, 0.4, 1.5, 2.5)).wav())
        .sound("microphone_20260101_101010.wav",
               Sound::make(4.0, Sound::tone(kMicrophoneHertz, 0.3), 44'100, 1).wav(false));
    setTemporaryPath(temporary->path());
    decoder = std::make_shared<DecoderScript>();
    decoder->frameCount = 121;
    request = KelExportRequest();
    request.outputPath = outputDir->filePath("out.mp4");
    monitor = Monitor();
    loadManager();
}

void ExportSoundTest::hasSound_data()
{
    QTest::addColumn<double>("speed");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<bool>("keepsPitch");

    for (double speed : {0.5, 1.0, 2.0}) {
        QTest::addRow("at %g", speed) << speed << -1 << -1 << false;
        QTest::addRow("a part at %g", speed) << speed << 1'000 << 3'200 << false;
        QTest::addRow("a part at %g with its pitch", speed) << speed << 1'000 << 3'200 << true;
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
    QVERIFY2(runExport(), qPrintable(error));
    QCOMPARE(warning, QString());
    const Sound sound = Sound::decode(request.outputPath);
    const double begin = from < 0 ? 0 : from / 1000.0;
    const double seconds = (to < 0 ? 4.0 : to / 1000.0 - begin) / speed;
    QVERIFY2(std::fabs(sound.seconds() - seconds) < 0.065, qPrintable(QString::number(sound.seconds())));
    const auto at = [&](double recorded) { return (recorded - begin) / speed; };
    const double pitch = keepsPitch && StretchedSound::supports(48'000, 2, speed) ? 1.0 : speed;
    const double system = kSystemHertz * pitch;
    const double microphone = kMicrophoneHertz * pitch;
    // Stretching shifts phases, which a long measurement would cancel out.
    const double end = keepsPitch ? at(1.52) + 0.1 : at(2.48);
    const double heard = sound.level(system, at(1.52), end);
    const double tolerance = keepsPitch ? 0.05 : 0.02;
    QVERIFY2(std::fabs(heard - 0.4) < tolerance, qPrintable(QString::number(heard)));
    QVERIFY(sound.level(system, at(begin), at(1.48)) < 0.02);
    QVERIFY(sound.level(system, at(2.52), at(3.1)) < 0.02);
    const double spoken =
        keepsPitch ? sound.level(microphone, at(1.52), end) : sound.level(microphone, at(begin + 0.05), at(3.1));
    QVERIFY2(std::fabs(spoken - 0.3) < tolerance, qPrintable(QString::number(spoken)));

    QCOMPARE(monitor.reports.last(), 100);
    QVERIFY(std::is_sorted(monitor.reports.cbegin(), monitor.reports.cend()));
    QVERIFY(isTidy());
}

void ExportSoundTest::matchesPlayback_data()
{
    QTest::addColumn<SetUp>("setUp");
    QTest::addColumn<double>("system");
    QTest::addColumn<double>("microphone");

    const auto row = [](const char *name, double system, double microphone, const SetUp &setUp) {
        QTest::newRow(name) << setUp << system << microphone;
    };
    row("system audio muted", 0.0, 0.3,
        [this] { PlaybackInternals::engine(*manager).voiceTrack()->setSystemAudioMuted(true); });
    row("system audio off", 0.0, 0.3,
        [this] { PlaybackInternals::engine(*manager).voiceTrack()->setSystemAudioEnabled(false); });
    row("microphone without volume", 0.4, 0.0,
        [this] { PlaybackInternals::engine(*manager).voiceTrack()->setMicrophoneVolume(0.0); });
    row("volume and gain", 0.2, 0.6, [this] {
        PlaybackInternals::engine(*manager).voiceTrack()->setSystemAudioVolume(0.5);
        PlaybackInternals::engine(*manager).voiceTrack()->setMicrophoneVolume(0.8);
        PlaybackInternals::engine(*manager).voiceTrack()->setMicrophoneGain(2.5);
    });
    row("no gain", 0.0, 0.3, [this] { PlaybackInternals::engine(*manager).voiceTrack()->setSystemAudioGain(0.0); });
    row("microphone not recorded", 0.4, 0.0, [this] {
        recording->set(&KelRecordingMetadata::microphoneAudio, false);
        loadManager();
    });
    row("both muted", 0.0, 0.0, [this] {
        PlaybackInternals::engine(*manager).voiceTrack()->setSystemAudioMuted(true);
        PlaybackInternals::engine(*manager).voiceTrack()->setMicrophoneMuted(true);
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
    QTest::addColumn<QStringList>("conversion"); // arguments of the ffmpeg program
    QTest::addColumn<SetUp>("damage");
    QTest::addColumn<double>("speed");
    QTest::addColumn<QString>("problem");

    const QString file = "system_audio_20260101_101010.wav";
    const auto path = [this, file] { return recording->path() + "/Voice/" + file; };
    const auto edit = [path](qint64 offset, const QByteArray &bytes) {
        QFile sound(path());
        QVERIFY(sound.open(QIODevice::ReadWrite) && sound.seek(offset) && sound.write(bytes) == bytes.size());
    };
    const auto cut = [path](int size) { QVERIFY(QFile::resize(path(), size)); };
    for (const double speed : {1.0, 2.0}) {
        const auto row = [&](const char *name, const QStringList &conversion, const SetUp &damage,
                             const QString &problem = {}) {
            QTest::addRow("%s at %g", name, speed) << conversion << damage << speed << problem;
        };
        row("24 bits, with other chunks", {"-c:a", "pcm_s24le"}, [] {});
        row("32 bits", {"-c:a", "pcm_s32le"}, [] {});
        row("surround", {"-c:a", "pcm_f32le", "-af", "pan=5.1|FL=c0|FR=c1"}, [] {});
        row("never finished", {}, [=] {
            edit(4, QByteArray(4, 0));
            edit(40, QByteArray(4, 0));
        });
        row("parts", {}, [=] {
            const QByteArray whole = readFile(path());
            writeFile(path().replace(".wav", "_part0.wav"), whole.left(800'044));
            writeFile(path().replace(".wav", "_part1.wav"), whole.left(44) + whole.mid(800'044));
            cut(44); // left by a join on a full disk
        });
        row(
            "compressed", {"-c:a", "adpcm_ms"}, [] {}, "Unsupported audio format: 2");
        row(
            "a truncated header", {}, [=] { cut(20); }, "RIFF header not found");
        row(
            "garbage", {}, [=] { edit(0, "garbage"); }, "RIFF header not found");
#ifdef Q_OS_UNIX
        row(
            "a pipe", {},
            [=] {
                QFile::remove(path());
                QCOMPARE(QProcess::execute("mkfifo", {path()}), 0);
            },
            file + " is not an ordinary file");
#endif
        row(
            "no directory", {}, [=] { QDir(QFileInfo(path()).path()).removeRecursively(); }, "no directory");
    }
}

/// Sound is exported, or the export says why it is not. Loading and exporting change nothing in the recording.
void ExportSoundTest::anySound()
{
    QFETCH(QStringList, conversion);
    QFETCH(SetUp, damage);
    QFETCH(double, speed);
    QFETCH(QString, problem);

    manager.reset();
    const QString path = recording->path() + "/Voice/system_audio_20260101_101010.wav";
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
    const double level = sound.level(kSystemHertz * speed, 1.6 / speed, 2.4 / speed);
    if (problem.isEmpty()) {
        QCOMPARE(warning, QString());
        QVERIFY2(std::fabs(level - 0.4) < 0.02, qPrintable(QString::number(level)));
        QVERIFY(std::fabs(sound.onset(0.5) - 1.5 / speed) < 0.01); // louder than the microphone alone
    } else {
        QVERIFY2(warning.contains(problem), qPrintable(warning));
        QVERIFY(level < 0.02);
    }
    QVERIFY(contents() == before);
    QVERIFY(isTidy());
}

void ExportSoundTest::placesFile_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("Matroska") << "out.mkv";
    QTest::newRow("name of another type") << "out.bin";
}

void ExportSoundTest::placesFile()
{
    QFETCH(QString, name);

    request.outputPath = outputDir->filePath(name);
    QFile old(request.outputPath);
    QVERIFY(old.open(QIODevice::WriteOnly) && old.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    old.close();
    const QFile::Permissions permissions = old.permissions();
    QVERIFY2(runExport(), qPrintable(error));
    QVERIFY(std::fabs(Sound::decode(request.outputPath).level(kMicrophoneHertz, 0.5, 3.5) - 0.3) < 0.02);
    QCOMPARE(QFileInfo(request.outputPath).permissions(), permissions);
    QVERIFY(isTidy());
}

void ExportSoundTest::exportsVideoWithoutSound()
{
    const auto encoder = std::make_shared<EncoderScript>(); // what it writes cannot be mixed
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("The sound could not be added: Cannot read video"));
    QVERIFY2(runExport(scriptedEncoders(encoder)), qPrintable(error));
    QVERIFY(warning.startsWith("The sound could not be added: Cannot read video"));
    QFile output(request.outputPath);
    QVERIFY(output.open(QIODevice::ReadOnly));
    QCOMPARE(output.readAll(), QByteArray("encoded"));
    QVERIFY(isTidy());
}

void ExportSoundTest::fullDisk_data()
{
    QTest::addColumn<double>("speed");

    QTest::newRow("while mixing") << 1.0;
    QTest::newRow("while the speed is changed") << 2.0;
}

void ExportSoundTest::fullDisk()
{
    QFETCH(double, speed);

    request.speed = speed;
    QFile old(request.outputPath);
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("with sound") == 10);
    old.close();
    const FileSizeLimit limit(30'000);
    QVERIFY(!runExport());
    QVERIFY2(error.contains(QRegularExpression("Cannot write .*/.*: " + FileSizeLimit::errorPattern())),
             qPrintable(error));
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll(), QByteArray("with sound"));
    QVERIFY(isTidy());
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
    const QString source = recording->path() + "/Voice/system_audio_20260101_101010.wav";
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
