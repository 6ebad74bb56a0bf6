#include "RecordFakes.h"
#include "record/KelMovieUI.h"
#include "record/KelMultiTrackRecorder.h"
#include "record/KelRecordTrackManager.h"
#include "record/KelRecordingMetadata.h"
#include "screen/KelScreenManager.h"

#include "support/LogCapture.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <optional>

namespace
{
/// A screen that a test describes; every streamer shows the same.
class ScriptedBackend : public KelScreenBackend
{
public:
    ScriptedBackend(ScreenScript &script, const QString &error)
        : m_script(script)
        , m_error(error)
    {
    }
    QString errorString() const override { return m_error; }
    std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &) override
    {
        return std::make_unique<ScriptedStreamer>(m_script);
    }

private:
    ScreenScript &m_script;
    const QString m_error;
};

void writeFile(const QString &path, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

QStringList entries(const QString &path)
{
    QStringList names = QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    names.sort(); // whatever the locale
    return names;
}
} // namespace

class TestRecorder : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void beginsWithTheDefaults();
    void goesThroughItsStates();
    void refusesToStart_data();
    void refusesToStart();
    void failedStartLeavesNothing();
    void recordsAgainAndKeepsTheEarlierRecording();
    void logsAStop();
    void controlsOfMissingTracksWarn();
    void trackFailureIsSignalledOnce();
    void failureAtStopComesBeforeStopped();
    void stopsAtTheFrameLimit();
    void hostMayStartAnewWhenItHearsOfTheStop();
    void exportNeedsARecording();
    void uselessRecordingCannotBeExported();

private:
    KelMultiTrackRecorder *createRecorder();
    QString outputDir() const { return m_dir->filePath("recording"); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::optional<ScreenScript> m_script;
    std::unique_ptr<KelMovieUI> m_ui;
    QStringList m_signals; // in the order of their emission
};

void TestRecorder::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_script.emplace();
    m_script->pictureSize = QSize(64, 48);
    KelScreenManager::instance()->setBackend(std::make_unique<ScriptedBackend>(*m_script, QString()));
    m_ui = std::make_unique<KelMovieUI>();
    m_signals.clear();
}

void TestRecorder::cleanup()
{
    m_ui.reset();
    KelScreenManager::instance()->setBackend(nullptr);
}

KelMultiTrackRecorder *TestRecorder::createRecorder()
{
    KelMultiTrackRecorder *recorder = m_ui->createMultiTrackRecorder();
    using R = KelMultiTrackRecorder;
    connect(recorder, &R::recordingStarted, this, [this] { m_signals << "started"; });
    connect(recorder, &R::recordingStopped, this, [this] { m_signals << "stopped"; });
    connect(recorder, &R::recordingPaused, this, [this] { m_signals << "paused"; });
    connect(recorder, &R::recordingResumed, this, [this] { m_signals << "resumed"; });
    connect(recorder, &R::recordingError, this, [this](const QString &error) { m_signals << "error: " + error; });
    R::RecordConfig config;
    config.outputDir = outputDir();
    config.enableMouse = false;
    recorder->setRecordConfig(config);
    recorder->setRecordArea(QRect(0, 0, 64, 48));
    return recorder;
}

void TestRecorder::beginsWithTheDefaults()
{
    QCOMPARE(KelMovieUI::version(), QString("2.0.0-multitrack"));
    const KelMultiTrackRecorder *recorder = m_ui->createMultiTrackRecorder();
    QCOMPARE(recorder->parent(), m_ui.get());
    QVERIFY(recorder->recordArea().isEmpty());
    const auto config = recorder->recordConfig();
    QCOMPARE(config.outputDir, QString("./KelRecordData"));
    QCOMPARE(config.fps, 25);
    QVERIFY(config.enableScreen && config.enableMouse && config.mouseCaptureEnabled);
    QVERIFY(!config.enableKeyboard && !config.enableSystemAudio && !config.enableMicrophone);
    QVERIFY(!recorder->isRecording() && !recorder->isPaused() && !recorder->playbackManager());
}

