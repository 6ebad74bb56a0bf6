// Makes a recording of any size and length, faster than recording a screen.

#include "SceneRenderer.h"
#include "avcodec/mp4/KelAsyncEncoder.h"
#include "recording/FrameTableWriter.h"
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

struct Request {
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

/// Paints the next frame over the previous one.
using PaintFrame = std::function<void(QImage &image, int frame)>;

PaintFrame paintScene(const QSize &size)
{
    return [scene = std::make_shared<SceneRenderer>(size)](QImage &image, int frame) {
        QPainter painter(&image);
        scene->paint(painter, frame, scene->changed(frame));
    };
}

/// Incompressible.
PaintFrame paintNoise()
{
    return [random = std::mt19937_64(1)](QImage &image, int) mutable {
        auto *words = reinterpret_cast<quint64 *>(image.bits());
        std::generate(words, words + image.sizeInBytes() / qsizetype(sizeof *words), std::ref(random));
    };
}

/// Eight colors in a row, and below them the frame number: ten binary digits, white for 1.
void paintNumber(QImage &image, int frame)
{
    constexpr QRgb kColors[]{0xff0000, 0x00ff00, 0x0000ff, 0xffff00, 0xff00ff, 0x808080, 0xffffff, 0x204060};
    constexpr int kDigits = 10;
    QPainter painter(&image);
    painter.fillRect(image.rect(), QColor(kColors[0]));
    const QRect top(0, 0, image.width(), image.height() / 2);
    const auto cell = [&](const QRect &row, int number, int count) {
        const int left = row.width() * number / count;
        return QRect(left, row.top(), row.width() * (number + 1) / count - left, row.height());
    };
    for (int i = 0; i < 8; ++i)
        painter.fillRect(cell(top, i, 8), QColor(kColors[i]));
    for (int i = 0; i < kDigits; ++i)
        painter.fillRect(cell(top.translated(0, top.height()), i, kDigits),
                         frame >> (kDigits - 1 - i) & 1 ? Qt::white : Qt::black);
}

PaintFrame paintFunction(const QString &content, const QSize &size)
{
    if (content == "scene")
        return paintScene(size);
    if (content == "noise")
        return paintNoise();
    return content == "numbers" ? paintNumber : PaintFrame();
}

QString writeScreen(const Request &request)
{
    if (!QDir().mkpath(KelRecordingFiles::path(request.directory, KelRecordingFiles::kScreenDir)))
        return "cannot create " + request.directory;
    KelAsyncEncoder::Params params;
    params.frameSize = request.size;
    params.inputFormat = QImage::Format_RGB32;
    params.path = KelRecordingFiles::videoPath(request.directory);
    KelAsyncEncoder encoder(params);
    const PaintFrame paint = paintFunction(request.content, request.size);
    if (!paint)
        return "unknown content " + request.content;
    QImage image(request.size, QImage::Format_RGB32);
    for (int frame = 0; frame < request.frames && encoder.errorString().isEmpty(); ++frame) {
        paint(image, frame);
        while (encoder.isBusy() && encoder.errorString().isEmpty())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        encoder.addFrame(frame, image);
    }
    encoder.waitForClosed();
    if (!encoder.errorString().isEmpty())
        return encoder.errorString();
    std::vector<qint64> entries(std::size_t(request.frames));
    std::iota(entries.begin(), entries.end(), 0);
    FrameTableWriter index(KelRecordingFiles::frameIndexPath(request.directory));
    return index.update(entries) ? QString() : "cannot write the frame index";
}

/// A tone that rises every second.
QString writeSound(const QString &directory, qint64 durationMs)
{
    const QString voiceDir = KelRecordingFiles::path(directory, KelRecordingFiles::kVoiceDir);
    if (!QDir().mkpath(voiceDir))
        return "cannot create " + voiceDir;
    QFile file(voiceDir + "/" + KelRecordingFiles::kSystemAudio + "_0.wav");
    const qint64 samples = kSoundRate * durationMs / 1000;
    WavHeader header = WavHeader::pcm(kSoundRate, 1, 16);
    header.setDataSize(samples * 2);
    if (!file.open(QIODevice::WriteOnly) || file.write(header.toBytes()) != WavHeader::kSize)
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

QString writeRecording(const Request &request)
{
    QString error = writeScreen(request);
    KelRecordingMetadata metadata;
    metadata.recordArea = QRect(QPoint(0, 0), request.size);
    metadata.fps = request.fps;
    metadata.totalFrames = metadata.actualRecordedFrames = request.frames;
    metadata.durationMs = qint64(request.frames) * 1000 / request.fps;
    metadata.mouseTrack = false;
    metadata.systemAudio = request.hasSound;
    if (error.isEmpty() && request.hasSound)
        error = writeSound(request.directory, metadata.durationMs);
    if (error.isEmpty())
        metadata.save(request.directory, &error);
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
    Request request;
    request.size = QSize(arguments[1].toInt(), arguments[2].toInt());
    request.frames = arguments[3].toInt();
    request.fps = arguments[4].toInt();
    request.content = arguments[5];
    request.directory = arguments[6];
    request.hasSound = arguments.size() > 7;
    if (request.size.isEmpty() || request.frames < 1 || request.fps < 1)
        return fail("WIDTH, HEIGHT, FRAMES and FPS must be at least 1");
    const QString error = writeRecording(request);
    return error.isEmpty() ? 0 : fail(error);
}
