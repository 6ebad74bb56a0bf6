// Loading and exporting recordings. Prints "name<TAB>value<TAB>unit" lines.

#include "Figure.h"
#include "avcodec/KelAVCodecEncoder.h"
#include "avcodec/mp4/KelAsyncEncoder.h"
#include "export/KelExportDependencies.h"
#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingMetadata.h"

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QDataStream>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QTemporaryDir>

#include <thread>
#include <vector>

namespace
{

constexpr int kVideoFrames = 120;
constexpr int kFps = 30;
const QSize kSize(1280, 720);

/// A scrolling page of text with a moving bar.
QImage makeFrame(int number)
{
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (int y = 0; y < kSize.height(); y += 16) {
        const int line = (y + number * 8) / 16;
        painter.setPen(QColor::fromHsv(line * 37 % 360, 255, 120));
        painter.drawText(10, y, QString("%1: the quick brown fox jumps over the lazy dog ").arg(line).repeated(3));
    }
    painter.fillRect(number * 9, 300, 120, 40, Qt::red);
    return image;
}

void writeVideo(const QString &path)
{
    KelAsyncEncoder::Params params;
    params.frameSize = kSize;
    params.path = path;
    KelAsyncEncoder encoder(params);
    for (int i = 0; i < kVideoFrames; ++i) {
        while (encoder.isBusy() && encoder.errorString().isEmpty())
            std::this_thread::yield();
        encoder.addFrame(i, makeFrame(i));
    }
    encoder.waitForClosed();
}

/// Writes metadata and index for `logicFrames` logic frames that show the whole video.
void writeIndex(const QString &dir, int logicFrames)
{
    KelRecordingMetadata metadata;
    metadata.recordArea = QRect(QPoint(), kSize);
    metadata.fps = kFps;
    metadata.durationMs = qint64(logicFrames) * 1000 / kFps;
    metadata.mouseTrack = false;
    metadata.save(dir);
    QFile file(KelRecordingFiles::frameIndexPath(dir));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write the index");
    QDataStream stream(&file);
    stream << qint32(1) << qint32(logicFrames);
    for (int i = 0; i < logicFrames; ++i)
        stream << qint32(qint64(i) * kVideoFrames / logicFrames);
}

void measureLoading(const QString &dir)
{
    writeIndex(dir, 1'000'000);
    QElapsedTimer timer;
    timer.start();
    const KelPlaybackTrackManager manager(dir, false);
    printFigure("load_million", double(timer.nsecsElapsed()) / 1e6, "ms");
}

void measureExport(const QString &dir, const QString &name, int format)
{
    KelPlaybackTrackManager manager(dir, false);
    std::vector<QImage> frames(kVideoFrames, QImage(kSize, QImage::Format_ARGB32_Premultiplied));
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < kVideoFrames; ++i) {
        manager.seek(i);
        QPainter painter(&frames[i]);
        manager.paint(&painter);
    }
    printFigure("export_" + name + "_decode_and_paint", kVideoFrames * 1e9 / double(timer.nsecsElapsed()), "frames/s");

    timer.restart();
    const auto encoder =
        KelExportDependencies::real().createEncoder(format, kSize, dir + "/alone", kFps, 90, QString());
    for (int i = 0; i < kVideoFrames; ++i)
        encoder->addFrame(quint64(i), frames[i]);
    if (!encoder->close())
        qFatal("%s", qPrintable(encoder->errorString()));
    printFigure("export_" + name + "_encoder_alone", kVideoFrames * 1e9 / double(timer.nsecsElapsed()), "frames/s");

    timer.restart();
    KelExportRequest request;
    request.format = format;
    request.fps = kFps;
    request.outputPath = dir + "/piped";
    request.playbackManager = &manager;
    KelExportPipeline pipeline(request);
    if (!pipeline.run())
        qFatal("%s", qPrintable(pipeline.errorString()));
    printFigure("export_" + name + "_pipeline", kVideoFrames * 1e9 / double(timer.nsecsElapsed()), "frames/s");
}

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    const QTemporaryDir dir;
    QDir(dir.path()).mkpath(KelRecordingFiles::kScreenDir);
    writeVideo(KelRecordingFiles::videoPath(dir.path()));
    measureLoading(dir.path());
    writeIndex(dir.path(), kVideoFrames);
    measureExport(dir.path(), "mp4", 0);
    return 0;
}
