#include "facade/KelMovieUI.h"
#include "facade/KelMultiTrackRecorder.h"
#include "kelmovie/support/ExportScene.h"
#include "kelmovie/support/InputFakes.h"
#include "kelmovie/support/InputFiles.h"
#include "kelmovie/support/RecordFakes.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "record/KelRecordTrackManager.h"
#include "screen/KelScreenManager.h"

#include "support/FileSizeLimit.h"
#include "support/Files.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"

#include <KelMovie/KelExportPipeline.h>

#include <QApplication>
#include <QDirIterator>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <optional>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace
{
constexpr int kWaitMs = 60'000;

QStringList entries(const QString &path)
{
    QStringList names = QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    names.sort(); // whatever the locale
    return names;
}

#ifdef Q_OS_UNIX
/// What anybody but the owner can read, write or list.
QStringList openToOthers(const QString &path)
{
    QStringList found;
    QDirIterator all(path, QDir::AllEntries | QDir::Hidden | QDir::NoDotDot, QDirIterator::Subdirectories);
    while (all.hasNext()) {
        all.next();
        if (all.fileInfo().permissions() & QFile::Permissions(0x0077)) // of group and others
            found << all.filePath();
    }
    return found;
}
#endif

using R = KelMultiTrackRecorder;
using Export = std::function<bool(R &recorder, const QString &path)>;

/// A system that asks a person before it lets anyone capture the screen.
class AskingBackend final : public ScriptedBackend
{
public:
    using ScriptedBackend::ScriptedBackend;

    std::unique_ptr<KelScreenPreparation> prepare(const QRect &, bool, const KelScreenPreparation::Done &done) override
    {
        struct Question : KelScreenPreparation {
            std::shared_ptr<int> isOpen;
        };
        auto question = std::make_unique<Question>();
        question->isOpen = std::make_shared<int>();
        open = question->isOpen;
        answer = done;
        return question;
    }

    std::weak_ptr<int> open; ///< while somebody keeps the question or the permission
    KelScreenPreparation::Done answer;
};
} // namespace

Q_DECLARE_METATYPE(Export)
Q_DECLARE_METATYPE(KelExportRequest)

class RecorderTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void goesThroughItsStates();
    void asksForPermission();
    void refusesToStart_data();
    void refusesToStart();
    void failedStartLeavesNothing();
    void refusesLinks_data();
    void refusesLinks();
    void recordsAgainAndKeepsTheEarlierRecording();
    void trackFailureIsSignaledOnce();
    void failureAtStopComesBeforeStopped();
    void stopsAtTheFrameLimit();
    void logsNothingWhenFiltered();
    void hostMayStartAgainInTheStoppedSignal();
    void recordsWhatIsConfigured();
    void exports_data();
    void exports();
    void loadsWithTheChosenDecoding();
    void refusesToExport();

private:
    R *createRecorder(bool recordsInput = false);
    bool start(R *recorder)
    {
        m_script->captures = 0;
        return recorder->startRecording() && QTest::qWaitFor([this] { return m_script->captures > 0; }, kWaitMs);
    }
    QString outputDir() const { return m_dir->filePath("recording"); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::optional<ScreenScript> m_script;
    std::unique_ptr<KelMovieUI> m_ui;
    QStringList m_signals; // in order of emission
};

void RecorderTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_script.emplace();
    m_script->pictureSize = QSize(64, 48);
    KelScreenManager::instance()->setBackend(std::make_unique<ScriptedBackend>(*m_script, QString()));
    m_ui = std::make_unique<KelMovieUI>();
    m_signals.clear();
}

void RecorderTest::cleanup()
{
    m_ui.reset();
    KelScreenManager::instance()->setBackend(nullptr);
}

R *RecorderTest::createRecorder(bool recordsInput)
{
    R *recorder = m_ui->createMultiTrackRecorder();
    connect(recorder, &R::recordingPrepared, this, [this] { m_signals << "prepared"; });
    connect(recorder, &R::recordingDeclined, this, [this](const QString &why) { m_signals << "declined: " + why; });
    connect(recorder, &R::recordingStarted, this, [this] { m_signals << "started"; });
    connect(recorder, &R::recordingStopped, this, [this] { m_signals << "stopped"; });
    connect(recorder, &R::recordingPaused, this, [this] { m_signals << "paused"; });
    connect(recorder, &R::recordingResumed, this, [this] { m_signals << "resumed"; });
    connect(recorder, &R::recordingError, this, [this](const QString &error) { m_signals << "error: " + error; });
    R::RecordConfig config;
    config.outputDir = outputDir();
    config.enableMouse = config.enableKeyboard = recordsInput;
    recorder->setRecordConfig(config);
    recorder->setRecordArea(QRect(0, 0, 64, 48));
    return recorder;
}

