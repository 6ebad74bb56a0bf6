#include "kelmovie/support/RecordingOnDisk.h"
#include "support/LogCapture.h"
#include "support/PaintedPart.h"
#include "support/TestTable.h"

#include "playback/keys/KelPlaybackKeyboardTrack.h"
#include "playback/keys/KeyBoxLayout.h"
#include "playback/keys/KeyNames.h"
#include "recording/RecordingTimeline.h"

#include <QPainter>
#include <QtTest>

using namespace kel;

namespace
{

const QSize kCanvas(640, 360);

KeyOverlayStyle everything()
{
    KeyOverlayStyle style;
    style.display.shownTypes = 15;
    return style;
}

QImage painted(KelPlaybackKeyboardTrack &track, const QSize &size, double scale = 1.0)
{
    QImage image((QSizeF(size) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    track.paint(&painter);
    return image;
}

/// The gray value of the brightest pixel: text is white, its box black.
int brightest(const QImage &image)
{
    int gray = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            gray = qMax(gray, qGray(image.pixel(x, y)));
    return gray;
}

} // namespace

class PlaybackKeyboardTrackTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_recording = RecordingOnDisk(); }

    void readsInvalidFiles_data();
    void readsInvalidFiles();
    void seeks();
    void shownTypes();
    void positionsBoxes();
    void boxesStayInsideTheCanvas();
    void everyKeyIsDrawnInside();
    void splitsModifiersFromKeys();
    void isSharpWhenScaled();

private:
    std::unique_ptr<KelPlaybackKeyboardTrack> load(const QString &script, const QSize &canvas = kCanvas,
                                                   double scale = 1.0)
    {
        m_recording.size(canvas.width(), canvas.height()).frames(1000, 30).keys(script);
        auto track = std::make_unique<KelPlaybackKeyboardTrack>(dir(), 1000, scale, QSize(), nullptr);
        track->setStyle(everything());
        return track;
    }

    QString dir() const { return m_recording.filePath("Keyboard"); }

    RecordingOnDisk m_recording;
};

void PlaybackKeyboardTrackTest::readsInvalidFiles_data()
{
    // log: the start of its only line.
    const TestTable<QByteArray, QString, int> row("content", "log", "entries");
    const QByteArray whole = keyMetaFile(keyScript("1:+Control 3:+C"), kCanvas);
    const auto patched = [&](int offset, qint32 value) {
        QByteArray bytes = whole;
        qToLittleEndian(value, bytes.data() + offset);
        return bytes;
    };
    const char sizeError[] = "W KelPlaybackKeyboardTrack meta file size error: \"";
    const char fpsError[] = "W KelPlaybackKeyboardTrack meta file frame rate error: \"";
    row("whole", whole, "", 2);
    row("other magic", patched(0, 0), "", 2);
    row("no record", keyMetaFile({}, kCanvas), "", 0);
    row("empty", "", sizeError, 0);
    row("header cut", whole.left(20), sizeError, 0);
    row("record cut", whole.left(whole.size() - 1), sizeError, 0);
    row("too long", whole + "x", sizeError, 0);
    row("negative count", patched(4, -2), sizeError, 0);
    row("count times 12 overflows", patched(4, 357913943), sizeError, 0);
    row("huge count", patched(4, INT_MAX), sizeError, 0);
    row("no frame rate", patched(8, 0), fpsError, 2);
    row("negative frame rate", patched(8, -30), fpsError, 2);
    row("huge frame rate", patched(8, INT_MAX), fpsError, 2);
    row("canvas of no size", patched(24, 0), "", 2);
    row("huge canvas", patched(28, INT_MAX), "", 2);
    row("negative canvas", patched(24, INT_MIN), "", 2);
    row("negative frame", patched(40, INT_MIN), "", 1);
    row("huge frame", patched(40, INT_MAX), "", 0);
    row("no such key", patched(44, INT_MIN), "", 2);
}

void PlaybackKeyboardTrackTest::readsInvalidFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, log);
    QFETCH(int, entries);

    m_recording.file("Keyboard/keyboard.keymeta", content);
    LogCapture capture;
    KelPlaybackKeyboardTrack track(dir(), 50, 1.0, QSize(), nullptr);
    const QStringList lines = capture.take();
    QCOMPARE(lines.size(), log.isEmpty() ? 0 : 1);
    QVERIFY2(log.isEmpty() || lines.first().startsWith(log), qPrintable(lines.join('\n')));
    QVERIFY(track.errorString().isEmpty());
    QCOMPARE(int(track.displayList().entries.size()), entries);
    track.setStyle(everything());
    for (const int frame : {-1, 0, 1, 3, 49, 50, INT_MAX}) {
        track.seekToFrame(frame);
        painted(track, kCanvas);
    }

    m_recording.without("Keyboard/keyboard.keymeta");
    const KelPlaybackKeyboardTrack missing(dir(), 50, 1.0, QSize(), nullptr);
    const QString error = "KelPlaybackKeyboardTrack open meta file failed: " + dir();
    QCOMPARE(missing.errorString(), error);
    QCOMPARE(capture.take(), QStringList{"C " + error});
}

