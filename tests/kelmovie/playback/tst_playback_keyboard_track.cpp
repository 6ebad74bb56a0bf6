#include "kelmovie/support/RecordingOnDisk.h"
#include "support/LogCapture.h"
#include "support/PaintedPart.h"
#include "support/TestTable.h"

#include "playback/keys/KelPlaybackKeyboardTrack.h"
#include "playback/keys/KeyBoxLayout.h"
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

QImage painted(KelPlaybackKeyboardTrack &track, const QSize &size = kCanvas, double ratio = 1.0)
{
    QImage image((QSizeF(size) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    track.paint(&painter);
    return image;
}

bool isBlank(KelPlaybackKeyboardTrack &track)
{
    return paintedPart(painted(track)).isEmpty();
}

template <typename Condition>
int count(const QImage &image, Condition isCounted)
{
    int pixels = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            pixels += isCounted(image.pixel(x, y));
    }
    return pixels;
}
int lightPixels(const QImage &image)
{
    return count(image, [](QRgb pixel) { return qGray(pixel) > 150; });
}
int blackPixels(const QImage &image)
{
    return count(image, [](QRgb pixel) { return pixel == 0xff000000; });
}

/// The painted boxes, from the lowest to the highest.
std::vector<QRect> boxesIn(const QImage &image)
{
    std::vector<QRect> boxes;
    for (int bottom = image.height() - 1; bottom >= 0;) {
        int top = bottom;
        while (top >= 0 && !paintedPart(image.copy(0, top, image.width(), 1)).isEmpty())
            --top;
        if (top < bottom)
            boxes.push_back(paintedPart(image.copy(0, top + 1, image.width(), bottom - top)).translated(0, top + 1));
        bottom = std::min(top, bottom - 1);
    }
    return boxes;
}

} // namespace