void RecorderTest::goesThroughItsStates()
{
    R *recorder = createRecorder();
    LogCapture log;
    recorder->pauseRecording();
    recorder->stopRecording();
    QCOMPARE(m_signals, QStringList());
    QVERIFY(log.take().contains("W [KelMultiTrackRecorder] 跳过停止录制 (未在录制或 recordManager 为空)"));
    const auto switchTracks = [&] { // neither is there
        recorder->setMouseRecordingEnabled(true);
        recorder->setKeyboardRecordingEnabled(false);
        return log.take();
    };
    QCOMPARE(switchTracks().filter("Cannot control").size(), 2);

    QVERIFY(recorder->startRecording());
    QVERIFY(recorder->isRecording() && !recorder->isPaused());
    QVERIFY(!recorder->startRecording());
    QCOMPARE(switchTracks().filter("track not found").size(), 2);
    recorder->pauseRecording();
    QVERIFY(recorder->isRecording() && recorder->isPaused());
    recorder->pauseRecording();
    QVERIFY(recorder->startRecording());
    QVERIFY(recorder->isRecording() && !recorder->isPaused());
    QTRY_VERIFY_WITH_TIMEOUT(m_script->captures > 2, kWaitMs);
    recorder->pauseRecording();
    recorder->stopRecording();
    QVERIFY(!recorder->isRecording() && !recorder->isPaused());
    QCOMPARE(m_signals, (QStringList{"started", "paused", "resumed", "paused", "stopped"}));
    QCOMPARE(entries(outputDir()), (QStringList{"Screen", "TrackManager.meta"}));
    QCOMPARE(entries(outputDir() + "/Screen"),
             (QStringList{"frame_indexes.dat", "frame_times.dat", "screen_record.mp4"}));
}

void RecorderTest::asksForPermission()
{
    using Answer = KelScreenPermission::Answer;
    auto owned = std::make_unique<AskingBackend>(*m_script);
    AskingBackend &backend = *owned;
    KelScreenManager::instance()->setBackend(std::move(owned));
    R *recorder = createRecorder();

    recorder->prepareRecording();
    QVERIFY(!backend.open.expired());
    recorder->cancelPreparation();
    QVERIFY(backend.open.expired());
    QCOMPARE(m_signals, QStringList());

    recorder->prepareRecording();
    backend.answer({Answer::Declined, "not now"});
    recorder->prepareRecording();
    backend.answer({Answer::Failed, "nobody answers"});
    QCOMPARE(m_signals, (QStringList{"declined: not now", "error: nobody answers"}));

    m_signals.clear();
    connect(recorder, &R::recordingPrepared, this, [&] { QVERIFY(recorder->startRecording()); });
    recorder->prepareRecording();
    backend.answer({Answer::Granted, {}});
    QVERIFY(backend.open.expired()); // the tracks have what they need
    QCOMPARE(m_signals, (QStringList{"prepared", "started"}));
}

void RecorderTest::refusesToStart_data()
{
    const TestTable<QRect, int, QString, QString, QString> row("area", "fps", "outputDir", "screenError", "error");
    const QRect area(0, 0, 64, 48);
    const QString start("Failed to start recording: ");
    row("no area", QRect(), 25, "%1/new", "", "Record area not set"); // %1: a directory
    row("fps 0", area, 0, "%1/new", "", start + "The frame rate 0 is not between 1 and 1000");
    row("fps 1001", area, 1001, "%1/new", "", start + "The frame rate 1001 is not between 1 and 1000");
    row("no directory", area, 25, "", "", start + "No output directory given");
    row("below a file", area, 25, "%1/file/new", "", start + "Cannot create the directory %1/file/new");
    row("not writable", area, 25, "/proc/self", "", start + "Cannot write to the directory /proc/self: ");
    row("no display", area, 25, "%1/new", "no display", start + "no display");
}

