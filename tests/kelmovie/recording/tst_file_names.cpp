#include "avcodec/DecodedVideo.h"
#include "kelmovie/support/ExportScene.h"
#include "kelmovie/support/InputFakes.h"
#include "kelmovie/support/RecordFakes.h"
#include "kelmovie/support/SavingConfigIO.h"
#include "support/FileNames.h"
#include "support/Sound.h"

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KelRecordingMetadata.h>

#include <QDirIterator>
#include <QImageReader>
#include <QtTest>

/// Records and exports under unusual names: each library opens files in its own way.
class FileNamesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }
    void recordsAndExports_data() { addFileNames(); }
    void recordsAndExports();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

void FileNamesTest::recordsAndExports()
{
    QFETCH(QString, name);
    const SavingConfigIO settings;
    const ScriptedInput input;
    ScreenScript script;
    script.pictureSize = QSize(64, 48);
    KelScreenManager::instance()->setBackend(std::make_unique<ScriptedBackend>(script));
    const auto putBack = qScopeGuard([] { KelScreenManager::instance()->setBackend(nullptr); });

    const QString dir = m_dir->filePath(name);
    KelMultiTrackRecorder recorder;
    QStringList errors;
    connect(&recorder, &KelMultiTrackRecorder::recordingError, this, [&](const QString &error) { errors << error; });
    KelMultiTrackRecorder::RecordConfig config;
    config.outputDir = dir;
    config.enableKeyboard = true;
    recorder.setRecordConfig(config);
    recorder.setRecordArea(QRect(0, 0, 64, 48));
    for (int round = 0; round < 2; ++round) { // the second recording moves the first to Previous-1
        script.captures = 0;
        QVERIFY2(recorder.startRecording(), qPrintable(recorder.lastError()));
        QTRY_VERIFY(script.captures > 3);
        recorder.stopRecording();
    }
    QCOMPARE(errors, QStringList());
    QVERIFY(QFile::exists(dir + "/Previous-1/TrackManager.meta"));
    QVERIFY(QDir(dir).mkpath("Voice"));
    QVERIFY(Sound::make(1, Sound::tone(440, 0.5)).save(dir + "/Voice/system_audio_20260101_000000.wav"));
    KelRecordingMetadata metadata;
    QVERIFY(KelRecordingMetadata::load(dir, &metadata));
    metadata.systemAudio = true;
    QVERIFY(metadata.save(dir));

    KelPlaybackTrackManager playback(dir, false);
    QVERIFY2(playback.isValidRecording(), qPrintable(playback.errorString()));
    const QStringList suffixes{"mp4", "gif", "png", "webp"};
    for (int format = 0; format < suffixes.size(); ++format) {
        KelExportRequest request;
        request.format = format;
        request.speed = 2; // creates a file for the adjusted sound, too
        request.trackDataDir = dir;
        request.playbackManager = &playback;
        request.outputPath = dir + "/" + name.section('/', -1) + '.' + suffixes[format];
        for (int round = 0; round < 2; ++round) { // the second replaces the first
            KelExportPipeline pipeline(request);
            QVERIFY2(pipeline.run(), qPrintable(pipeline.errorString()));
            QCOMPARE(pipeline.warningString(), QString());
        }
        if (format == 0)
            QCOMPARE(DecodedVideo("file:" + request.outputPath).errorString, "2 streams"); // video and sound
        else if (format == 1)
            QVERIFY(QImageReader(request.outputPath).canRead());
        else
            QVERIFY(QFileInfo(request.outputPath).size() > 0);
    }

    // Every file is in its place, and none has a slightly different name.
    const auto entries = [](const QString &path) {
        return QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    };
    QCOMPARE(entries(dir).size(), 6 + suffixes.size());
    QCOMPARE(entries(m_dir->path()).size(), 1);
}

QTEST_MAIN(FileNamesTest)
#include "tst_file_names.moc"
