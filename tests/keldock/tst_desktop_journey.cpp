#include "keldock/ColorScene.h"
#include "keldock/Keldock.h"
#include "keldock/RecordingFiles.h"
#include "kelmovie/support/InputFiles.h"
#include "keymouse/XTestInput.h"
#include "support/x11/X11Painter.h"
#include "support/x11/X11Windows.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace
{

constexpr int kLimitMs = 30000;
const QRect kArea(100, 80, 480, 360);
const QPoint kRecordButton(24, 22); // in the toolbar
const QPoint kPauseButton(58, 22);

// The key codes of the X servers of the tests.
enum Code { Return = 36, Ctrl = 37, Alt = 64, LetterE = 26, LetterR = 27, LetterP = 33, LetterS = 39 };

} // namespace

/// The desktop recorder from end to end: the real program, driven only by mouse and keyboard.
class DesktopJourneyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        std::signal(SIGTERM, SIG_DFL);
        const QString settings = m_home.filePath(".config/KelMovie/keldock.ini");
        QVERIFY(QDir().mkpath(QFileInfo(settings).path()));
        QVERIFY(writeAll(settings, "[General]\nKelMovie.record.recordSystemAudio=false\n"
                                   "KelMovie.record.recordMicrophone=false\n"));
        for (const char *name : {"HOME", "XDG_RUNTIME_DIR"})
            qputenv(name, m_home.path().toUtf8());
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_VIDEOS_DIR", "LANGUAGE", "LC_ALL", "LANG"})
            qunsetenv(name);
        m_scene = std::make_unique<ColorScene>(kArea);
        m_recorder.setProcessChannelMode(QProcess::ForwardedChannels);
        m_recorder.start(KELDOCK_PROGRAM, QStringList());
        QVERIFY(waitFor("Screen recorder"));
    }

    void cleanupTestCase()
    {
        m_recorder.kill();
        m_recorder.waitForFinished();
    }

    void recordsAnArea()
    {
        // Without an area, recording starts with choosing one.
        click(waitFor("Screen recorder").rect.topLeft() + kRecordButton);
        QVERIFY(waitFor("Choose the area to record"));
        m_input.move(kArea.left(), kArea.top());
        m_input.button(1, true);
        m_input.move(kArea.center().x(), kArea.top() + 20);
        m_input.move(kArea.right(), kArea.bottom());
        m_input.button(1, false);
        press({Return});
        m_input.move(kArea.right() + 100, kArea.bottom() + 100);
        pressIn("Record keystrokes?", {Return});
        QTRY_VERIFY_WITH_TIMEOUT(!recordings().isEmpty() && isInProgress(recordings().first()), kLimitMs);
        QTRY_COMPARE_WITH_TIMEOUT(frameColor(), QColor(0xe1, 0x3d, 0x30), kLimitMs);

        const QRect toolbar = waitFor("Screen recorder").rect;
        QVERIFY2(!toolbar.intersects(kArea), "the toolbar is outside of the recorded area");
        click(toolbar.topLeft() + kPauseButton);
        QTRY_VERIFY_WITH_TIMEOUT(frameColor() != QColor(0xe1, 0x3d, 0x30), kLimitMs);
        press({Ctrl, Alt, LetterP});
        QTRY_COMPARE_WITH_TIMEOUT(frameColor(), QColor(0xe1, 0x3d, 0x30), kLimitMs);
        m_input.move(kArea.center().x(), kArea.center().y());
        press({Ctrl, Alt, LetterS});
    }

    void playsTheRecording()
    {
        QCOMPARE(recordings().size(), 1);
        const QString recording = recordings().first();
        QVERIFY2(waitFor(QFileInfo(recording).fileName().toUtf8()), "the playback window");
        QTRY_VERIFY2_WITH_TIMEOUT(!m_windows.find("Screen recorder"), "the toolbar steps aside", kLimitMs);
        const QJsonObject info = recordingInfo(recording);
        QCOMPARE(info.value("complete").toBool(), true);
        QCOMPARE(info.value("videoWidth").toInt(), kArea.width());
        QCOMPARE(info.value("videoHeight").toInt(), kArea.height());
        QCOMPARE(info.value("tracksPresent").toArray(), (QJsonArray{"screen", "mouse", "keyboard"}));
        const QStringList keys = keyRecords(readFile(recording + "/Keyboard/keyboard.keymeta"));
        QVERIFY2(!keys.filter(QRegularExpression("^0 0 ")).isEmpty(), "the resume kept what was before the pause");

        const int frames = info.value("logicFrames").toInt();
        for (const int frame : {0, frames / 2}) {
            const QString file = m_home.filePath("frame.png");
            const Keldock keldock = Keldock::run({"frame", recording, QString::number(frame), file});
            QVERIFY2(keldock.status == 0, qPrintable(keldock.errors));
            const QImage image(file);
            const QColor color = image.pixelColor(0, 0);
            QVERIFY2(ColorScene::step(color) >= 0, "shows the scene");
            for (const QPoint corner : {QPoint(479, 0), QPoint(0, 359), QPoint(479, 359)})
                QCOMPARE(image.pixelColor(corner), color); // no frame, toolbar or countdown
        }
    }

    void exportsTheRecording()
    {
        const QString name = QFileInfo(recordings().first()).fileName();
        const QString file = m_home.filePath("Videos/" + name + ".mp4");
        pressIn(name.toUtf8(), {Ctrl, LetterE});
        const auto options = waitFor("Export Recording");
        pressIn("Export Recording", {Return});
        // The next dialog has the same title.
        QTRY_VERIFY_WITH_TIMEOUT(m_windows.find("Export Recording").id != options.id, kLimitMs);
        pressIn("Export Recording", {Return});
        pressIn("Export Complete", {Return});
        QTRY_VERIFY_WITH_TIMEOUT(!m_windows.find("Export Complete"), kLimitMs);
        QCOMPARE(readAll(file).mid(4, 4), QByteArray("ftyp"));
        QVERIFY(m_windows.find(name.toUtf8()));
    }

    void secondInstanceShowsTheFirst()
    {
        const Keldock second = Keldock::run({});
        QCOMPARE(second.status, 0);
        QVERIFY(waitFor("Screen recorder"));
    }

    void endOfSessionKeepsTheRecording()
    {
        press({Ctrl, Alt, LetterR}); // the area is already chosen
        QVERIFY(waitFor("Record keystrokes?"));
        press({Ctrl, Alt, LetterR}); // must not ask twice
        pressIn("Record keystrokes?", {Return});
        QTRY_VERIFY_WITH_TIMEOUT(recordings().size() == 2 && isInProgress(recordings().last()), kLimitMs);
        ::kill(static_cast<pid_t>(m_recorder.processId()), SIGTERM);
        QVERIFY(m_recorder.waitForFinished(kLimitMs));
        QCOMPARE(m_recorder.exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_recorder.exitCode(), 0);
        QCOMPARE(recordingInfo(recordings().last()).value("complete").toBool(), true);
    }

