#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/SavingConfigIO.h"
#include "play/PlaybackCanvas.h"
#include "play/PlaybackWindow.h"
#include "play/export/ExportOptionsDialog.h"
#include "play/player/Player.h"
#include "support/Controls.h"
#include "support/ScratchHome.h"
#include "support/TestTable.h"
#include "support/WhenModal.h"
#include "widgets/MessagePage.h"
#include "widgets/NoticeBar.h"

#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KelRecordingMetadata.h>
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

#include <algorithm>

namespace
{

constexpr QSize kSize(160, 120);
constexpr int kFps = 20;
constexpr int kFrames = 60; // of one color each
constexpr int kLimitMs = 30000;

QColor colorOf(int frame)
{
    return QColor(frame % 4 * 80, frame / 4 % 4 * 80, frame / 16 * 80);
}

/// Colors of different frames are too different to be mistaken after encoding.
int frameOf(const QColor &color)
{
    return qRound(color.red() / 80.0) + 4 * qRound(color.green() / 80.0) + 16 * qRound(color.blue() / 80.0);
}

} // namespace

/// The playback window of a recording of three seconds, driven by key and button events.
class PlaybackWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        RecordingOnDisk recording(path("video"));
        recording.video(kFrames, [](int frame) {
            QImage image(kSize, QImage::Format_RGB32);
            image.fill(colorOf(frame));
            return image;
        });
        m_video = readFile(recording.filePath("Screen/screen_record.mp4"));
        m_recording = write("A recording").path();
    }

    void init()
    {
        m_settings = std::make_unique<SavingConfigIO>();
        open(m_recording);
        QVERIFY(player());
    }

    void cleanup()
    {
        m_window.reset();
        m_settings.reset();
    }

    void controlsAreAccessible()
    {
        const auto tabs = m_window->findChild<QTabWidget *>();
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            QCOMPARE(controlFaults(m_window.get()).join('\n'), QString());
            for (const QWidget *control : tabs->findChildren<QWidget *>())
                QVERIFY2(!control->isVisible() || !control->toolTip().endsWith("next time"),
                         "only for future recordings");
        }
        QString faults;
        whenModal<ExportOptionsDialog>([&](ExportOptionsDialog *dialog) {
            faults = controlFaults(dialog).join('\n');
            QTest::keyClick(dialog, Qt::Key_Escape);
        });
        QTest::keyClick(m_window.get(), Qt::Key_E, Qt::ControlModifier);
        QCOMPARE(faults, QString());
    }

    void keys_data()
    {
        // Keys in sequence, starting at frame 20; then the frame, first and last frame of the range, and the speed.
        const TestTable<QString, QString> row("keys", "state");
        row("frame steps", "Right Right Left", "21 0 59 1");
        row("second steps", "Shift+Right Left Shift+Left", "19 0 59 1");
        row("end", "End", "59 0 59 1");
        row("beyond the end", "End Right Shift+Right", "59 0 59 1");
        row("beyond the start", "Home Left Shift+Left", "0 0 59 1");
        row("trim", "I Right Right Right O", "23 20 23 1");
        row("the trim range limits seeking", "I Shift+Left Left", "20 20 59 1");
        row("ends of the trim range", "I Right Right O Home Right End", "22 20 22 1");
        row("end before the start", "I Home O", "20 20 20 1");
        row("faster", "+ + -", "20 0 59 1.2");
        row("fastest", "+ + + + + +", "20 0 59 2");
        row("slowest", "- - - - - -", "20 0 59 0.2");
    }

    void keys()
    {
        QFETCH(QString, keys);
        player()->seekToFrame(20);
        for (const QString &key : keys.split(' '))
            QTest::keySequence(m_window.get(), QKeySequence(key));
        player()->settle();
        const KelPlaybackTrackManager &manager = *player()->manager();
        QTEST(QString("%1 %2 %3 %4")
                  .arg(player()->frame())
                  .arg(manager.frameAtMs(player()->rangeStartMs()))
                  .arg(manager.frameAtMs(player()->rangeEndMs()))
                  .arg(player()->speed()),
              "state");
        QCOMPARE(manager.currentFrame(), player()->frame());
        QCOMPARE(frameSeen(), player()->frame());
        auto *const bar = m_window->findChild<PlayProgressBar *>();
        QCOMPARE(bar->playTimeMs(), player()->positionMs());
        QCOMPARE(bar->rangeStartMs(), player()->rangeStartMs());
        QCOMPARE(bar->rangeEndMs(), player()->rangeEndMs());
    }

    void playsTheRange()
    {
        const KelPlaybackTrackManager &manager = *player()->manager();
        player()->setRange(100, 1000000);
        QCOMPARE(player()->rangeEndMs(), player()->durationMs());
        player()->setRange(-100, 1000000);
        QVERIFY(!player()->isTrimmed());
        const quint64 before = manager.frameRevision();
        player()->setRange(manager.msOfFrame(10), manager.msOfFrame(20));
        QVERIFY2(manager.frameRevision() != before, "the time display shows the range");
        QVector<int> frames;
        connect(player(), &Player::positionChanged, this, [&](int ms) { frames += manager.frameAtMs(ms); });
        const QSignalSpy playing(player(), &Player::playingChanged);
        QTest::keyClick(m_window.get(), Qt::Key_Space);
        QVERIFY(player()->isPlaying());
        QTRY_VERIFY_WITH_TIMEOUT(!player()->isPlaying(), kLimitMs);
        QCOMPARE(frames.first(), 10);
        QVERIFY(std::all_of(frames.begin(), frames.end(), [](int frame) { return frame >= 10 && frame <= 20; }));
        QCOMPARE(player()->frame(), 10);
        QCOMPARE(playing.count(), 2);
    }

    void scrubbingCombinesSeeks()
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

    void settingsChangeTheFrame()
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

    void exportsTheRangeAtItsSpeed()
    {
        gKelMovieConfig.playbackEncodeFormat = 1;
        player()->setRange(500, 1500);
        player()->setSpeed(2);
        player()->goToEnd();
        writeFile(path("cut.gif"), "an older file");
        whenModal<ExportOptionsDialog>(
            [](ExportOptionsDialog *dialog) { dialog->findChild<QPushButton *>("PrimaryButton")->click(); });
        answerSave(path("cut")); // without suffix
        whenModal<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Yes)->click(); });
        QTest::keyClick(m_window.get(), Qt::Key_E, Qt::ControlModifier);

        QImageReader reader(path("cut.gif"));
        QStringList frames;
        int ms = 0;
        for (QImage frame = reader.read(); !frame.isNull(); frame = reader.read()) {
            frames += QString::number(frameOf(frame.pixelColor(80, 60)));
            ms += reader.nextImageDelay();
        }
        QCOMPARE(ms, 500);
        QCOMPARE(frames.join(" "), QString("9 12 14 16 18 20 22 24 26 29"));
        QCOMPARE(player()->frame(), 29);
        QVERIFY(notice().contains("cut.gif was exported"));
    }

    void offersRecordedAndLogicalPixels()
    {
        // At this ratio the 160 x 120 pixels have this logical size.
        open(write("Scaled").size(100, 75).set(&KelRecordingMetadata::devicePixelRatio, 1.6).path());
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

    void savesAndCopiesTheFrame()
    {
        player()->seekToFrame(25);
        answerSave(path("frame.png"));
        QTest::keyClick(m_window.get(), Qt::Key_S, Qt::ControlModifier);
        const QImage saved(path("frame.png"));
        QCOMPARE(saved.size(), kSize);
        QCOMPARE(frameOf(saved.pixelColor(80, 60)), 25);
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keyClick(m_window.get(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->image().convertToFormat(saved.format()), saved);
    }

    void saysWhatIsWrong_data()
    {
        const TestTable<QString, QString> row("name", "problem");
        row("damaged sound", "sound", "system_audio_1.wav: Invalid WAV file");
        row("killed program", "killed", "interrupted by a crash");
        row("no metadata", "damaged", "missing or damaged. It plays at");
    }

    void saysWhatIsWrong()
    {
        QFETCH(QString, name);
        QFETCH(QString, problem);
        RecordingOnDisk recording = write(name);
        if (name == "sound")
            recording.sound("system_audio_1.wav", "no sound");
        else if (name == "killed")
            recording.set(&KelRecordingMetadata::complete, false);
        else
            recording.file("TrackManager.meta", "{");
        open(recording.path());
        QVERIFY2(notice().contains(problem), qPrintable(notice()));
        player()->goToEnd();
        player()->settle();
        QCOMPARE(frameSeen(), kFrames - 1);
    }

    void saysWhyNothingCanBePlayed_data()
    {
        const TestTable<QString, QByteArray, QString> row("file", "content", "reason");
        row("no directory", "", "", "not found");
        row("directory without a recording", "x", "x", "not found");
        row("no video", "Screen/frame_indexes.dat", "x", "Video file not found");
        row("garbage as video", "Screen/screen_record.mp4", QByteArray(5000, 'x'), "decoder");
    }

    void saysWhyNothingCanBePlayed()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, content);
        QFETCH(QString, reason);
        const QString dir = path(QTest::currentDataTag());
        if (!file.isEmpty())
            writeFile(dir + '/' + file, content);
        open(dir);
        QVERIFY(message()->isVisible());
        QCOMPARE(message()->title(), QString("This recording cannot be played"));
        QVERIFY2(message()->detail().contains(reason), qPrintable(message()->detail()));
        for (const QString keys : {"Space", "Right", "Ctrl+E"})
            QTest::keySequence(m_window.get(), QKeySequence(keys));

        write(QTest::currentDataTag());
        for (auto *const button : message()->findChildren<QPushButton *>()) {
            if (button->text() == "&Try Again")
                button->click();
        }
        QVERIFY(player());
        QVERIFY(!message()->isVisible());
    }

    void survivesALostDirectory()
    {
        const QString dir = write("lost").path();
        open(dir);
        const auto isLost = [this] { return message()->isVisible(); };
        for (const bool isMoved : {true, false}) {
            player()->setPlaying(true);
            QVERIFY(isMoved ? QDir().rename(dir, dir + "-moved") : QDir(dir).removeRecursively());
            QTRY_VERIFY_WITH_TIMEOUT(isLost(), kLimitMs);
            QCOMPARE(message()->title(), QString("This recording no longer exists"));
            QVERIFY(!player()->isPlaying());
            QTest::keyClick(m_window.get(), Qt::Key_E, Qt::ControlModifier);
            if (isMoved) {
                QVERIFY(QDir().rename(dir + "-moved", dir));
                QTRY_VERIFY_WITH_TIMEOUT(!isLost(), kLimitMs);
                QCOMPARE(frameSeen(), player()->frame());
            }
        }
    }

private:
    QString path(const QString &name) const { return m_home.path(name); }

    /// Writes another recording with the same video.
    RecordingOnDisk write(const QString &name) const
    {
        std::vector<qint32> times;
        for (int frame = 1; frame <= kFrames; ++frame)
            times.push_back(frame * 1000 / kFps);
        return RecordingOnDisk(path(name))
            .size(kSize.width(), kSize.height())
            .frames(kFrames, kFps)
            .frameTimes(times)
            .file("Screen/screen_record.mp4", m_video);
    }

    void open(const QString &dir)
    {
        m_window = std::make_unique<PlaybackWindow>(dir);
        m_window->show();
        m_window->activateWindow(); // there is no window manager
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    Player *player() const { return m_window->findChild<Player *>(); }
    MessagePage *message() const { return m_window->findChild<MessagePage *>(); }
    QString notice() const { return m_window->findChild<NoticeBar *>()->text(); }
    int frameSeen() const { return frameOf(m_window->findChild<PlaybackCanvas *>()->frame().pixelColor(80, 60)); }
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
    QByteArray m_video;
    QString m_recording;
    std::unique_ptr<PlaybackWindow> m_window;
};

QTEST_MAIN(PlaybackWindowTest)
#include "tst_playback_window.moc"