void TestRecorder::goesThroughItsStates()
{
    KelMultiTrackRecorder *recorder = createRecorder();
    recorder->pauseRecording();
    recorder->stopRecording();
    QCOMPARE(m_signals, QStringList());

    QVERIFY(recorder->startRecording());
    QVERIFY(recorder->isRecording() && !recorder->isPaused());
    QVERIFY(!recorder->startRecording());
    recorder->pauseRecording();
    QVERIFY(recorder->isRecording() && recorder->isPaused());
    recorder->pauseRecording();
    QVERIFY(recorder->startRecording());
    QVERIFY(recorder->isRecording() && !recorder->isPaused());
    QTRY_VERIFY(m_script->captures > 2);
    recorder->pauseRecording();
    recorder->stopRecording();
    QVERIFY(!recorder->isRecording() && !recorder->isPaused());
    QCOMPARE(m_signals, (QStringList{"started", "paused", "resumed", "paused", "stopped"}));
    QCOMPARE(entries(outputDir()), (QStringList{"Screen", "TrackManager.meta"}));
    QCOMPARE(entries(outputDir() + "/Screen"), (QStringList{"frame_indexes.dat", "screen_record.mp4"}));
}

void TestRecorder::refusesToStart_data()
{
    QTest::addColumn<QRect>("area");
    QTest::addColumn<int>("fps");
    QTest::addColumn<QString>("outputDir"); // %1 is a directory
    QTest::addColumn<QString>("screenError");
    QTest::addColumn<QString>("error"); // its beginning
    const QRect area(0, 0, 64, 48);
    const QString start = "Failed to start recording: ";
    QTest::newRow("no area") << QRect() << 25 << "%1/new" << QString() << "Record area not set";
    QTest::newRow("fps 0") << area << 0 << "%1/new" << QString()
                           << start + "The frame rate 0 is not between 1 and 1000";
    QTest::newRow("fps 1001") << area << 1001 << "%1/new" << QString()
                              << start + "The frame rate 1001 is not between 1 and 1000";
    QTest::newRow("no directory") << area << 25 << "" << QString() << start + "No output directory given";
    QTest::newRow("below a file") << area << 25 << "%1/file/new" << QString()
                                  << start + "Cannot create the directory %1/file/new";
    QTest::newRow("not writable") << area << 25 << "/proc/self" << QString()
                                  << start + "Cannot write to the directory /proc/self: ";
    QTest::newRow("no display") << area << 25 << "%1/new"
                                << "no display" << start + "no display";
}

void TestRecorder::refusesToStart()
{
    QFETCH(QRect, area);
    QFETCH(int, fps);
    QFETCH(QString, outputDir);
    QFETCH(QString, screenError);
    QFETCH(QString, error);
    writeFile(m_dir->filePath("file"), "bystander");
    KelScreenManager::instance()->setBackend(std::make_unique<ScriptedBackend>(*m_script, screenError));
    KelMultiTrackRecorder *recorder = createRecorder();
    auto config = recorder->recordConfig();
    config.fps = fps;
    config.outputDir = outputDir.replace("%1", m_dir->path());
    recorder->setRecordConfig(config);
    recorder->setRecordArea(area);
    QVERIFY(!recorder->startRecording());
    error.replace("%1", m_dir->path());
    QCOMPARE(m_signals.size(), 1);
    QVERIFY2(m_signals[0].startsWith("error: " + error), qPrintable(m_signals[0]));
    QCOMPARE("error: " + recorder->lastError(), m_signals[0]);
    QVERIFY(!recorder->isRecording());
    QCOMPARE(entries(m_dir->path()), QStringList{"file"});
}

void TestRecorder::failedStartLeavesNothing()
{
    m_script->streamerError = "the rectangle cannot be read";
    KelMultiTrackRecorder *recorder = createRecorder();
    auto config = recorder->recordConfig();
    config.enableMouse = true;
    config.enableKeyboard = true;
    recorder->setRecordConfig(config);
    QVERIFY(!recorder->startRecording());
    QCOMPARE(m_signals, QStringList{"error: Failed to start recording: Screen track: the rectangle cannot be read"});
    QVERIFY(!QFileInfo::exists(outputDir()));

    QVERIFY(QDir().mkpath(outputDir())); // the user's own
    QVERIFY(!recorder->startRecording());
    QVERIFY(QFileInfo::exists(outputDir()));
    QCOMPARE(entries(outputDir()), QStringList());
}

