// Makes a recording of any size and length, faster than a screen could be recorded.

#include "SceneRenderer.h"
#include "avcodec/mp4/KelAsyncEncoder.h"
#include "recording/FrameIndexWriter.h"
#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingMetadata.h"
#include "recording/wav/WavHeader.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <thread>
#include <vector>

using namespace kel;

namespace
{

constexpr int kSoundRate = 48000;

struct Wish {
    QSize size;
    int frames = 0;
    int fps = 0;
    QString content;
    bool hasSound = false;
    QString directory;
};

int fail(const QString &text)
{
    std::fprintf(stderr, "kel_made_recording: %s\n", qPrintable(text));
    return 1;
}

/// Paints the next frame over the one before.
using Painting = std::function<void(QImage &picture, int frame)>;

Painting scenePainting(const QSize &size)
{
    return [scene = std::make_shared<SceneRenderer>(size)](QImage &picture, int frame) {
        QPainter painter(&picture);
        scene->paint(painter, frame, scene->changed(frame));
    };
}

/// What no encoder makes smaller.
Painting noisePainting()
{
    return [random = std::mt19937_64(1)](QImage &picture, int) mutable {
        auto *words = reinterpret_cast<quint64 *>(picture.bits());
        std::generate(words, words + picture.sizeInBytes() / qsizetype(sizeof *words), std::ref(random));
    };
}

/// Eight colours in a row, and below them the number of the frame: ten binary digits, white for 1.
void paintNumber(QImage &picture, int frame)
{
    constexpr QRgb colours[]{0xff0000, 0x00ff00, 0x0000ff, 0xffff00, 0xff00ff, 0x808080, 0xffffff, 0x204060};
    constexpr int digits = 10;
    QPainter painter(&picture);
    painter.fillRect(picture.rect(), QColor(colours[0]));
    const QRect top(0, 0, picture.width(), picture.height() / 2);
    const auto cell = [&](const QRect &row, int number, int count) {
        const int left = row.width() * number / count;
        return QRect(left, row.top(), row.width() * (number + 1) / count - left, row.height());
    };
    for (int i = 0; i < 8; ++i)
        painter.fillRect(cell(top, i, 8), QColor(colours[i]));
    for (int i = 0; i < digits; ++i)
        painter.fillRect(cell(top.translated(0, top.height()), i, digits),
                         frame >> (digits - 1 - i) & 1 ? Qt::white : Qt::black);
}

Painting paintingOf(const QString &content, const QSize &size)
{
    if (content == "scene")
        return scenePainting(size);
    if (content == "noise")
        return noisePainting();
    return content == "numbers" ? paintNumber : Painting();
}

QString writeScreen(const Wish &wish)
{
    if (!QDir().mkpath(KelRecordingFiles::path(wish.directory, KelRecordingFiles::kScreenDir)))
        return "cannot create " + wish.directory;
    KelAsyncEncoder::Params params;
    params.frameSize = wish.size;
    params.inputFormat = QImage::Format_RGB32;
    params.path = KelRecordingFiles::videoPath(wish.directory);
    KelAsyncEncoder encoder(params);
    const Painting paint = paintingOf(wish.content, wish.size);
    if (!paint)
        return "there is no content " + wish.content;
    QImage picture(wish.size, QImage::Format_RGB32);
    for (int frame = 0; frame < wish.frames && encoder.errorString().isEmpty(); ++frame) {
        paint(picture, frame);
        while (encoder.isBusy() && encoder.errorString().isEmpty())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        encoder.addFrame(frame, picture);
    }
    encoder.waitForClosed();
    if (!encoder.errorString().isEmpty())
        return encoder.errorString();
    std::vector<qint64> entries(std::size_t(wish.frames));
    std::iota(entries.begin(), entries.end(), 0);
    FrameIndexWriter index(KelRecordingFiles::frameIndexPath(wish.directory));
    return index.update(entries) ? QString() : QStringLiteral("cannot write the frame index");
}

/// A tone that rises from second to second.
QString writeSound(const QString &directory, qint64 durationMs)
{
    const QString voiceDir = KelRecordingFiles::path(directory, KelRecordingFiles::kVoiceDir);
    if (!QDir().mkpath(voiceDir))
        return "cannot create " + voiceDir;
    QFile file(voiceDir + "/" + KelRecordingFiles::kSystemAudio + "_0.wav");
    const qint64 samples = kSoundRate * durationMs / 1000;
    WavHeader header = WavHeader::pcm(kSoundRate, 1, 16);
    header.setDataSize(samples * 2);
    if (!file.open(QIODevice::WriteOnly) || file.write(header.toBytes()) != WavHeader::Size)
        return file.errorString();
    double phase = 0;
    std::vector<qint16> second(kSoundRate);
    for (qint64 done = 0; done < samples; done += kSoundRate) {
        const double hz = 300.0 + double(done / kSoundRate % 24) * 50;
        for (qint16 &sample : second) {
            sample = qToLittleEndian(qint16(8000 * std::sin(phase)));
            phase = std::fmod(phase + hz * 2 * M_PI / kSoundRate, 2 * M_PI);
        }
        const qint64 bytes = std::min<qint64>(kSoundRate, samples - done) * 2;
        if (file.write(reinterpret_cast<const char *>(second.data()), bytes) != bytes)
            return file.errorString();
    }
    return {};
}

QString writeRecording(const Wish &wish)
{
    QString error = writeScreen(wish);
    KelRecordingMetadata metadata;
    metadata.recordArea = QRect(QPoint(0, 0), wish.size);
    metadata.fps = wish.fps;
    metadata.totalFrames = metadata.actualRecordedFrames = wish.frames;
    metadata.durationMs = qint64(wish.frames) * 1000 / wish.fps;
    metadata.mouseTrack = false;
    metadata.systemAudio = wish.hasSound;
    if (error.isEmpty() && wish.hasSound)
        error = writeSound(wish.directory, metadata.durationMs);
    if (error.isEmpty())
        metadata.save(wish.directory, &error);
    return error;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() < 7)
        return fail("usage: WIDTH HEIGHT FRAMES FPS scene|noise|numbers DIRECTORY [sound]");
    Wish wish;
    wish.size = QSize(arguments[1].toInt(), arguments[2].toInt());
    wish.frames = arguments[3].toInt();
    wish.fps = arguments[4].toInt();
    wish.content = arguments[5];
    wish.directory = arguments[6];
    wish.hasSound = arguments.size() > 7;
    if (wish.size.isEmpty() || wish.frames < 1 || wish.fps < 1)
        return fail("sizes, frames and frames a second are at least 1");
    const QString error = writeRecording(wish);
    return error.isEmpty() ? 0 : fail(error);
}
