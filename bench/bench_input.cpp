// Loading, seeking and painting recorded input. Prints "name<TAB>value<TAB>unit" lines.

#include "Figure.h"
#include "playback/keys/KelPlaybackKeyboardTrack.h"
#include "playback/keys/KeyDisplayListBuilder.h"
#include "playback/mouse/KelPlaybackMouseTrack.h"
#include "playback/mouse/PointerList.h"
#include "recording/KelRecordingFiles.h"
#include "recording/RecordingTimeline.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <QtEndian>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <functional>
#include <vector>

using namespace kel;

namespace
{

constexpr int kMoves = 1'000'000;
constexpr int kKeys = 100'000;
constexpr int kFramesOfKey = 10;
constexpr int kKeyFrames = kKeys * kFramesOfKey;
constexpr int kSeeks = 100'000;
constexpr int kPaints = 200;

/// Heap memory in use; 0 where the C library does not report it.
std::size_t allocatedBytes()
{
#ifdef __GLIBC__
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
#else
    return 0;
#endif
}

double msOf(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

/// One move per frame, formatted as in a recording, and four clicks whose effects overlap.
void writeMouse(const QString &dir, int moves)
{
    QDir(dir).mkpath(KelRecordingFiles::kCursorImageDir);
    QImage image(24, 24, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    image.save(KelRecordingFiles::path(dir, KelRecordingFiles::kCursorImageDir) + "/0123456789abcdef.png");
    write(KelRecordingFiles::path(dir, KelRecordingFiles::kCursorList),
          R"({"cursors":[{"id":"0123456789abcdef","image":"0123456789abcdef.png","device_pixel_ratio":1}]})");
    QByteArray text = "[\n";
    for (int i = 0; i < moves; ++i) {
        text += i == 0 ? "" : ",\n";
        text += "    {\n        \"action\": \"move\",\n        \"cursor\": \"0123456789abcdef\",\n        \"frame\": " +
                QByteArray::number(i) + ",\n        \"timestamp\": " + QByteArray::number(qint64(i) * 16) +
                ",\n        \"x\": " + QByteArray::number(i % 1900) +
                ",\n        \"y\": " + QByteArray::number(i % 1000) + "\n    }";
    }
    write(KelRecordingFiles::path(dir, KelRecordingFiles::kMouseMoves), text + "\n]\n");
    QByteArray clicks;
    for (int i = 0; i < 4; ++i) {
        for (bool isClick : {true, false}) {
            const int frame = isClick ? 1 + 2 * i : 90 + i;
            clicks += QByteArray(clicks.isEmpty() ? "" : ",") + R"({"action":")" + (isClick ? "click" : "release") +
                      R"(","button":")" + QList<QByteArray>{"left", "right", "middle"}[i % 3] + R"(","frame":)" +
                      QByteArray::number(frame) + R"(,"timestamp":)" + QByteArray::number(isClick ? 4000 : 4100) +
                      R"(,"x":400,"y":300})";
        }
    }
    write(KelRecordingFiles::path(dir, KelRecordingFiles::kMouseClicks), '[' + clicks + ']');
}

void measureList(const QString &dir)
{
    PointerList list;
    const std::size_t before = allocatedBytes();
    const double ms = msOf([&] { list.load(KelRecordingFiles::path(dir, KelRecordingFiles::kMouseMoves)); });
    const std::size_t after = allocatedBytes();
    printFigure("a million moves: load", ms, "ms");
    printFigure("a million moves: memory", double(after - before) / 1e6, "MB");
}

void measureSeeks(const QString &dir)
{
    KelPlaybackMouseTrack track(dir, nullptr);
    QRandomGenerator random(1);
    const double ms = msOf([&] {
        for (int i = 0; i < kSeeks; ++i)
            track.seekToFrame(int(random.bounded(kMoves)));
    });
    printFigure("a million moves: random seek", ms * 1000 / kSeeks, "us");
}

void measurePainting(const QString &dir)
{
    KelPlaybackMouseTrack track(dir, nullptr);
    track.setClickType(3);
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    double ms = 0;
    for (int i = 0; i < kPaints; ++i) {
        const int frame = 8 + i % 14; // all four effects are playing
        if (frame == 8) {
            for (int first = 0; first < frame; ++first)
                track.seekToFrame(first);
        }
        track.seekToFrame(frame);
        image.fill(Qt::white);
        QPainter painter(&image);
        ms += msOf([&] { track.paint(&painter); });
    }
    printFigure("pointer and four effects: paint", ms / kPaints, "ms");
}

/// Words, interrupted by function keys and shortcuts; each key is pressed and released.
void writeKeys(const QString &dir)
{
    std::vector<qint32> words{0, 2 * kKeys, 30, 0, 24 * kKeys, 0, 1920, 1080};
    for (int i = 0; i < kKeys; ++i) {
        const bool isShortcut = i % 16 == 14; // Control is held until after the next key
        const qint32 key = isShortcut ? Qt::Key_Control : i % 8 == 7 ? Qt::Key_F1 + i % 12 : Qt::Key_A + i % 26;
        const int frame = i * kFramesOfKey;
        words.insert(words.end(), {key, 1, frame});
        words.insert(words.end(), {key, 0, frame + (isShortcut ? kFramesOfKey + 5 : 5)});
        if (i % 16 == 15)
            std::swap_ranges(words.end() - 9, words.end() - 6, words.end() - 6); // sorted by frame
    }
    for (qint32 &word : words)
        word = qToLittleEndian(word);
    write(KelRecordingFiles::path(dir, KelRecordingFiles::kKeyLog),
          QByteArray(reinterpret_cast<const char *>(words.data()), int(words.size() * 4)));
}

KeyOverlayStyle wholeHistory()
{
    KeyOverlayStyle style;
    style.display.shownTypes = 15;
    style.fontSizePx = 22;
    style.historyFontSizePx = 20;
    style.display.keepTimeSeconds = 60;
    return style;
}

void measureKeys(const QString &dir)
{
    KeyLog recording;
    printFigure("100000 keys: read", msOf([&] { readKeyLog(dir, recording); }), "ms");
    const std::size_t before = allocatedBytes();
    KeyDisplayList list;
    const double buildMs = msOf([&] {
        list = KeyDisplayListBuilder::build(recording, kKeyFrames, wholeHistory().display, {}, RecordingTimeline());
    });
    const std::size_t after = allocatedBytes();
    printFigure("100000 keys: display list of a million frames", buildMs, "ms");
    printFigure("100000 keys: memory of the display list", double(after - before) / 1e6, "MB");

    KelPlaybackKeyboardTrack track(dir, kKeyFrames, 1.0, QSize(1920, 1080), nullptr);
    track.setStyle(wholeHistory());
    QRandomGenerator random(1);
    const double seekMs = msOf([&] {
        for (int i = 0; i < kSeeks; ++i)
            track.seekToFrame(random.bounded(kKeyFrames));
    });
    printFigure("100000 keys: random seek", seekMs * 1000 / kSeeks, "us");

    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    double paintMs = 0;
    for (int i = 0; i < kPaints; ++i) {
        track.seekToFrame(5000 + i);
        image.fill(Qt::white);
        QPainter painter(&image);
        paintMs += msOf([&] { track.paint(&painter); });
    }
    printFigure("key and whole history: paint", paintMs / kPaints, "ms");
}

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    const QTemporaryDir dir;
    writeMouse(dir.path(), kMoves);
    measureList(dir.path());
    measureSeeks(dir.path());
    writeMouse(dir.path(), 100);
    measurePainting(dir.path());
    writeKeys(dir.path());
    measureKeys(dir.path());
    return 0;
}