class PlaybackKeyboardTrackTest : public QObject
{
    Q_OBJECT

private slots:
    void readsInvalidFiles_data();
    void readsInvalidFiles();
    void seeks();
    void shownTypes();
    void stacksBoxes();
    void paintsWholeBoxes();
    void boxesStayInsideTheCanvas();
    void splitsModifiersFromKeys();
    void isSharpWhenScaled();

private:
    std::unique_ptr<KelPlaybackKeyboardTrack> load(const std::vector<KeyRecord> &records, const QSize &canvas = kCanvas,
                                                   double scale = 1.0, const KeyOverlayStyle &style = everything())
    {
        m_recording.size(canvas.width(), canvas.height()).keys(records);
        auto track = std::make_unique<KelPlaybackKeyboardTrack>(dir(), 100'000, scale, QSize(), nullptr);
        track->setStyle(style);
        return track;
    }
    /// The image of the last key that is pressed.
    QImage paintedAt(const QString &script, double scale = 1.0, const KeyOverlayStyle &style = everything())
    {
        const std::vector<KeyRecord> records = keyScript(script);
        const auto track = load(records, kCanvas, scale, style);
        track->seekToFrame(records.back().frame);
        return painted(*track);
    }
    QString dir() const { return m_recording.filePath("Keyboard"); }

    RecordingOnDisk m_recording = RecordingOnDisk().frames(100, 30);
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
    row("no record", keyMetaFile({}, kCanvas), "", 0);
    row("empty", "", sizeError, 0);
    row("record cut", whole.left(whole.size() - 1), sizeError, 0);
    row("too long", whole + "x", sizeError, 0);
    row("negative count", patched(4, -2), sizeError, 0);
    row("no frame rate", patched(8, 0), fpsError, 2);
    row("negative frame", patched(40, INT_MIN), "", 1);
    row("huge frame", patched(40, INT_MAX), "", 0);
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

    m_recording.without("Keyboard/keyboard.keymeta");
    const KelPlaybackKeyboardTrack missing(dir(), 50, 1.0, QSize(), nullptr);
    const QString error = "KelPlaybackKeyboardTrack open meta file failed: " + dir();
    QCOMPARE(missing.errorString(), error);
    QCOMPARE(capture.take(), QStringList{"C " + error});
}

void PlaybackKeyboardTrackTest::seeks()
{
    const auto track = load(keyScript("0:+A 3:+B 200:+C"));
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
    QVERIFY(isBlank(*track));
    track->paint(nullptr);
    const RecordingTimeline timeline(1000, 60, 1000 * 1000 / 60);
    track->setContext(timeline, KelPlaybackRules::recommended());
    QCOMPARE(nextAfter(93), 94);
    track->setContext(timeline, {});

    // Whether another image is painted.
    track->seekToFrame(94);
    QVERIFY(track->moveToFrame(3));
    QVERIFY(!track->moveToFrame(90));
    QVERIFY(track->moveToFrame(200));
    QVERIFY(track->moveToFrame(3));
    QVERIFY(track->moveToFrame(94));

    KeyOverlayStyle brief = everything();
    brief.display.keepTimeSeconds = 1;
    track->seekToFrame(60);
    QVERIFY(!isBlank(*track));
    track->setStyle(brief); // at once, without another seek
    QVERIFY(isBlank(*track));
    track->seekToFrame(3);
    track->resetHistory();
    QVERIFY(isBlank(*track));
}

void PlaybackKeyboardTrackTest::shownTypes()
{
    for (const auto &[script, types] : {std::pair("1:+A", 1),
                                        {"1:+7", 1},
                                        {"1:+Return", 2},
                                        {"1:+Control", 4},
                                        {"1:+Control 2:+C", 8},
                                        {"1:+A 3:+F1", 3}}) {
        const auto track = load(keyScript(script));
        track->seekToFrame(10);
        KeyOverlayStyle style = everything();
        for (int shown = 0; shown < 16; ++shown) {
            style.display.shownTypes = shown;
            track->setStyle(style);
            QCOMPARE(track->isVisible(), shown != 0);
            QVERIFY2(isBlank(*track) != ((shown & types) != 0), script);
        }
        style.enabled = false;
        track->setStyle(style);
        QVERIFY(!track->isVisible() && isBlank(*track));
    }
}

void PlaybackKeyboardTrackTest::stacksBoxes()
{
    for (const double scale : {1.0, 1.5, 2.0}) {
        const int gap = int(4 * scale);
        KeyOverlayStyle style = everything();
        for (const auto position :
             {KeyOverlayStyle::BottomCenter, KeyOverlayStyle::BottomLeft, KeyOverlayStyle::BottomRight}) {
            style.displayPos = position;
            // The widest is the oldest, the narrowest the newest.
            const auto boxes = boxesIn(paintedAt("1:+PageDown 3:+Left 5:+F4", scale, style));
            QCOMPARE(boxes.size(), size_t(3));
            QCOMPARE(kCanvas.height() - boxes[0].bottom() - 1, gap);
            for (int i = 0; i < 3; ++i) {
                const int left = boxes[i].left();
                const int right = kCanvas.width() - boxes[i].right() - 1;
                if (position == KeyOverlayStyle::BottomCenter)
                    QVERIFY(qAbs(left - right) <= 1);
                else
                    QCOMPARE(position == KeyOverlayStyle::BottomLeft ? left : right, gap);
                QVERIFY(i == 0 || boxes[i].width() > boxes[i - 1].width());
                QVERIFY(i == 0 || boxes[i - 1].top() - boxes[i].bottom() - 1 == gap);
            }
        }
    }
    // Scaled as a whole; the font only in whole pixels.
    const QRect one = paintedPart(paintedAt("1:+Return"));
    const QRect two = paintedPart(paintedAt("1:+Return", 2.0));
    QVERIFY(qAbs(double(two.width()) / one.width() - 2) < 0.1 && qAbs(double(two.height()) / one.height() - 2) < 0.1);

    KeyOverlayStyle smallHistory = everything();
    smallHistory.historyFontSizePx = 10;
    const auto boxes = boxesIn(paintedAt("1:+F1 3:+F2", 1.0, smallHistory));
    QVERIFY(boxes.at(1).height() < boxes.at(0).height());
}

/// With nothing missing: text, chip of the modifiers, number of repetitions.
void PlaybackKeyboardTrackTest::paintsWholeBoxes()
{
    KeyOverlayStyle style = everything();
    style.displayPos = KeyOverlayStyle::BottomLeft;
    const QImage once = paintedAt("1:+Return", 1.0, style);
    const QRect box = paintedPart(once);
    QVERIFY(lightPixels(once) > 20 && blackPixels(once) == 0);
    QCOMPARE(once.pixel(box.center().x(), box.top()), qRgba(0, 0, 0, 180));
    QCOMPARE(once.pixel(box.topLeft()), qRgba(0, 0, 0, 0)); // rounded

    const QImage twice = paintedAt("1:+Return 3:-Return 5:+Return", 1.0, style);
    const QRect wider = paintedPart(twice);
    QCOMPARE(QRect(wider.topLeft(), box.size()), box);
    QVERIFY(lightPixels(twice.copy(wider.adjusted(box.width(), 0, 0, 0))) > 10);

    style.bgColor = QColor(0, 0, 0, 100); // opaque on the chip
    const QImage combination = paintedAt("1:+Control 3:+C", 1.0, style);
    const QRect whole = paintedPart(combination);
    const QImage left = combination.copy(whole.adjusted(0, 0, -whole.width() / 2, 0));
    QVERIFY(lightPixels(left) > 200 && blackPixels(left) > 10);
}

void PlaybackKeyboardTrackTest::boxesStayInsideTheCanvas()
{
    QString longWord;
    for (int i = 1; i < 20; ++i)
        longWord += QString("%1:+W ").arg(i);
    KeyOverlayStyle style = everything();
    style.fontSizePx = style.historyFontSizePx = 22;
    for (const QString &script :
         {QString("1:+Control 2:+C"), longWord, QString("1:+Shift 2:+Control 3:+Alt 4:+Meta 5:+MediaTogglePlayPause"),
          QString("1:+PageDown 2:+PageDown 3:+PageDown 4:+PageDown 5:+PageDown"), QString("1:+א 2:+中 3:+あ 4:+Up"),
          QString("1:+F1 2:+F2 3:+Control 4:+C 5:-Control 6:+F3 7:+F3")}) {
        for (const QSize &canvas : {QSize(640, 360), QSize(200, 100), QSize(121, 41), QSize(60, 300), QSize(9, 7)}) {
            for (style.displayPos = 0; style.displayPos < 4; ++style.displayPos) {
                const auto track = load(keyScript(script), canvas, 1.0, style);
                track->seekToFrame(20);
                // On a larger image, to detect painting outside of the canvas.
                const QImage image = painted(*track, canvas * 2);
                QVERIFY2(QRect(QPoint(), canvas).contains(paintedPart(image)) || lightPixels(image) == 0,
                         qPrintable(script));
                QVERIFY(lightPixels(image) > 0 || canvas.width() < 200);
            }
        }
    }
}

void PlaybackKeyboardTrackTest::splitsModifiersFromKeys()
{
    for (const QStringList &parts : {QStringList{"Ctrl+C", "Ctrl", " + C"},
                                     {"Shift+Ctrl+Left", "Shift+Ctrl", " + Left"},
                                     {"Ctrl++", "Ctrl", " + +"},
                                     {"+", "", "+"}}) {
        const KeyBoxLayout layout({parts[0], KeyDisplayItem::Combination, 0, 1}, everything(), {kCanvas, 1.0}, 0, true);
        QCOMPARE(layout.chipText, parts[1]);
        QCOMPARE(layout.text, parts[2]);
    }
}

void PlaybackKeyboardTrackTest::isSharpWhenScaled()
{
    const auto track = load(keyScript("1:+Control 2:+C"));
    track->seekToFrame(5);
    const QImage plain = painted(*track);
    const QImage doubled = painted(*track, kCanvas, 2.0);
    const QRect ink = paintedPart(plain);
    QCOMPARE(paintedPart(doubled), QRect(ink.topLeft() * 2, ink.size() * 2));
    QVERIFY(doubled.copy() != plain.scaled(doubled.size()));
}

QTEST_MAIN(PlaybackKeyboardTrackTest)
#include "tst_playback_keyboard_track.moc"