void PlaybackKeyboardTrackTest::seeks()
{
    const auto track = load("0:+A 3:+B 200:+C");
    QCOMPARE(track->nextKeyFrame(), -1);
    const auto nextAfter = [&](int frame) {
        track->seekToFrame(frame);
        return track->nextKeyFrame();
    };
    QCOMPARE(nextAfter(1), 2);
    QCOMPARE(nextAfter(3), 4);
    QCOMPARE(nextAfter(93), 200); // three seconds after the last key
    QCOMPARE(nextAfter(94), -1);
    QCOMPARE(nextAfter(290), -1);
    QCOMPARE(nextAfter(0), -1);
    QVERIFY(paintedPart(painted(*track, kCanvas)).isEmpty());
    track->seekToFrame(3);
    QVERIFY(!paintedPart(painted(*track, kCanvas)).isEmpty());
    track->paint(nullptr);
    const RecordingTimeline timeline(1000, 60, 1000 * 1000 / 60);
    track->setContext(timeline, KelPlaybackRules::recommended());
    QCOMPARE(nextAfter(93), 94);
    track->setContext(timeline, {});

    KeyOverlayStyle brief = everything();
    brief.display.keepTimeSeconds = 1;
    track->seekToFrame(60);
    track->setStyle(brief); // at once, without another seek
    QVERIFY(paintedPart(painted(*track, kCanvas)).isEmpty());
    track->seekToFrame(3);
    track->resetHistory();
    QVERIFY(paintedPart(painted(*track, kCanvas)).isEmpty());
}

void PlaybackKeyboardTrackTest::shownTypes()
{
    for (const auto &[script, types] : {std::pair("1:+A", 1),
                                        {"1:+7", 1},
                                        {"1:+Return", 2},
                                        {"1:+Control", 4},
                                        {"1:+Control 2:+C", 8},
                                        {"1:+A 3:+F1", 3}}) {
        const auto track = load(script);
        track->seekToFrame(10);
        for (int shown = 0; shown < 16; ++shown) {
            KeyOverlayStyle style = everything();
            style.display.shownTypes = shown;
            track->setStyle(style);
            QCOMPARE(track->isVisible(), shown != 0);
            QVERIFY2(paintedPart(painted(*track, kCanvas)).isEmpty() != ((shown & types) != 0), script);
        }
        KeyOverlayStyle off = everything();
        off.enabled = false;
        track->setStyle(off);
        QVERIFY(!track->isVisible() && paintedPart(painted(*track, kCanvas)).isEmpty());
    }
}

void PlaybackKeyboardTrackTest::positionsBoxes()
{
    enum Position { Center = 1, Left, Right };
    for (const double scale : {1.0, 1.5, 2.0}) {
        for (const int position : {Center, Left, Right}) {
            const auto track = load("1:+Control 2:+C 3:-C 4:+Alt 5:+F4", kCanvas, scale);
            KeyOverlayStyle style = everything();
            style.displayPos = position;
            track->setStyle(style);
            track->seekToFrame(3);
            const QRect one = paintedPart(painted(*track, kCanvas));
            const int gap = int(4 * scale);
            QCOMPARE(kCanvas.height() - one.bottom() - 1, gap);
            const int left = one.left();
            const int right = kCanvas.width() - one.right() - 1;
            QVERIFY(position == Center ? qAbs(left - right) <= 1 : (position == Left ? left : right) == gap);

            track->seekToFrame(5); // a second box above the first
            const QRect two = paintedPart(painted(*track, kCanvas));
            QCOMPARE(two.bottom(), one.bottom());
            QCOMPARE(two.height(), 2 * one.height() + gap);
        }
    }
}

