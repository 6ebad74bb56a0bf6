#include "keldock/ColorScene.h"
#include "keldock/Keldock.h"
#include "keldock/RecordingFiles.h"
#include "kelmovie/support/SavingConfigIO.h"
#include "play/PlaybackCanvas.h"
#include "play/PlaybackWindow.h"
#include "play/export/ExportOptionsDialog.h"
#include "play/player/Player.h"
#include "support/Controls.h"
#include "support/ScratchHome.h"
#include "support/WhenModal.h"
#include "widgets/MessagePage.h"
#include "widgets/NoticeBar.h"

#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/PlayProgressBar.h>
#include <KelMovie/ProgressSettingsPanel.h>

#include <QClipboard>
#include <QFileDialog>
#include <QImageReader>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QtTest>

namespace
{

const QRect SceneRect(0, 0, 160, 120);
constexpr int Fps = 20;

QStringList recordArguments(const QString &out)
{
    return {"record", "--area", "0,0,160x120", "--fps", QString::number(Fps), "--out", out};
}

} // namespace

/// The window in which a recording is watched, as its user has it: with real keys, buttons and files.
class PlaybackWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void controlsAreForEverybody();
    void keys_data();
    void keys();
    void playsTheRange();
    void scrubbingSeeksOnceATurn();
    void panelChangesThePicture();
    void exportsTheRangeAtItsSpeed();
    void savesAndCopiesThePicture();
    void tellsWhyThereIsNothing_data();
    void tellsWhyThereIsNothing();
    void outlivesItsDirectory();
    void showsWhatAKilledRecorderLeft();

private:
    QString path(const QString &name) const { return m_home.path(name); }
    void open(const QString &dir);
    Player *player() const { return m_window->findChild<Player *>(); }
    MessagePage *message() const { return m_window->findChild<MessagePage *>(); }
    int stepSeen() const
    {
        return ColorScene::step(m_window->findChild<PlaybackCanvas *>()->picture().pixelColor(80, 60));
    }
    /// Answers the dialogs of a save, in which one types `name`.
    static void answerSave(const QString &name)
    {
        whenModal<QFileDialog>([=](QFileDialog *dialog) {
            dialog->selectFile(name);
            QMetaObject::invokeMethod(dialog, "accept");
        });
    }

    ScratchHome m_home;
    std::unique_ptr<SavingConfigIO> m_settings;
    QString m_recording;
    std::unique_ptr<PlaybackWindow> m_window;
};

void PlaybackWindowTest::initTestCase()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const ColorScene scene(SceneRect);
    m_recording = path("A recording");
    const Keldock recorded = Keldock::run(recordArguments(m_recording) + QStringList{"--duration", "2.5"});
    QVERIFY2(recorded.status == 0, qPrintable(recorded.errors));
}

void PlaybackWindowTest::init()
{
    m_settings = std::make_unique<SavingConfigIO>();
    open(m_recording);
    QVERIFY(player());
}

void PlaybackWindowTest::cleanup()
{
    m_window.reset();
    m_settings.reset();
}

