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
#include <QComboBox>
#include <QFileDialog>
#include <QImageReader>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QtTest>

namespace
{

const QRect kSceneRect(0, 0, 160, 120);
constexpr int kFps = 20;

QStringList recordArguments(const QString &out)
{
    return {"record", "--area", "0,0,160x120", "--fps", QString::number(kFps), "--out", out};
}

} // namespace

/// The playback window with real recordings, driven by key and button events.
class PlaybackWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void controlsAreAccessible();
    void keys_data();
    void keys();
    void playsTheRange();
    void scrubbingCombinesSeeks();
    void settingsChangeTheFrame();
    void exportsTheRangeAtItsSpeed();
    void namesSoundThatCannotBePlayed();
    void offersRecordedAndLogicalPixels();
    void savesAndCopiesTheFrame();
    void saysWhyNothingCanBePlayed_data();
    void saysWhyNothingCanBePlayed();
    void survivesALostDirectory();
    void playsAnInterruptedRecording();

private:
    QString path(const QString &name) const { return m_home.path(name); }
    void open(const QString &dir);
    Player *player() const { return m_window->findChild<Player *>(); }
    MessagePage *message() const { return m_window->findChild<MessagePage *>(); }
    int stepSeen() const
    {
        return ColorScene::step(m_window->findChild<PlaybackCanvas *>()->frame().pixelColor(80, 60));
    }
    /// Enters `name` in the next file dialog.
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
    const ColorScene scene(kSceneRect);
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
    m_window->activateWindow(); // there is no window manager
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void PlaybackWindowTest::controlsAreAccessible()
{
    const auto tabs = m_window->findChild<QTabWidget *>();
    for (int i = 0; i < tabs->count(); ++i) {
        tabs->setCurrentIndex(i);
        QCOMPARE(controlFaults(m_window.get()).join('\n'), QString());
        for (const QWidget *control : tabs->findChildren<QWidget *>())
            QVERIFY2(!control->isVisible() || !control->toolTip().startsWith("The next recording"),
                     "no settings for future recordings");
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
    QTest::addColumn<QString>("keys");  // pressed in sequence, starting at frame 20
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
    QTest::newRow("the trim range limits seeking") << "I Shift+Left Left"
                                                   << "20 20 -1 1";
    QTest::newRow("ends of the trim range") << "I Right Right O Home Right End"
                                            << "22 20 22 1";
    QTest::newRow("end before the start") << "I Home O"
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
    const int last = player()->manager()->totalFrames() - 1;
    QVERIFY(last > 41);
    player()->seekToFrame(20);
    for (const QString &key : keys.split(' '))
        QTest::keySequence(m_window.get(), QKeySequence(key));
    player()->settle();
    const KelPlaybackTrackManager &manager = *player()->manager();
    QCOMPARE(QString("%1 %2 %3 %4")
                 .arg(player()->frame())
                 .arg(manager.frameAtMs(player()->rangeStartMs()))
                 .arg(manager.frameAtMs(player()->rangeEndMs()))
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
    const KelPlaybackTrackManager &manager = *player()->manager();
    const quint64 before = manager.frameRevision();
    player()->setRange(manager.msOfFrame(10), manager.msOfFrame(20));
    QVERIFY2(manager.frameRevision() != before, "the time display shows the range");
    int first = 1000;
    int last = 0;
    connect(player(), &Player::positionChanged, this, [&](int ms) {
        first = qMin(first, manager.frameAtMs(ms));
        last = qMax(last, manager.frameAtMs(ms));
    });
    const QSignalSpy playing(player(), &Player::playingChanged);
    QTest::keyClick(m_window.get(), Qt::Key_Space);
    QVERIFY(player()->isPlaying());
    QTRY_VERIFY(!player()->isPlaying());
    QCOMPARE(first, 10);
    QVERIFY2(last > first && last <= 20, "frames may be skipped on a busy machine");
    QCOMPARE(player()->frame(), 10);
    QCOMPARE(playing.count(), 2);
}

void PlaybackWindowTest::scrubbingCombinesSeeks()
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
    QCOMPARE(player()->manager()->currentFrame(), player()->manager()->frameAtMs(1990));
    QVERIFY2(player()->isPlaying(), "resumes after the drag");
}

void PlaybackWindowTest::settingsChangeTheFrame()
{
    auto *const canvas = m_window->findChild<PlaybackCanvas *>();
    const QImage before = canvas->frame().copy();
    auto *const panel = m_window->findChild<ProgressSettingsPanel *>();
    auto *const toggle = panel->findChild<QAbstractButton *>();
    QVERIFY(!toggle->isChecked());
    toggle->click();
    const QImage after = canvas->frame().copy();
    QVERIFY(after != before);
    QCOMPARE(after.size(), before.size());
    toggle->click();
    QCOMPARE(canvas->frame(), before);
}

void PlaybackWindowTest::exportsTheRangeAtItsSpeed()
{
    gKelMovieConfig.playbackEncodeFormat = 1;
    const KelPlaybackTrackManager &manager = *player()->manager();
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
    answerSave(path("cut")); // without suffix
    whenModal<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Yes)->click(); });
    QTest::keyClick(m_window.get(), Qt::Key_E, Qt::ControlModifier);

    QImageReader reader(path("cut.gif"));
    QVector<int> steps;
    int ms = 0;
    for (QImage frame = reader.read(); !frame.isNull(); frame = reader.read()) {
        steps.append(ColorScene::step(frame.pixelColor(80, 60)));
        ms += reader.nextImageDelay();
    }
    QVERIFY2(qAbs(ms - 500) <= 1000 / kFps, qPrintable(QString::number(ms)));
    QCOMPARE(steps.first(), firstStep);
    QCOMPARE(steps.last(), lastStep);
    QCOMPARE(player()->frame(), manager.frameAtMs(1500));
    QVERIFY(m_window->findChild<NoticeBar *>()->text().contains("cut.gif was exported"));
}