void TestRecorder::recordsAgainAndKeepsTheEarlierRecording()
{
    writeFile(outputDir() + "/notes.txt", "the user's");
    KelMultiTrackRecorder *recorder = createRecorder();
    QList<QByteArray> videos;
    for (int i = 0; i < 3; ++i) {
        m_script->captures = 0;
        QVERIFY(recorder->startRecording());
        QTRY_VERIFY(m_script->captures > 0);
        recorder->stopRecording();
        QFile metadata(outputDir() + "/TrackManager.meta");
        QVERIFY(metadata.open(QIODevice::ReadOnly));
        videos << metadata.readAll();
    }
    QCOMPARE(entries(outputDir()),
             (QStringList{"Previous-1", "Previous-2", "Screen", "TrackManager.meta", "notes.txt"}));
    for (int i = 0; i < 2; ++i) {
        const QString dir = QString("%1/Previous-%2").arg(outputDir()).arg(i + 1);
        QCOMPARE(entries(dir), (QStringList{"Screen", "TrackManager.meta"}));
        QFile metadata(dir + "/TrackManager.meta");
        QVERIFY(metadata.open(QIODevice::ReadOnly));
        QCOMPARE(metadata.readAll(), videos[i]);
        QVERIFY(QFileInfo(dir + "/Screen/screen_record.mp4").size() > 0);
    }
}

void TestRecorder::logsAStop()
{
    KelMultiTrackRecorder *recorder = createRecorder();
    const auto ownLines = [](const QStringList &all) {
        QStringList lines = all.filter(QRegularExpression("^. \\[KelMultiTrackRecorder"));
        return lines.replaceInStrings(QRegularExpression("0x[0-9a-f]+"), "ADDRESS");
    };
    LogCapture log;
    recorder->stopRecording();
    QCOMPARE(ownLines(log.take()),
             (QStringList{"I [KelMultiTrackRecorder::stopRecording] Starting to stop recording",
                          "I [KelMultiTrackRecorder] this pointer: ADDRESS",
                          "I [KelMultiTrackRecorder] d->isRecording: false",
                          "I [KelMultiTrackRecorder] d->recordManager pointer: ADDRESS",
                          "W [KelMultiTrackRecorder] 跳过停止录制 (未在录制或 recordManager 为空)",
                          "I [KelMultiTrackRecorder::stopRecording] Completed"}));
    recorder->startRecording();
    log.take();
    recorder->stopRecording();
    QCOMPARE(ownLines(log.take()), (QStringList{"I [KelMultiTrackRecorder::stopRecording] Starting to stop recording",
                                                "I [KelMultiTrackRecorder] this pointer: ADDRESS",
                                                "I [KelMultiTrackRecorder] d->isRecording: true",
                                                "I [KelMultiTrackRecorder] d->recordManager pointer: ADDRESS",
                                                "W [KelMultiTrackRecorder] 调用 recordManager->stopRecording()",
                                                "W [KelMultiTrackRecorder] recordManager->stopRecording() 返回",
                                                "W [KelMultiTrackRecorder] 调用 recordManager->releaseResources()",
                                                "W [KelMultiTrackRecorder] recordManager->releaseResources() 返回",
                                                "W [KelMultiTrackRecorder] 发送 recordingStopped 信号",
                                                "W [KelMultiTrackRecorder] recordingStopped 信号已发送",
                                                "I [KelMultiTrackRecorder::stopRecording] Completed"}));
}

void TestRecorder::controlsOfMissingTracksWarn()
{
    KelMultiTrackRecorder *recorder = createRecorder();
    LogCapture log;
    recorder->setMouseRecordingEnabled(true);
    recorder->setKeyboardRecordingEnabled(false);
    QCOMPARE(log.take(), (QStringList{"W KelMultiTrackRecorder: Cannot control mouse recording - not recording",
                                      "W KelMultiTrackRecorder: Cannot control keyboard recording - not recording"}));
    QVERIFY(recorder->startRecording());
    log.take();
    recorder->setMouseRecordingEnabled(true);
    recorder->setKeyboardRecordingEnabled(false);
    QCOMPARE(log.take(), (QStringList{"W KelMultiTrackRecorder: Mouse track not found",
                                      "W KelMultiTrackRecorder: Keyboard track not found"}));
}