void PlaybackWindowTest::open(const QString &dir)
{
    m_window = std::make_unique<PlaybackWindow>(dir);
    m_window->show();
    m_window->activateWindow(); // nobody else does
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void PlaybackWindowTest::controlsAreForEverybody()
{
    const auto tabs = m_window->findChild<QTabWidget *>();
    for (int i = 0; i < tabs->count(); ++i) {
        tabs->setCurrentIndex(i);
        QCOMPARE(controlFaults(m_window.get()).join('\n'), QString());
        for (const QWidget *control : tabs->findChildren<QWidget *>())
            QVERIFY2(!control->isVisible() || !control->toolTip().startsWith("The next recording"), "not its matter");
    }
    QString faults;
    whenModal<ExportOptionsDialog>([&](ExportOptionsDialog *dialog) {
        faults = controlFaults(dialog).join('\n');
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
    QTest::keyClick(m_window.get(), Qt::Key_E, Qt::ControlModifier);
    QCOMPARE(faults, QString());
}

void PlaybackWindowTest::keys_data()
{
    QTest::addColumn<QString>("keys");  // one after the other, from frame 20
    QTest::addColumn<QString>("state"); // frame, first and last frame of the range, speed; -1: the last frame
    QTest::newRow("frame steps") << "Right Right Left"
                                 << "21 0 -1 1";
    QTest::newRow("second steps") << "Shift+Right Left Shift+Left"
                                  << "19 0 -1 1";
    QTest::newRow("ends") << "End"
                          << "-1 0 -1 1";
    QTest::newRow("start") << "Home"
                           << "0 0 -1 1";
    QTest::newRow("beyond the ends") << "Home Left Shift+Left"
                                     << "0 0 -1 1";
    QTest::newRow("trim") << "I Right Right Right O"
                          << "23 20 23 1";
    QTest::newRow("a trimmed range bounds") << "I Shift+Left Left"
                                            << "20 20 -1 1";
    QTest::newRow("ends of the trimmed range") << "I Right Right O Home Right End"
                                               << "22 20 22 1";
    QTest::newRow("an end before the start") << "I Home O"
                                             << "20 20 20 1";
    QTest::newRow("faster") << "+ + -"
                            << "20 0 -1 1.2";
    QTest::newRow("slowest") << "- - - - - -"
                             << "20 0 -1 0.2";
}

void PlaybackWindowTest::keys()
{
    QFETCH(QString, keys);
    QFETCH(QString, state);
    const int last = player()->clock().lastFrame();
    QVERIFY(last > 41);
    player()->seekToFrame(20);
    for (const QString &key : keys.split(' '))
        QTest::keySequence(m_window.get(), QKeySequence(key));
    player()->settle();
    const RecordingClock &clock = player()->clock();
    QCOMPARE(QString("%1 %2 %3 %4")
                 .arg(player()->frame())
                 .arg(clock.frameAt(player()->rangeStartMs()))
                 .arg(clock.frameAt(player()->rangeEndMs()))
                 .arg(player()->speed()),
             QString(state).replace("-1", QString::number(last)));
    QCOMPARE(player()->manager()->currentFrame(), player()->frame());
    auto *const bar = m_window->findChild<PlayProgressBar *>();
    QCOMPARE(bar->playTimeMs(), player()->positionMs());
    QCOMPARE(bar->rangeStartMs(), player()->rangeStartMs());
    QCOMPARE(bar->rangeEndMs(), player()->rangeEndMs());
}

void PlaybackWindowTest::playsTheRange()
{
    const RecordingClock &clock = player()->clock();
    player()->setRange(clock.msOf(10), clock.msOf(20));
    int first = 1000;
    int last = 0;
    connect(player(), &Player::positionChanged, this, [&](int ms) {
        first = qMin(first, clock.frameAt(ms));
        last = qMax(last, clock.frameAt(ms));
    });
    const QSignalSpy playing(player(), &Player::playingChanged);
    QTest::keyClick(m_window.get(), Qt::Key_Space);
    QVERIFY(player()->isPlaying());
    QTRY_VERIFY(!player()->isPlaying());
    QCOMPARE(first, 10);
    QVERIFY2(last > first && last <= 20, "a busy machine leaves frames out");
    QCOMPARE(player()->frame(), 10);
    QCOMPARE(playing.count(), 2);
}

void PlaybackWindowTest::scrubbingSeeksOnceATurn()
{
    auto *const bar = m_window->findChild<PlayProgressBar *>();
    const QSignalSpy seeks(player()->manager(), &KelPlaybackTrackManager::sigFrameChanged);
    player()->setPlaying(true);
    emit bar->sigPlayTimePress();
    QVERIFY(!player()->isPlaying());
    for (int ms = 0; ms < 2000; ms += 10)
        emit bar->sigPlayTimeChanged(ms);
    QCOMPARE(seeks.count(), 0);
    emit bar->sigPlayTimeRelease();
    QCOMPARE(seeks.count(), 1);
    QCOMPARE(player()->manager()->currentFrame(), player()->clock().frameAt(1990));
    QVERIFY2(player()->isPlaying(), "as before the drag");
}

void PlaybackWindowTest::panelChangesThePicture()
{
    auto *const canvas = m_window->findChild<PlaybackCanvas *>();
    const QImage before = canvas->picture().copy();
    auto *const panel = m_window->findChild<ProgressSettingsPanel *>();
    auto *const toggle = panel->findChild<QAbstractButton *>();
    QVERIFY(!toggle->isChecked());
    toggle->click();
    const QImage after = canvas->picture().copy();
    QVERIFY(after != before);
    QCOMPARE(after.size(), before.size());
    toggle->click();
    QCOMPARE(canvas->picture(), before);
}

void PlaybackWindowTest::exportsTheRangeAtItsSpeed()
{
    gKelMovieConfig.playbackEncodeFormat = 1;
    const RecordingClock &clock = player()->clock();
    player()->setRange(500, 1500);
    player()->setSpeed(2);
    player()->goToStart();
    player()->settle();
    const int firstStep = stepSeen();
    player()->goToEnd();
    player()->settle();
    const int lastStep = stepSeen();

    QVERIFY(writeAll(path("cut.gif"), "an older file"));
    whenModal<ExportOptionsDialog>(
        [](ExportOptionsDialog *dialog) { dialog->findChild<QPushButton *>("PrimaryButton")->click(); });
    answerSave(path("cut")); // the suffix is missing
    whenModal<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Yes)->click(); });
    QTest::keyClick(m_window.get(), Qt::Key_E, Qt::ControlModifier);

    QImageReader reader(path("cut.gif"));
    QVector<int> steps;
    int ms = 0;
    for (QImage frame = reader.read(); !frame.isNull(); frame = reader.read()) {
        steps.append(ColorScene::step(frame.pixelColor(80, 60)));
        ms += reader.nextImageDelay();
    }
    QVERIFY2(qAbs(ms - 500) <= 1000 / Fps, qPrintable(QString::number(ms)));
    QCOMPARE(steps.first(), firstStep);
    QCOMPARE(steps.last(), lastStep);
    QCOMPARE(player()->frame(), clock.frameAt(1500));
    QVERIFY(m_window->findChild<NoticeBar *>()->text().contains("cut.gif was exported"));
}