void PlaybackWindowTest::namesSoundThatCannotBePlayed()
{
    const QString dir = path("Damaged sound");
    QVERIFY(copyTree(m_recording, dir));
    QJsonObject metadata = QJsonDocument::fromJson(readAll(dir + "/TrackManager.meta")).object();
    metadata["tracks"] = QJsonObject{{"screenTrack", true}, {"systemAudio", true}};
    QVERIFY(writeAll(dir + "/TrackManager.meta", QJsonDocument(metadata).toJson()));
    QVERIFY(QDir(dir).mkpath("Voice"));
    QVERIFY(writeAll(dir + "/Voice/system_audio_1.wav", "no sound"));
    open(dir);
    QVERIFY(m_window->findChild<NoticeBar *>()->text().contains("system_audio_1.wav: Invalid WAV file"));
    const QJsonArray problems = recordingInfo(dir).value("soundProblems").toArray();
    QVERIFY(problems.size() == 1 && problems[0].toString().contains("system_audio_1.wav: Invalid WAV file"));
}

void PlaybackWindowTest::offersRecordedAndLogicalPixels()
{
    const QString scaled = path("Scaled");
    QVERIFY(copyTree(m_recording, scaled));
    QJsonObject metadata = QJsonDocument::fromJson(readAll(scaled + "/TrackManager.meta")).object();
    metadata["devicePixelRatio"] = 1.6; // at which the 160 x 120 pixels have this logical size
    metadata["recordArea"] = QJsonObject{{"x", 0}, {"y", 0}, {"width", 100}, {"height", 75}};
    QVERIFY(writeAll(scaled + "/TrackManager.meta", QJsonDocument(metadata).toJson()));
    open(scaled);

    const ExportOptionsDialog dialog(*player());
    QCOMPARE(dialog.frameSize(), QSize(160, 120));
    QStringList sizes;
    for (const QComboBox *box : dialog.findChildren<QComboBox *>()) {
        for (int i = 0; i < box->count(); ++i)
            sizes << box->itemText(i);
    }
    sizes = sizes.filter(QString::fromUtf8("×"));
    QCOMPARE(sizes.join(", "), QString::fromUtf8("160 × 120, 120 × 90, 100 × 75, 80 × 60, 53 × 40, 40 × 30"));
}

void PlaybackWindowTest::savesAndCopiesTheFrame()
{
    player()->seekToFrame(25);
    answerSave(path("frame.png"));
    QTest::keyClick(m_window.get(), Qt::Key_S, Qt::ControlModifier);
    const QImage saved(path("frame.png"));
    QCOMPARE(saved.size(), kSceneRect.size());
    QCOMPARE(ColorScene::step(saved.pixelColor(80, 60)), stepSeen());
    QTest::keyClick(m_window.get(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->image().convertToFormat(saved.format()), saved);
}

void PlaybackWindowTest::saysWhyNothingCanBePlayed_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content"); // null: no directory
    QTest::addColumn<QString>("reason");
    QTest::newRow("no directory") << "" << QByteArray() << "not found";
    QTest::newRow("directory without a recording") << "x" << QByteArray("x") << "not found";
    QTest::newRow("no video") << "Screen/frame_indexes.dat" << QByteArray("x") << "Video file not found";
    QTest::newRow("garbage as video") << "Screen/screen_record.mp4" << QByteArray(5000, 'x') << "decoder";
}

void PlaybackWindowTest::saysWhyNothingCanBePlayed()
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
    QCOMPARE(message()->title(), QString("This recording cannot be played"));
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

void PlaybackWindowTest::survivesALostDirectory()
{
    for (const bool isMoved : {true, false}) {
        const QTemporaryDir scratch;
        const QString dir = scratch.filePath("recording");
        QVERIFY(copyTree(m_recording, dir));
        open(dir);
        player()->setPlaying(true);
        QVERIFY(isMoved ? QDir().rename(dir, dir + "-moved") : QDir(dir).removeRecursively());
        QTRY_VERIFY(message()->isVisible());
        QCOMPARE(message()->title(), QString("This recording no longer exists"));
        QVERIFY(!player()->isPlaying());
        QTest::keyClick(m_window.get(), Qt::Key_E, Qt::ControlModifier);
        if (isMoved) {
            QVERIFY(QDir().rename(dir + "-moved", dir));
            QTRY_VERIFY(!message()->isVisible());
            QVERIFY(stepSeen() >= 0);
        }
    }
}

void PlaybackWindowTest::playsAnInterruptedRecording()
{
    const QString dir = path("killed");
    {
        const ColorScene scene(kSceneRect);
        QProcess process;
        process.start(KELDOCK_PROGRAM, recordArguments(dir));
        QTRY_VERIFY_WITH_TIMEOUT(recordingInfo(dir).value("actualRecordedFrames").toInt() > kFps, Keldock::kLimitMs);
        process.kill();
        QVERIFY(process.waitForFinished(Keldock::kLimitMs));
    }
    open(dir);
    QVERIFY(m_window->findChild<NoticeBar *>()->text().contains("interrupted by a crash"));
    QSet<int> steps;
    for (const int frame : {0, kFps / 2, kFps}) {
        player()->seekToFrame(frame);
        player()->settle();
        QCOMPARE(player()->manager()->currentFrame(), frame);
        steps += stepSeen();
    }
    player()->goToEnd();
    player()->settle();
    steps += stepSeen();
    QVERIFY2(steps.size() > 1 && !steps.contains(-1), "later frames have other colors");
}

QTEST_MAIN(PlaybackWindowTest)
#include "tst_playback_window.moc"