void RecorderTest::refusesToStart()
{
    QFETCH(QRect, area);
    QFETCH(int, fps);
    QFETCH(QString, outputDir);
    QFETCH(QString, screenError);
    QFETCH(QString, error);
    writeFile(m_dir->filePath("file"), "bystander");
    KelScreenManager::instance()->setBackend(std::make_unique<ScriptedBackend>(*m_script, screenError));
    R *recorder = createRecorder();
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

void RecorderTest::failedStartLeavesNothing()
{
    m_script->streamerError = "the rectangle cannot be read";
    R *recorder = createRecorder(true);
    QVERIFY(!recorder->startRecording());
    QCOMPARE(m_signals, QStringList{"error: Failed to start recording: Screen track: the rectangle cannot be read"});
    QVERIFY(!QFileInfo::exists(outputDir()));

    QVERIFY(QDir().mkpath(outputDir())); // created by the user
    QVERIFY(!recorder->startRecording());
    QVERIFY(QFileInfo::exists(outputDir()));
    QCOMPARE(entries(outputDir()), QStringList());
}

void RecorderTest::refusesLinks_data()
{
    QTest::addColumn<QString>("link"); // leads to a file or directory that does not exist
    for (const char *link : {"Screen", "Mouse", "Keyboard", "Screen/screen_record.mp4", "Screen/frame_indexes.dat",
                             "Screen/frame_times.dat", "Mouse/mousemoves-0.json", "Mouse/mouseclicks-0.json",
                             "Mouse/cursor.json", "Keyboard/keyboard.keymeta", "TrackManager.meta", "recording.lock"})
        QTest::newRow(link) << link;
}

/// Somebody else may have prepared the directory.
void RecorderTest::refusesLinks()
{
    QFETCH(QString, link);
    const QString planted = outputDir() + '/' + link;
    const QString elsewhere = m_dir->filePath("elsewhere");
    QVERIFY(QDir().mkpath(QFileInfo(planted).path()));
    QVERIFY(QDir().mkpath(elsewhere));
    QVERIFY(QFile::link(elsewhere + "/target", planted));
    if (QFileInfo(link).suffix().isEmpty()) // a directory
        QVERIFY(QDir().mkpath(elsewhere + "/target"));
    R *recorder = createRecorder(true);
    if (recorder->startRecording()) {
        QTRY_VERIFY_WITH_TIMEOUT(!m_signals.filter("error").isEmpty() && m_script->captures > 0, kWaitMs);
        recorder->stopRecording();
    }
    const QStringList errors = m_signals.filter("error");
    QCOMPARE(errors.size(), 1);
    QVERIFY2(errors[0].contains(planted + ": ") && errors[0].contains("link"), qPrintable(errors[0]));
    QCOMPARE(entries(elsewhere + "/target"), QStringList());
    QVERIFY(!QFileInfo(elsewhere + "/target").isFile());
}

/// Each recording moves the one before aside. Only the owner can read them.
void RecorderTest::recordsAgainAndKeepsTheEarlierRecording()
{
#ifdef Q_OS_UNIX // elsewhere the permissions of the directory apply
    const auto restore = qScopeGuard([mask = umask(0)] { umask(mask); });
    const auto isPrivate = [this] { return openToOthers(outputDir()).isEmpty(); };
#else
    const auto isPrivate = [] { return true; };
#endif
    const QString notes = outputDir() + "/notes.txt";
    writeFile(notes, "the user's");
    QVERIFY(QFile::setPermissions(outputDir(), QFile::Permissions(0x7000)));
    QVERIFY(QFile::setPermissions(notes, QFile::ReadOwner | QFile::WriteOwner));
    R *recorder = createRecorder(true);
    QList<QByteArray> recordings;
    for (int i = 0; i < 3; ++i) {
        QVERIFY(start(recorder));
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(outputDir() + "/Mouse/mousemoves-0.json"), kWaitMs);
        QVERIFY(isPrivate());
        recorder->stopRecording();
        QVERIFY(isPrivate());
        recordings << readFile(outputDir() + "/TrackManager.meta");
    }
    QCOMPARE(entries(outputDir()), (QStringList{"Keyboard", "Mouse", "Previous-1", "Previous-2", "Screen",
                                                "TrackManager.meta", "notes.txt"}));
    for (int i = 0; i < 2; ++i) {
        const QString dir = QString("%1/Previous-%2").arg(outputDir()).arg(i + 1);
        QCOMPARE(entries(dir), (QStringList{"Keyboard", "Mouse", "Screen", "TrackManager.meta"}));
        QCOMPARE(readFile(dir + "/TrackManager.meta"), recordings[i]);
        QVERIFY(QFileInfo(dir + "/Screen/screen_record.mp4").size() > 0);
    }
}

