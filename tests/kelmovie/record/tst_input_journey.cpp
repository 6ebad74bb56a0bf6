// Real input on a real display, recorded and compared with what was sent.
#include "kelmovie/support/InputFiles.h"
#include "keymouse/RecordingHook.h"
#include "keymouse/XTestInput.h"
#include "screen/KelScreenManager.h"
#include "screen/NativeScreenBackend.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QImage>
#include <QPainter>
#include <QRasterWindow>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <atomic>

using namespace kel;

namespace
{
const QRect kArea(100, 80, 400, 300);

// Key codes of the evdev rules.
enum { Control = 37, LetterA = 38, LetterB = 56, LetterC = 54 };

/// The native backend, which counts how often the pointer was read.
class CountingBackend : public KelScreenBackend
{
public:
    static inline std::atomic<int> reads{0};

    std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &rect, bool withPointer) override
    {
        return m_native->createStreamer(rect, withPointer);
    }
    std::unique_ptr<KelCursorSource> createCursorSource(const QRect &rect) override
    {
        struct Source : KelCursorSource {
            std::unique_ptr<KelCursorSource> native;
            KelCursorPixmap read() override
            {
                const KelCursorPixmap cursor = native->read();
                ++reads;
                return cursor;
            }
        };
        auto source = std::make_unique<Source>();
        source->native = m_native->createCursorSource(rect);
        return source;
    }

private:
    const std::unique_ptr<KelScreenBackend> m_native = createNativeScreenBackend();
};

/// Without the frame number, which depends on the speed of the machine.
QStringList withoutFrame(const QStringList &lines)
{
    QStringList cut;
    for (const QString &line : lines)
        cut << line.section(' ', 1);
    return cut;
}
} // namespace

class InputJourneyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void recordsRealInput();
    void paintsThePointerAtItsPosition();
    void cleanupTestCase();

private:
    void letFramesPass();
    void installLast(RecordingHook &witness);
    void moveTo(int x, int y);

    XTestInput m_input;
    QRasterWindow m_window;
    QTemporaryDir m_dir;
    KelMultiTrackRecorder m_recorder;
};

void InputJourneyTest::initTestCase()
{
    KelScreenManager::instance()->setBackend(std::make_unique<CountingBackend>());
    QPixmap cross(15, 15);
    cross.fill(QColor(0, 0, 255, 100));
    m_window.setFlags(Qt::Window | Qt::X11BypassWindowManagerHint);
    m_window.setGeometry(300, 80, 200, 300);
    m_window.setCursor(QCursor(cross, 3, 4));
    m_window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&m_window));
    m_input.warp(0, 0);
}

void InputJourneyTest::cleanupTestCase()
{
    KelScreenManager::instance()->setBackend(nullptr);
}

/// Waits for two reads of the pointer: the second one began after the call.
void InputJourneyTest::letFramesPass()
{
    const int before = CountingBackend::reads;
    QTRY_VERIFY(CountingBackend::reads >= before + 2);
}

/// Moves `witness` behind the hooks of the tracks: hooks receive events in the order of their installation.
void InputJourneyTest::installLast(RecordingHook &witness)
{
    witness.setHookType(0);
    witness.setHookType(KelKeyMouseHook::Keyboard | KelKeyMouseHook::Mouse);
}

void InputJourneyTest::moveTo(int x, int y)
{
    m_input.move(x, y);
    letFramesPass();
}