void PlaybackKeyboardTrackTest::boxesStayInsideTheCanvas()
{
    QString longWord;
    for (int i = 1; i < 20; ++i)
        longWord += QString("%1:+W ").arg(i);
    for (const QString &script :
         {QString("1:+Control 2:+C"), longWord, QString("1:+Shift 2:+Control 3:+Alt 4:+Meta 5:+MediaTogglePlayPause"),
          QString("1:+PageDown 2:+PageDown 3:+PageDown 4:+PageDown 5:+PageDown"),
          QString("1:+F1 2:+F2 3:+Control 4:+C 5:-Control 6:+F3 7:+F3")}) {
        for (const QSize &canvas : {QSize(640, 360), QSize(200, 100), QSize(121, 41), QSize(60, 300), QSize(9, 7)}) {
            const auto track = load(script, canvas);
            for (const int position : {0, 1, 2, 3}) {
                KeyOverlayStyle style = everything();
                style.displayPos = position;
                style.fontSizePx = style.historyFontSizePx = 22;
                track->setStyle(style);
                track->seekToFrame(20);
                // On a larger image, to detect painting outside of the canvas.
                const QRect ink = paintedPart(painted(*track, canvas * 2));
                QVERIFY2(QRect(QPoint(), canvas).contains(ink) || ink.isEmpty(), qPrintable(script));
                QVERIFY(!ink.isEmpty() || canvas.width() < 200);
            }
        }
    }
}

void PlaybackKeyboardTrackTest::everyKeyIsDrawnInside()
{
    std::vector<KeyRecord> records;
    const QMetaEnum keys = QMetaEnum::fromType<Qt::Key>();
    for (int i = 0; i < keys.keyCount(); ++i)
        records.push_back({keys.value(i), true, 100 * (int(records.size()) + 1)});
    for (const int key : {0x424, 0x5d0, 0x4e2d, 0x3042, 0x1f600, 1, -1})
        records.push_back({key, true, 100 * (int(records.size()) + 1)});
    // Modifiers would stay held; replaces them by another key.
    for (KeyRecord &record : records)
        record.key = modifierOfKey(shownKey(record.key)) || shownKey(record.key) == 0 ? Qt::Key_Up : record.key;
    const QSize canvas(300, 60);
    m_recording.size(300, 60).frames(1000, 30).keys(records);
    KelPlaybackKeyboardTrack track(dir(), 100 * (int(records.size()) + 2), 1.0, QSize(), nullptr);
    KeyOverlayStyle style = everything();
    style.display.keepTimeSeconds = 1;
    track.setStyle(style);
    for (const KeyRecord &record : records) {
        track.seekToFrame(record.frame);
        const QImage image = painted(track, canvas);
        const QRect ink = paintedPart(image);
        QVERIFY2(ink.left() > 0 && ink.right() < canvas.width() - 1 && ink.top() > 0,
                 qPrintable(QString::number(record.key, 16)));
        QVERIFY2(brightest(image) > 150, qPrintable(QString::number(record.key, 16)));
    }
}

void PlaybackKeyboardTrackTest::splitsModifiersFromKeys()
{
    const auto parts = [](const QString &text, int count) {
        const KeyBoxLayout layout({text, KeyDisplayItem::Combination, 0, count}, everything(), {kCanvas, 1.0}, 0.0,
                                  true);
        return QStringList{layout.chipText, layout.text, layout.labelText};
    };
    QCOMPARE(parts("Ctrl+C", 1), (QStringList{"Ctrl", " + C", ""}));
    QCOMPARE(parts("Shift+Ctrl+Left", 3), (QStringList{"Shift+Ctrl", " + Left", "x3"}));
    QCOMPARE(parts("Ctrl++", 1), (QStringList{"Ctrl", " + +", ""}));
    QCOMPARE(parts("+", 2), (QStringList{"", "+", "x2"}));
    QCOMPARE(parts("Return", 1), (QStringList{"", "Return", ""}));
}

void PlaybackKeyboardTrackTest::isSharpWhenScaled()
{
    const auto track = load("1:+Control 2:+C");
    track->seekToFrame(5);
    const QRect plain = paintedPart(painted(*track, kCanvas));
    const QImage doubled = painted(*track, kCanvas, 2.0);
    const QRect ink = paintedPart(doubled);
    QCOMPARE(ink, QRect(plain.topLeft() * 2, plain.size() * 2));
    // An enlarged image would have no lines of one pixel.
    int thinLines = 0;
    for (int y = ink.top(); y <= ink.bottom(); ++y) {
        for (int x = ink.left() + 1; x < ink.right(); ++x) {
            const QRgb pixel = doubled.pixel(x, y);
            thinLines += pixel != doubled.pixel(x - 1, y) && pixel != doubled.pixel(x + 1, y) ? 1 : 0;
        }
    }
    QVERIFY(thinLines > 50);
}

QTEST_MAIN(PlaybackKeyboardTrackTest)
#include "tst_playback_keyboard_track.moc"