void RecorderTest::trackFailureIsSignaledOnce()
{
    R *recorder = createRecorder();
    QSignalSpy tracks(recorder, &R::trackFailed);
    std::atomic<bool> lost{false};
    m_script->atQuestion = [&] {
        if (lost)
            m_script->streamerError = "the X server is gone";
    };
    QVERIFY(start(recorder));
    m_script->changed = false;
    lost = true;
    const QString error = "error: Screen track: the X server is gone";
    QTRY_COMPARE(m_signals, (QStringList{"started", error}));
    QCOMPARE(tracks, (QList<QVariantList>{{"Screen track", "the X server is gone"}}));
    QVERIFY(recorder->isRecording());
    recorder->stopRecording();
    QCOMPARE(m_signals, (QStringList{"started", error, "stopped"}));
}

void RecorderTest::failureAtStopComesBeforeStopped()
{
    R *recorder = createRecorder();
    QVERIFY(start(recorder));
    const QString metadata = outputDir() + "/TrackManager.meta";
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(metadata), kWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT((QFile::remove(metadata), QDir().mkpath(metadata + "/occupied")), kWaitMs);
    recorder->stopRecording();
    QCOMPARE(m_signals.size(), 3);
    QVERIFY2(m_signals[1].startsWith("error: Metadata: cannot write "), qPrintable(m_signals[1]));
    QCOMPARE(m_signals[2], QString("stopped"));
}

void RecorderTest::stopsAtTheFrameLimit()
{
    R *recorder = createRecorder();
    auto config = recorder->recordConfig();
    config.fps = 1;
    recorder->setRecordConfig(config);
    m_script->changed = false;
    QVERIFY(recorder->startRecording());
    auto *manager = recorder->findChild<KelRecordTrackManager *>();
    for (int i = 0; i < KelRecordTrackManager::kMaxFrames + 3; ++i)
        QVERIFY(QMetaObject::invokeMethod(manager, "onFrameTimeout"));
    QVERIFY(manager->isAtFrameLimit());
    QVERIFY(recorder->isRecording());
    QTRY_VERIFY_WITH_TIMEOUT(!recorder->isRecording(), kWaitMs);
    // The empty video is reported, too.
    QCOMPARE(m_signals.first(), QString("started"));
    QCOMPARE(m_signals[1], QString("error: The recording was stopped: it has reached the limit of 1000000 frames"));
    QCOMPARE(m_signals.filter("limit").size(), 1);
    QCOMPARE(m_signals.last(), QString("stopped"));
    QCOMPARE(QFileInfo(outputDir() + "/Screen/frame_indexes.dat").size(), qint64(8 + 4 * 1000000));
}

void RecorderTest::logsNothingWhenFiltered()
{
    const auto restore = qScopeGuard([] { QLoggingCategory::setFilterRules({}); });
    QLoggingCategory::setFilterRules("kelmovie.*=false");
    R *recorder = createRecorder(true);
    LogCapture log;
    m_script->pictureSize = QSize(10, 10); // warns of each frame
    recorder->stopRecording();
    QVERIFY(recorder->startRecording());
    QTRY_VERIFY_WITH_TIMEOUT(m_script->captures > 2, kWaitMs);
    recorder->stopRecording();
    QVERIFY(recorder->loadRecording(outputDir()));
    QCOMPARE(log.take(), QStringList());
}

void RecorderTest::hostMayStartAgainInTheStoppedSignal()
{
    R *recorder = createRecorder();
    QVERIFY(start(recorder));
    QMetaObject::Connection connection = connect(recorder, &R::recordingStopped, this, [&] {
        disconnect(connection);
        QVERIFY(recorder->startRecording());
    });
    recorder->stopRecording();
    QVERIFY(recorder->isRecording());
    QCOMPARE(m_signals, (QStringList{"started", "stopped", "started"}));
}

/// Buttons that are switched off for the start can be switched on, keys off, and back.
void RecorderTest::recordsWhatIsConfigured()
{
    ScriptedInput input;
    R *recorder = createRecorder(true);
    auto config = recorder->recordConfig();
    config.mouseCaptureEnabled = false;
    config.keepsKeysAcrossPauses = true;
    config.fps = 1000;
    recorder->setRecordConfig(config);
    const auto act = [&](int number) {
        input.button(1, 1, QPoint(number, number));
        input.key(Qt::Key_0 + number, 1);
    };
    QVERIFY(start(recorder));
    act(1);
    recorder->setMouseRecordingEnabled(true);
    recorder->setKeyboardRecordingEnabled(false);
    act(2);
    recorder->setKeyboardRecordingEnabled(true);
    recorder->setMouseRecordingEnabled(false);
    act(3);
    recorder->pauseRecording();
    QVERIFY(recorder->startRecording());
    recorder->stopRecording();
    const QStringList clicks = mouseEvents(outputDir() + "/Mouse/mouseclicks-0.json");
    QVERIFY2(clicks.size() == 1 && clicks[0].contains(" 2,2 "), qPrintable(clicks.join('\n')));
    const QString keys = keyRecords(readFile(outputDir() + "/Keyboard/keyboard.keymeta")).join('\n');
    QVERIFY2(keys.contains("31 1 ") && !keys.contains("32 1 ") && keys.contains("33 1 "), qPrintable(keys));
    QVERIFY(readFile(outputDir() + "/TrackManager.meta").contains("\"fps\": 1000"));
}