void TestRecorder::trackFailureIsSignalledOnce()
{
    KelMultiTrackRecorder *recorder = createRecorder();
    QSignalSpy tracks(recorder, &KelMultiTrackRecorder::trackFailed);
    std::atomic<bool> lost{false};
    m_script->atQuestion = [&] {
        if (lost)
            m_script->streamerError = "the X server is gone";
    };
    QVERIFY(recorder->startRecording());
    QTRY_VERIFY(m_script->captures > 0);
    m_script->changed = false;
    lost = true;
    const QString error = "error: Screen track: the X server is gone";
    QTRY_COMPARE(m_signals, (QStringList{"started", error}));
    QCOMPARE(tracks, (QList<QVariantList>{{"Screen track", "the X server is gone"}}));
    QVERIFY(recorder->isRecording());
    recorder->stopRecording();
    QCOMPARE(m_signals, (QStringList{"started", error, "stopped"}));
}

void TestRecorder::failureAtStopComesBeforeStopped()
{
    KelMultiTrackRecorder *recorder = createRecorder();
    QVERIFY(recorder->startRecording());
    QTRY_VERIFY(m_script->captures > 0);
    QVERIFY(QDir().mkpath(outputDir() + "/TrackManager.meta.tmp/occupied"));
    recorder->stopRecording();
    QCOMPARE(m_signals.size(), 3);
    QVERIFY2(m_signals[1].startsWith("error: Metadata: cannot write "), qPrintable(m_signals[1]));
    QCOMPARE(m_signals[2], QString("stopped"));
}

void TestRecorder::stopsAtTheFrameLimit()
{
    KelMultiTrackRecorder *recorder = createRecorder();
    m_script->changed = false;
    QVERIFY(recorder->startRecording());
    auto *manager = recorder->findChild<KelRecordTrackManager *>();
    while (!manager->isAtFrameLimit())
        QVERIFY(QMetaObject::invokeMethod(manager, "onFrameTimeout"));
    QVERIFY(recorder->isRecording());
    QTRY_VERIFY(!recorder->isRecording());
    // The video is empty: nothing was to be seen.
    QCOMPARE(m_signals.first(), QString("started"));
    QCOMPARE(m_signals[1], QString("error: The recording was stopped: it has reached the limit of 1000000 frames"));
    QCOMPARE(m_signals.last(), QString("stopped"));
    QCOMPARE(QFileInfo(outputDir() + "/Screen/frame_indexes.dat").size(), qint64(8 + 4 * 1000000));
}

void TestRecorder::hostMayStartAnewWhenItHearsOfTheStop()
{
    KelMultiTrackRecorder *recorder = createRecorder();
    QVERIFY(recorder->startRecording());
    QTRY_VERIFY(m_script->captures > 0);
    QMetaObject::Connection connection = connect(recorder, &KelMultiTrackRecorder::recordingStopped, this, [&] {
        disconnect(connection);
        QVERIFY(recorder->startRecording());
    });
    recorder->stopRecording();
    QVERIFY(recorder->isRecording());
    QCOMPARE(m_signals, (QStringList{"started", "stopped", "started"}));
}

void TestRecorder::exportNeedsARecording()
{
    KelMultiTrackRecorder *recorder = createRecorder();
    QVERIFY(!recorder->exportToVideo(m_dir->filePath("a.mp4"), 0));
    QVERIFY(!recorder->exportToGif(m_dir->filePath("a.gif"), 50));
    QVERIFY(!recorder->exportToVideoWithTrim(m_dir->filePath("a.mp4"), 0, 0, 1000, 0, 25));
    QCOMPARE(m_signals, QStringList(QVector<QString>(3, "error: No recording loaded for export").toList()));
}

void TestRecorder::uselessRecordingCannotBeExported()
{
    KelMultiTrackRecorder *recorder = createRecorder();
    QVERIFY(recorder->loadRecording(m_dir->filePath("nowhere")));
    QVERIFY(recorder->playbackManager());
    QTimer closer; // of the message boxes
    connect(&closer, &QTimer::timeout, this, [] {
        if (QWidget *box = QApplication::activeModalWidget(); qobject_cast<QMessageBox *>(box))
            box->close();
    });
    closer.start(5);
    QVERIFY(!recorder->exportToVideo(m_dir->filePath("a.mp4"), 0));
    QVERIFY(!recorder->exportToGif(m_dir->filePath("a.gif"), 50));
    QVERIFY(!recorder->exportToVideoWithTrim(m_dir->filePath("a.mp4"), 0, 0, 1000, 0, 25));
    QCOMPARE(m_signals, (QStringList{"error: Failed to start export", "error: Failed to start export",
                                     "error: Failed to start export with audio trim"}));
}

QTEST_MAIN(TestRecorder)
#include "tst_recorder.moc"
