#include "keldock/ColorScene.h"
#include "keldock/RecordingFiles.h"
#include "recorder/RecordingController.h"
#include "support/FileSizeLimit.h"
#include "support/TestTable.h"

#include <KelMovie/KelMovieConfig.h>

#include <QGuiApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QtTest>

using State = RecordingController::State;

namespace
{

const QRect Area(20, 30, 320, 240);

} // namespace

/// Real recordings of a real screen, and what can happen to them.
class RecordingControllerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void recordsPausesStops();
    void countdown_data();
    void countdown();
    void endings_data();
    void endings();
    void somebodyDeletesIt();
    void cannotBegin();
    void screenShrinks();

private:
    void begin();

    std::unique_ptr<QTemporaryDir> m_root;
    std::unique_ptr<ColorScene> m_scene;
    std::unique_ptr<RecordingController> m_controller;
    QStringList m_problems;
    QStringList m_finished;
    DiskGuard::Reading m_disk;
};

void RecordingControllerTest::init()
{
    gKelMovieConfig = KelMovieConfig();
    gKelMovieConfig.recordRecordSystemAudio = gKelMovieConfig.recordRecordMicrophone = false;
    m_disk = {500'000'000'000, 0, 0, true};
    m_problems.clear();
    m_finished.clear();
    m_root = std::make_unique<QTemporaryDir>();
    m_scene = std::make_unique<ColorScene>(Area);
    m_controller = std::make_unique<RecordingController>([this] { return m_root->filePath("deep/recording"); });
    m_controller->setArea(Area);
    m_controller->diskGuard().setReader([this](const QString &) { return m_disk; });
    connect(m_controller.get(), &RecordingController::problem, this,
            [this](RecordingController::Severity, const QString &text) { m_problems += text; });
    connect(m_controller.get(), &RecordingController::finished, this,
            [this](const QString &directory) { m_finished += directory; });
}

void RecordingControllerTest::cleanup()
{
    m_controller.reset();
    m_scene.reset();
}

void RecordingControllerTest::begin()
{
    QSignalSpy elapsed(m_controller.get(), &RecordingController::elapsed);
    m_controller->start();
    QTRY_COMPARE(m_controller->state(), State::Recording);
    QTRY_VERIFY(elapsed.size() > 2); // some pictures are taken by then
}

void RecordingControllerTest::recordsPausesStops()
{
    begin();
    QVERIFY(m_controller->isRecording());
    m_controller->togglePause();
    QCOMPARE(m_controller->state(), State::Paused);
    const qint64 atPause = m_controller->elapsedMs();
    QVERIFY(atPause > 0);
    m_controller->start();
    QCOMPARE(m_controller->state(), State::Paused); // one at a time
    m_controller->togglePause();
    QCOMPARE(m_controller->state(), State::Recording);
    QTRY_VERIFY(m_controller->elapsedMs() > atPause);
    const QString directory = m_controller->directory();
    QTRY_VERIFY(recordingInfo(directory).value("videoFrames").toInt() > 1);
    m_controller->stop();
    QCOMPARE(m_controller->state(), State::Idle);
    QCOMPARE(m_finished, QStringList(directory));
    QCOMPARE(m_controller->directory(), QString());
    QVERIFY2(m_problems.isEmpty(), qPrintable(m_problems.join('\n')));
    const QJsonObject told = recordingInfo(directory);
    QCOMPARE(told.value("complete").toBool(), true);
    QCOMPARE(told.value("fps").toInt(), 24);
    m_controller->stop();
    QCOMPARE(m_finished.size(), 1);
}

void RecordingControllerTest::countdown_data()
{
    const TestTable<int, int, int> row("delay", "minimum", "firstTold");
    row("none", 0, 0, 0);
    row("setting", 3, 2, 3);
    row("minimum", 1, 2, 2);
    row("nonsense", 99999, 0, 60);
}

void RecordingControllerTest::countdown()
{
    QFETCH(int, delay);
    QFETCH(int, minimum);
    QFETCH(int, firstTold);
    gKelMovieConfig.recordDelay = delay;
    QSignalSpy told(m_controller.get(), &RecordingController::countdown);
    m_controller->start(minimum);
    QCOMPARE(m_controller->state(), State::CountingDown);
    QCOMPARE(told.first().first().toInt(), firstTold);
    m_controller->togglePause();
    m_controller->stop();
    QCOMPARE(m_controller->state(), State::Idle);
    QVERIFY(m_finished.isEmpty());
    QVERIFY(!QFile::exists(m_root->filePath("deep")));
}

void RecordingControllerTest::endings_data()
{
    const TestTable<QString, QString, bool> row("event", "told", "isWhole");
    row("the disk fills up", "full", "The disk is full", true);
    row("the program ends", "destroyed", "", true);
    row("while it is paused", "paused", "", true);
    row("nothing can be written", "unwritable", "The screen cannot be recorded", false);
    row("its end cannot be written", "unwritable end", "The screen cannot be recorded", false);
}

void RecordingControllerTest::endings()
{
    QFETCH(QString, event);
    QFETCH(QString, told);
    QFETCH(bool, isWhole);
    begin();
    const QString directory = m_controller->directory();
    if (event == "full") {
        m_disk.freeBytes = DiskGuard::StopBytes - 1;
        m_controller->diskGuard().check();
    } else if (event == "destroyed") {
        m_controller.reset();
    } else if (event == "unwritable") {
        const FileSizeLimit limit(1);
        QTRY_COMPARE(m_controller->state(), State::Idle);
    } else if (event == "unwritable end") {
        const FileSizeLimit limit(1);
        m_controller->stop();
    } else {
        m_controller->togglePause();
        m_controller->stop();
    }
    if (m_controller)
        QTRY_COMPARE(m_controller->state(), State::Idle);
    QTRY_VERIFY2(m_problems.join('\n').contains(told), qPrintable(m_problems.join('\n')));
    QCOMPARE(m_problems.isEmpty(), told.isEmpty());
    QCOMPARE(recordingInfo(directory).value("complete").toBool(), isWhole);
}

void RecordingControllerTest::somebodyDeletesIt()
{
    begin();
    QVERIFY(QDir(m_controller->directory()).removeRecursively());
    m_disk.exists = false;
    m_controller->diskGuard().check();
    QTRY_COMPARE(m_controller->state(), State::Idle);
    QVERIFY2(m_problems.join('\n').contains("deleted or moved"), qPrintable(m_problems.join('\n')));
}

void RecordingControllerTest::cannotBegin()
{
    m_disk.freeBytes = DiskGuard::StopBytes - 1;
    m_controller->start();
    QTRY_COMPARE(m_problems.size(), 1);
    QCOMPARE(m_controller->state(), State::Idle);
    QVERIFY(!QFile::exists(m_root->filePath("deep")));
    m_disk.freeBytes *= 1000;
    m_controller->setArea(QRect());
    m_controller->start();
    QTRY_COMPARE(m_problems.size(), 2);
    QVERIFY2(m_problems.last().startsWith("The recording could not be started"), qPrintable(m_problems.last()));
    QCOMPARE(m_controller->state(), State::Idle);
}

void RecordingControllerTest::screenShrinks()
{
    m_controller->setArea(QRect(900, 500, 320, 240));
    begin();
    const QString directory = m_controller->directory();
    const auto change = [](const QString &screen) {
        QProcess::execute("xrandr", QString("--output screen --mode " + screen).split(' '));
    };
    QProcess::execute("xrandr", QString("--newmode small 0 800 800 800 800 600 600 600 600").split(' '));
    QProcess::execute("xrandr", {"--addmode", "screen", "small"});
    change("small");
    QTRY_COMPARE(m_controller->state(), State::Idle);
    QCOMPARE(m_finished, QStringList(directory));
    QVERIFY2(m_problems.join('\n').contains("screen"), qPrintable(m_problems.join('\n')));
    QCOMPARE(recordingInfo(directory).value("complete").toBool(), true);
    change("1280x800");
}

QTEST_MAIN(RecordingControllerTest)
#include "tst_recording_controller.moc"