void RecorderTest::exports_data()
{
    const TestTable<Export, KelExportRequest> row("exportAs", "equal");
    KelExportRequest whole;
    whole.speed = 2;
    whole.loops = 3;
    whole.format = KelExportRequest::WebP;
    const auto webP = [](R &recorder, const QString &path) { return recorder.exportToVideo(path, 3); };
    row("WebP", webP, whole);
    KelExportRequest part = whole;
    part.fps = 12;
    part.quality = 100;
    const auto trimmed = [](int start, int end) {
        return [=](R &recorder, const QString &path) {
            return recorder.exportToVideoWithTrim(path, 3, start, end, 7, 12);
        };
    };
    row("no start", trimmed(-1, 1500), part);
    row("no end", trimmed(500, -1), part);
    part.trimStartMs = 0;
    part.trimEndMs = 1500;
    row("part", trimmed(0, 1500), part);
    whole.format = KelExportRequest::Gif;
    row(
        "GIF", [](R &recorder, const QString &path) { return recorder.exportToGif(path, 7); }, whole);
}

/// As the pipeline does with a request that states everything.
void RecorderTest::exports()
{
    QFETCH(Export, exportAs);
    QFETCH(KelExportRequest, equal);
    const ExportScene scene;
    gKelMovieConfig.encodeGifPlayLoop = equal.loops;
    R *recorder = createRecorder();
    QVERIFY(recorder->loadRecording(scene.path()));
    recorder->playbackManager()->setSpeed(equal.speed);
    QVERIFY(exportAs(*recorder, m_dir->filePath("facade")));
    KelPlaybackTrackManager reference(scene.path(), false);
    equal.playbackManager = &reference;
    equal.outputPath = m_dir->filePath("pipeline");
    QVERIFY(KelExportPipeline(equal).run());
    QVERIFY(readFile(m_dir->filePath("facade")) == readFile(equal.outputPath));
}

void RecorderTest::loadsWithTheChosenDecoding()
{
    const auto restore = qScopeGuard([] { gKelMovieConfig = {}; });
    R *recorder = createRecorder();
    for (const bool isChosen : {true, false}) {
        gKelMovieConfig.recordEnableHardwareAcceleration = isChosen;
        QVERIFY(recorder->loadRecording(m_dir->path()));
        QCOMPARE(kel::PlaybackInternals::engine(*recorder->playbackManager()).prefersHardwareDecode(), isChosen);
    }
}

void RecorderTest::refusesToExport()
{
    R *recorder = createRecorder();
    const auto errors = [&] {
        m_signals.clear();
        const bool isExported = recorder->exportToVideo(m_dir->filePath("a.mp4"), 0) ||
                                recorder->exportToGif(m_dir->filePath("a.gif"), 50) ||
                                recorder->exportToVideoWithTrim(m_dir->filePath("a.mp4"), 0, 0, 1000, 0, 25);
        return isExported ? QStringList{"exported"} : m_signals;
    };
    QCOMPARE(errors(), QStringList(QVector<QString>(3, "error: No recording loaded for export").toList()));

    QVERIFY(recorder->loadRecording(m_dir->filePath("nowhere")));
    QTimer closer; // of the message boxes
    connect(&closer, &QTimer::timeout, this, [] {
        if (QWidget *box = QApplication::activeModalWidget(); qobject_cast<QMessageBox *>(box))
            box->close();
    });
    closer.start(5);
    QCOMPARE(errors(), (QStringList{"error: Failed to start export", "error: Failed to start export",
                                    "error: Failed to start export with audio trim"}));

    // What fails later has started.
    QVERIFY(start(recorder));
    recorder->stopRecording();
    QVERIFY(recorder->loadRecording(outputDir()));
    const FileSizeLimit fullDisk(100);
    const QStringList failures = errors();
    const QRegularExpression fullDiskError("^error: Export failed: .*" + FileSizeLimit::errorPattern());
    QVERIFY2(failures.filter(fullDiskError).size() == 3, qPrintable(failures.join('\n')));
    QCOMPARE(failures.size(), 3);
}

QTEST_MAIN(RecorderTest)
#include "tst_recorder.moc"