private:
    X11Windows::Window waitFor(const QByteArray &title)
    {
        X11Windows::Window found;
        const bool isThere = QTest::qWaitFor([&] { return bool(found = m_windows.find(title)); }, kLimitMs);
        return isThere ? found : X11Windows::Window();
    }

    void click(const QPoint &point)
    {
        m_input.move(point.x(), point.y());
        m_input.click(1);
    }

    void press(const QVector<int> &codes)
    {
        for (const int code : codes)
            m_input.key(code, true);
        for (auto code = codes.rbegin(); code != codes.rend(); ++code)
            m_input.key(*code, false);
    }

    /// Sets the focus, because there is no window manager that would give it to a new window.
    void pressIn(const QByteArray &title, const QVector<int> &codes)
    {
        const X11Windows::Window window = waitFor(title);
        QVERIFY2(window, title);
        m_input.focus(window.id);
        press(codes);
    }

    QStringList recordings() const
    {
        const QDir folder(m_home.filePath("Videos/KelMovie"));
        QStringList paths;
        for (const QString &name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
            paths += folder.filePath(name);
        return paths;
    }

    QColor frameColor() { return m_painter.grab(QRect(kArea.left() - 3, kArea.center().y(), 1, 1)).pixelColor(0, 0); }

    QTemporaryDir m_home;
    QProcess m_recorder;
    XTestInput m_input;
    X11Windows m_windows;
    X11Painter m_painter;
    std::unique_ptr<ColorScene> m_scene;
};

QTEST_MAIN(DesktopJourneyTest)
#include "tst_desktop_journey.moc"
