// Stepping and seeking in a long recording. Prints "name<TAB>value<TAB>unit" lines.
// Usage: kel_bench_seek [RECORDING.mp4]. Without a file it makes an hour of a desktop scene, about 8 GB in TMPDIR.

#include "Figure.h"
#include "SceneRenderer.h"
#include "avcodec/decode/h264Decoder.h"
#include "avcodec/ffmpeg/AvHandles.h"
#include "avcodec/mp4/KelAsyncEncoder.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <random>
#include <thread>
#include <vector>

namespace
{

const QSize kSize(1920, 1080);
constexpr int kFps = 30;
constexpr int kSceneFrames = 20 * kFps;
constexpr int kHourFrames = 3600 * kFps;
constexpr int kSeeks = 400;
constexpr int kSteps = 600;

void check(int result, const char *what)
{
    if (result < 0)
        qFatal("%s: %s", what, qPrintable(av::errorText(result)));
}

/// The beginning of the recording, encoded with the recorder's settings.
void recordScene(const QString &path)
{
    KelAsyncEncoder::Params params;
    params.frameSize = kSize;
    params.inputFormat = QImage::Format_RGB32;
    params.path = path;
    params.fps = kFps;
    KelAsyncEncoder encoder(params);

    const SceneRenderer scene(kSize);
    QImage picture(kSize, QImage::Format_RGB32);
    for (int frame = 0; frame < kSceneFrames; ++frame) {
        QPainter painter(&picture);
        scene.paint(painter, frame, scene.changed(frame));
        painter.end();
        while (encoder.isBusy() && encoder.errorString().isEmpty())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        encoder.addFrame(frame, picture);
    }
    encoder.waitForClosed();
    if (!encoder.errorString().isEmpty())
        qFatal("%s", qPrintable(encoder.errorString()));
}

std::vector<av::Packet> packetsOf(AVFormatContext *input)
{
    std::vector<av::Packet> packets;
    for (;;) {
        av::Packet packet(av_packet_alloc());
        if (av_read_frame(input, packet.get()) < 0)
            return packets;
        packets.push_back(std::move(packet));
    }
}

/// Makes an hour of video by repeating the packets of the short recording.
void repeat(const QString &shortPath, const QString &longPath)
{
    AVFormatContext *opened = nullptr;
    check(avformat_open_input(&opened, QFile::encodeName(shortPath).constData(), nullptr, nullptr), "open the scene");
    const av::FormatContext input(opened);
    const AVStream *const from = input->streams[0];
    const std::vector<av::Packet> packets = packetsOf(input.get());

    AVFormatContext *created = nullptr;
    const QByteArray path = QFile::encodeName(longPath);
    check(avformat_alloc_output_context2(&created, nullptr, "mp4", path.constData()), "create the recording");
    const av::FormatContext output(created);
    AVStream *const to = avformat_new_stream(output.get(), nullptr);
    check(avcodec_parameters_copy(to->codecpar, from->codecpar), "describe the video");
    to->time_base = from->time_base;
    to->avg_frame_rate = from->avg_frame_rate;
    check(avio_open(&output->pb, path.constData(), AVIO_FLAG_WRITE), "open the recording");
    check(avformat_write_header(output.get(), nullptr), "begin the recording");

    const qint64 frameTime = av_rescale_q(1, {1, kFps}, from->time_base);
    const av::Packet copy(av_packet_alloc());
    for (int frame = 0; frame < kHourFrames; ++frame) {
        check(av_packet_ref(copy.get(), packets[frame % packets.size()].get()), "copy a packet");
        copy->pts = copy->dts = frame * frameTime;
        copy->duration = frameTime;
        av_packet_rescale_ts(copy.get(), from->time_base, to->time_base);
        check(av_write_frame(output.get(), copy.get()), "write the recording");
        av_packet_unref(copy.get());
    }
    check(av_write_trailer(output.get()), "complete the recording");
    check(avio_closep(&output->pb), "close the recording");
}

QString makeRecording(const QTemporaryDir &dir)
{
    const QString scene = dir.filePath("scene.mp4");
    recordScene(scene);
    const qint64 needed = QFileInfo(scene).size() * (kHourFrames / kSceneFrames);
    if (QStorageInfo(dir.path()).bytesAvailable() < needed + needed / 8)
        qFatal("an hour takes %lld MB, which %s does not have", needed / 1'000'000, qPrintable(dir.path()));
    QString hour = dir.filePath("hour.mp4");
    repeat(scene, hour);
    return hour;
}

double msFor(h264Decoder &decoder, int frame)
{
    QElapsedTimer timer;
    timer.start();
    if (decoder.decodeFrame(frame).isNull())
        qFatal("frame %d cannot be decoded", frame);
    return double(timer.nsecsElapsed()) / 1e6;
}

void measureSeeking(h264Decoder &decoder)
{
    std::mt19937 random(1);
    std::uniform_int_distribution<int> anyFrame(0, decoder.getFrameCount() - 1);
    std::vector<double> times;
    times.reserve(kSeeks);
    for (int i = 0; i < kSeeks; ++i)
        times.push_back(msFor(decoder, anyFrame(random)));
    std::sort(times.begin(), times.end());
    printFigure("seek_random_median", times[kSeeks / 2], "ms");
    printFigure("seek_random_p95", times[kSeeks * 95 / 100], "ms");
    printFigure("seek_random_max", times.back(), "ms");
}

void measureStepping(h264Decoder &decoder, const QString &name, int first, int step, int count)
{
    const quint64 decodedBefore = decoder.decodedFrames();
    double ms = 0;
    for (int i = 0; i < count; ++i)
        ms += msFor(decoder, first + i * step);
    printFigure("step_" + name, count * 1000 / ms, "frames/s");
    printFigure("step_" + name + "_decoded", double(decoder.decodedFrames() - decodedBefore) / count, "frames/step");
}

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    const QTemporaryDir dir;
    const QStringList arguments = QGuiApplication::arguments();
    const QString path = arguments.size() > 1 ? arguments[1] : makeRecording(dir);

    QElapsedTimer timer;
    timer.start();
    h264Decoder decoder(path, h264Decoder::PreferH264DecodeParams(false));
    printFigure("seek_open", double(timer.nsecsElapsed()) / 1e6, "ms");
    const int frames = decoder.getFrameCount();
    printFigure("seek_frames", frames, "frames");
    if (frames == 0)
        return 1;
    measureSeeking(decoder);
    const int steps = std::min(kSteps, frames);
    measureStepping(decoder, "forward", 0, 1, steps);
    measureStepping(decoder, "backward", frames - 1, -1, steps);
    return 0;
}