void PlaybackWindowTest::savesAndCopiesThePicture()
{
    player()->seekToFrame(25);
    answerSave(path("picture.png"));
    QTest::keyClick(m_window.get(), Qt::Key_S, Qt::ControlModifier);
    const QImage saved(path("picture.png"));
    QCOMPARE(saved.size(), SceneRect.size());
    QCOMPARE(ColorScene::step(saved.pixelColor(80, 60)), stepSeen());
    QTest::keyClick(m_window.get(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->image().convertToFormat(saved.format()), saved);
}

void PlaybackWindowTest::tellsWhyThereIsNothing_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content"); // null: there is no directory
    QTest::addColumn<QString>("reason");
    QTest::newRow("no directory") << "" << QByteArray() << "not found";
    QTest::newRow("an empty one") << "x" << QByteArray("x") << "not found";
    QTest::newRow("no video") << "Screen/frame_indexes.dat" << QByteArray("x") << "Video file not found";
    QTest::newRow("a video of garbage") << "Screen/screen_record.mp4" << QByteArray(5000, 'x') << "decoder";
}

void PlaybackWindowTest::tellsWhyThereIsNothing()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    const QTemporaryDir scratch;
    const QString dir = scratch.filePath("recording");
    if (!content.isNull()) {
        QVERIFY(QDir().mkpath(QFileInfo(dir + '/' + file).path()));
        QVERIFY(writeAll(dir + '/' + file, content));
    }
    open(dir);
    QVERIFY(message()->isVisible());
    QCOMPARE(message()->title(), QString("This recording cannot be shown"));
    QVERIFY2(message()->detail().contains(reason), qPrintable(message()->detail()));
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Right, Qt::Key_E})
        QTest::keyClick(m_window.get(), key, key == Qt::Key_E ? Qt::ControlModifier : Qt::NoModifier);

    QVERIFY(QDir(dir).removeRecursively() || content.isNull());
    QVERIFY(copyTree(m_recording, dir));
    for (auto *const button : message()->findChildren<QPushButton *>()) {
        if (button->text() == "&Try Again")
            button->click();
    }
    QVERIFY(player());
    QVERIFY(!message()->isVisible());
}

void PlaybackWindowTest::outlivesItsDirectory()
{
    for (const bool isMoved : {true, false}) {
        const QTemporaryDir scratch;
        const QString dir = scratch.filePath("recording");
        QVERIFY(copyTree(m_recording, dir));
        open(dir);
        player()->setPlaying(true);
        QVERIFY(isMoved ? QDir().rename(dir, dir + "-moved") : QDir(dir).removeRecursively());
        QTRY_VERIFY(message()->isVisible());
        QCOMPARE(message()->title(), QString("This recording is no longer there"));
        QVERIFY(!player()->isPlaying());
        QTest::keyClick(m_window.get(), Qt::Key_E, Qt::ControlModifier);
        if (isMoved) {
            QVERIFY(QDir().rename(dir + "-moved", dir));
            QTRY_VERIFY(!message()->isVisible());
            QVERIFY(stepSeen() >= 0);
        }
    }
}

void PlaybackWindowTest::showsWhatAKilledRecorderLeft()
{
    const QString dir = path("killed");
    {
        const ColorScene scene(SceneRect);
        QProcess process;
        process.start(QStringLiteral(KELDOCK_PROGRAM), recordArguments(dir));
        QTRY_VERIFY_WITH_TIMEOUT(recordingInfo(dir).value("actualRecordedFrames").toInt() > Fps, Keldock::LimitMs);
        process.kill();
        QVERIFY(process.waitForFinished(Keldock::LimitMs));
    }
    open(dir);
    QVERIFY(m_window->findChild<NoticeBar *>()->text().contains("cut short by a crash"));
    QSet<int> steps;
    for (const int frame : {0, Fps / 2, Fps}) {
        player()->seekToFrame(frame);
        player()->settle();
        QCOMPARE(player()->manager()->currentFrame(), frame);
        steps += stepSeen();
    }
    player()->goToEnd();
    player()->settle();
    steps += stepSeen();
    QVERIFY2(steps.size() > 1 && !steps.contains(-1), "the screen had other colours later");
}

QTEST_MAIN(PlaybackWindowTest)
#include "tst_playback_window.moc"
