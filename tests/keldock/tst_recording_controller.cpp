#include "keldock/ColorScene.h"
#include "recorder/RecordingController.h"
#include "support/FileSizeLimit.h"
#include "support/TestTable.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelRecordingMetadata.h>

#include <QGuiApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QtTest>

using State = RecordingController::State;

namespace
{

const QRect kArea(20, 30, 320, 240);
constexpr int kLimitMs = 60000;

KelRecordingMetadata metadataOf(const QString &directory)
{
    KelRecordingMetadata metadata;
    KelRecordingMetadata::load(directory, &metadata);
    return metadata;
}

} // namespace

/// Real recordings of a real screen, and the events that end them.
class RecordingControllerTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        gKelMovieConfig = KelMovieConfig();
        gKelMovieConfig.recordRecordSystemAudio = gKelMovieConfig.recordRecordMicrophone = false;
        m_disk = {500'000'000'000, 0, 0, true};
        m_problems.clear();
        m_finished.clear();
        m_root = std::make_unique<QTemporaryDir>();
        m_scene = std::make_unique<ColorScene>(kArea);
        m_controller = std::make_unique<RecordingController>([this] { return m_root->filePath("deep/recording"); });
        m_controller->setArea(kArea);
        m_controller->diskGuard().setReader([this](const QString &) { return m_disk; });
        connect(m_controller.get(), &RecordingController::problem, this,
                [this](RecordingController::Severity, const QString &text) { m_problems += text; });
        connect(m_controller.get(), &RecordingController::finished, this,
                [this](const QString &directory) { m_finished += directory; });
    }

    void cleanup()
    {
        m_controller.reset();
        m_scene.reset();
    }

    void recordsPausesStops()
    {
        gKelMovieConfig.recordFps = 100000;
        QSignalSpy elapsed(m_controller.get(), &RecordingController::elapsed);
        startRecording();
        QVERIFY(m_controller->isRecording());
        m_controller->togglePause();
        QCOMPARE(m_controller->state(), State::Paused);
        const qint64 atPause = m_controller->elapsedMs();
        QVERIFY(atPause > 0);
        m_controller->start();
        QCOMPARE(m_controller->state(), State::Paused); // no second recording
        m_controller->togglePause();
        QCOMPARE(m_controller->state(), State::Recording);
        elapsed.clear();
        QTRY_VERIFY_WITH_TIMEOUT(!elapsed.isEmpty() && elapsed.last().first().toLongLong() > atPause, kLimitMs);
        const QString directory = m_controller->directory();
        m_controller->stop();
        QCOMPARE(m_controller->state(), State::Idle);
        QCOMPARE(m_controller->directory(), QString());
        QVERIFY2(m_problems.isEmpty(), qPrintable(m_problems.join('\n')));
        const KelRecordingMetadata metadata = metadataOf(directory);
        QVERIFY(metadata.complete);
        QCOMPARE(metadata.fps, 240); // the maximum
        QCOMPARE(metadata.recordArea, kArea);
        m_controller->stop();
        QCOMPARE(m_finished, QStringList(directory));
    }

    void warnsAboutLittleSpace()
    {
        startRecording();
        m_disk = {300'000'000, 200'000'000, 60'000, true}; // for half a minute
        m_controller->diskGuard().check();
        QCOMPARE(m_problems, QStringList{"The disk is almost full: 300.0 MB left, enough for about 1 minute(s)."});
        QCOMPARE(m_controller->state(), State::Recording);
    }

    void countdown_data()
    {
        const TestTable<int, int, int> row("delay", "minimum", "firstCountdown");
        row("none", 0, 0, 0);
        row("setting", 3, 2, 3);
        row("minimum", 1, 2, 2);
        row("too long", 99999, 0, 60);
        row("negative", -5, 0, 0);
    }

    void countdown()
    {
        QFETCH(int, delay);
        QFETCH(int, minimum);
        QFETCH(int, firstCountdown);
        gKelMovieConfig.recordDelay = delay;
        QSignalSpy countdowns(m_controller.get(), &RecordingController::countdown);
        m_controller->start(minimum);
        QCOMPARE(m_controller->state(), State::CountingDown);
        QCOMPARE(countdowns.first().first().toInt(), firstCountdown);
        m_controller->togglePause();
        m_controller->stop();
        QCOMPARE(m_controller->state(), State::Idle);
        QVERIFY(m_finished.isEmpty());
        QVERIFY(!QFile::exists(m_root->filePath("deep")));
    }

    void endings_data()
    {
        const TestTable<QString, QString, bool> row("event", "problem", "isComplete");
        row("full disk", "full", "The disk is full", true);
        row("end of the program", "destroyed", "", true);
        row("stopped while paused", "paused", "", true);
        row("write error", "unwritable", "The screen can no longer be recorded", false);
        row("write error at the end", "unwritable end", "The screen can no longer be recorded", false);
    }

    void endings()
    {
        QFETCH(QString, event);
        QFETCH(QString, problem);
        QFETCH(bool, isComplete);
        startRecording();
        const QString directory = m_controller->directory();
        if (event == "full") {
            m_disk.freeBytes = DiskGuard::kStopBytes - 1;
            m_controller->diskGuard().check();
        } else if (event == "destroyed") {
            m_controller.reset();
        } else if (event == "unwritable") {
            const FileSizeLimit limit(1);
            QTRY_COMPARE_WITH_TIMEOUT(m_controller->state(), State::Idle, kLimitMs);
        } else if (event == "unwritable end") {
            const FileSizeLimit limit(1);
            m_controller->stop();
        } else {
            m_controller->togglePause();
            m_controller->stop();
        }
        QTRY_VERIFY_WITH_TIMEOUT(m_problems.join('\n').contains(problem), kLimitMs);
        QVERIFY(!m_controller || m_controller->state() == State::Idle);
        QCOMPARE(m_problems.isEmpty(), problem.isEmpty());
        QCOMPARE(metadataOf(directory).complete, isComplete);
    }

    void deletedDirectory()
    {
        startRecording();
        QVERIFY(QDir(m_controller->directory()).removeRecursively());
        m_disk.exists = false;
        m_controller->diskGuard().check();
        QCOMPARE(m_controller->state(), State::Idle);
        QVERIFY2(m_problems.join('\n').contains("deleted or moved"), qPrintable(m_problems.join('\n')));
    }

    void cannotStart()
    {
        m_disk.freeBytes = DiskGuard::kStopBytes - 1;
        m_controller->start();
        QTRY_COMPARE_WITH_TIMEOUT(m_problems.size(), 1, kLimitMs);
        QCOMPARE(m_controller->state(), State::Idle);
        QVERIFY(!QFile::exists(m_root->filePath("deep")));
        m_disk.freeBytes *= 1000;
        m_controller->setArea(QRect());
        m_controller->start();
        QTRY_COMPARE_WITH_TIMEOUT(m_problems.size(), 2, kLimitMs);
        QVERIFY2(m_problems.last().startsWith("The recording could not be started"), qPrintable(m_problems.last()));
        QCOMPARE(m_controller->state(), State::Idle);
    }

    void areaLeavesTheScreen()
    {
        m_controller->setArea(QRect(900, 500, 320, 240));
        startRecording();
        const QString directory = m_controller->directory();
        const auto change = [](const QString &screen) {
            QProcess::execute("xrandr", QString("--output screen --mode " + screen).split(' '));
        };
        QProcess::execute("xrandr", QString("--newmode small 0 800 800 800 800 600 600 600 600").split(' '));
        QProcess::execute("xrandr", {"--addmode", "screen", "small"});
        change("small");
        QTRY_COMPARE_WITH_TIMEOUT(m_controller->state(), State::Idle, kLimitMs);
        QCOMPARE(m_finished, QStringList(directory));
        QVERIFY2(m_problems.join('\n').contains("screen"), qPrintable(m_problems.join('\n')));
        QVERIFY(metadataOf(directory).complete);
        change("1280x800");
    }

private:
    /// Returns when the first frames are on disk.
    void startRecording()
    {
        m_controller->start();
        QTRY_COMPARE_WITH_TIMEOUT(m_controller->state(), State::Recording, kLimitMs);
        QTRY_VERIFY_WITH_TIMEOUT(metadataOf(m_controller->directory()).actualRecordedFrames > 0, kLimitMs);
    }

    std::unique_ptr<QTemporaryDir> m_root;
    std::unique_ptr<ColorScene> m_scene;
    std::unique_ptr<RecordingController> m_controller;
    QStringList m_problems;
    QStringList m_finished;
    DiskGuard::Reading m_disk;
};

QTEST_MAIN(RecordingControllerTest)
#include "tst_recording_controller.moc"