void InputJourneyTest::recordsRealInput()
{
    RecordingHook witness;
    QStringList errors;
    connect(&m_recorder, &KelMultiTrackRecorder::recordingError, this, [&](const QString &error) { errors << error; });
    KelMultiTrackRecorder::RecordConfig config;
    config.outputDir = m_dir.path();
    config.fps = 100;
    config.enableKeyboard = true;
    config.keepsKeysAcrossPauses = true;
    m_recorder.setRecordConfig(config);
    m_recorder.setRecordArea(kArea);
    QVERIFY(m_recorder.startRecording());
    letFramesPass();
    installLast(witness);
    m_input.tap(LetterB);
    QCOMPARE(witness.take(2).size(), 2);
    m_recorder.pauseRecording();
    m_input.tap(LetterB);
    QCOMPARE(witness.take(2).size(), 2);
    QVERIFY(m_recorder.startRecording());
    letFramesPass();

    installLast(witness);
    moveTo(150, 120);
    m_input.warp(499, 379);
    letFramesPass();
    moveTo(200, 130);
    m_input.button(1, true);
    QCOMPARE(witness.take(1).size(), 1);
    moveTo(50, 60);
    moveTo(60, 60);
    m_input.button(1, false);
    m_input.click(3); // outside
    QCOMPARE(witness.take(3).size(), 3);
    moveTo(320, 200);
    for (const int wheel : {4, 4, 5})
        m_input.click(wheel);
    m_input.click(2);
    QCOMPARE(witness.take(5).size(), 5);
    m_recorder.setMouseRecordingEnabled(false);
    m_input.click(1);
    moveTo(330, 200);
    QCOMPARE(witness.take(2).size(), 2);
    m_recorder.setMouseRecordingEnabled(true);

    installLast(witness);
    m_input.key(Control, true);
    m_input.tap(LetterC);
    m_input.key(Control, false);
    QCOMPARE(witness.take(4).size(), 4);
    letFramesPass();
    m_recorder.setKeyboardRecordingEnabled(false);
    m_input.tap(LetterB);
    QCOMPARE(witness.take(2).size(), 2);
    letFramesPass();
    m_recorder.setKeyboardRecordingEnabled(true);
    installLast(witness);
    m_input.key(LetterA, true);
    QCOMPARE(witness.take(3), (QStringList{"key 41 1", "key 41 1", "key 41 1"})); // the last two are repeats
    m_input.key(LetterA, false);
    QTRY_VERIFY(witness.lines().contains("key 41 0"));
    m_recorder.stopRecording();
    QCOMPARE(errors, QStringList());

    const QJsonArray shapes =
        QJsonDocument::fromJson(readFile(m_dir.filePath("Mouse/cursor.json"))).object()["cursors"].toArray();
    QCOMPARE(shapes.size(), 2);
    QString cross;
    QString root;
    for (const QJsonValue &shape : shapes) {
        const bool isCross = shape["hotspot_x"].toInt() == 3 && shape["hotspot_y"].toInt() == 4;
        (isCross ? cross : root) = shape["id"].toString();
        const QImage image(m_dir.filePath("Mouse/cursors/" + shape["image"].toString()));
        QVERIFY(!image.isNull());
        if (isCross)
            QCOMPARE(image.pixelColor(14, 14), QColor(0, 0, 255, 100));
    }
    QVERIFY(!cross.isEmpty() && !root.isEmpty());

    const QString moves = m_dir.filePath("Mouse/mousemoves-0.json");
    const QString clicks = m_dir.filePath("Mouse/mouseclicks-0.json");
    QCOMPARE(withoutFrame(mouseEvents(moves)),
             (QStringList{"hide -1,-1 ", "move 50,40 " + root, "move 399,299 " + cross, "move 100,50 " + root,
                          "hide -1,-1 ", "move 220,120 " + cross, "move 230,120 " + cross}));
    QCOMPARE(withoutFrame(mouseEvents(clicks)),
             (QStringList{"click 100,50 " + root + " [left]", "release -40,-20 " + root + " [left]",
                          "release -40,-20 " + root + " [right]", "wheel 220,120  [] 120", "wheel 220,120  [] 120",
                          "wheel 220,120  [] -120", "click 220,120 " + cross + " [middle]",
                          "release 220,120 " + cross + " [middle]"}));
    const QStringList keys = keyRecords(readFile(m_dir.filePath("Keyboard/keyboard.keymeta")));
    QStringList withoutRepeats;
    for (const QString &key : keys)
        withoutRepeats << key.section(' ', 0, 1);
    QVERIFY(withoutRepeats.count("41 1") >= 3);
    withoutRepeats.erase(std::unique(withoutRepeats.begin(), withoutRepeats.end()), withoutRepeats.end());
    QCOMPARE(withoutRepeats.join(", "),
             QString("42 1, 42 0, 0 0, 0 1, 1000021 1, 43 1, 43 0, 1000021 0, 0 0, 0 1, 41 1, 41 0"));

    const int frames =
        QJsonDocument::fromJson(readFile(m_dir.filePath("TrackManager.meta"))).object()["actualRecordedFrames"].toInt();
    for (const QStringList &lines : {mouseEvents(moves), mouseEvents(clicks)}) {
        int last = 0;
        for (const QString &line : lines) {
            const int frame = line.section(' ', 0, 0).toInt();
            QVERIFY(frame >= last && frame < frames);
            last = frame;
        }
    }
    QVERIFY(keys.last().section(' ', 2).toInt() > keys.first().section(' ', 2).toInt());
}

/// Compares the last recording with and without its pointer.
void InputJourneyTest::paintsThePointerAtItsPosition()
{
    const auto restore = qScopeGuard([] { gKelMovieConfig = {}; });
    gKelMovieConfig.playbackKeyboardShowKeyType = 0;
    QVERIFY(m_recorder.loadRecording(m_dir.path()));
    KelPlaybackTrackManager *manager = m_recorder.playbackManager();
    const QStringList moves = mouseEvents(m_dir.filePath("Mouse/mousemoves-0.json")).filter("move 220,120 ");
    QCOMPARE(moves.size(), 1);
    const auto compose = [&](bool withPointer) {
        gKelMovieConfig.playbackMouseEnable = withPointer;
        manager->updateSettings();
        manager->seek(moves[0].section(' ', 0, 0).toInt());
        QImage image(manager->frameSize(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::black);
        QPainter painter(&image);
        manager->paint(&painter);
        return image;
    };
    QImage expected = compose(false);
    const QImage composed = compose(true);
    QVERIFY(composed != expected);
    QPainter(&expected).fillRect(220 - 3, 120 - 4, 15, 15, QColor(0, 0, 255, 100));
    QCOMPARE(composed, expected);
}

QTEST_MAIN(InputJourneyTest)
#include "tst_input_journey.moc"
