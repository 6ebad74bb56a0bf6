// kel_record_sync DIR SECONDS PAUSES SPEED…: records the screen and what the computer plays into DIR/recording, with
// that many pauses, and exports the recording at each speed, whole and trimmed, to DIR/SPEED-whole.mp4 and
// DIR/SPEED-trim.mp4.

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

#include <cstdio>

namespace
{

constexpr int kFps = 60;
constexpr int kPauseMs = 1300; // not whole seconds: the flashes meet another phase of the clock after each

/// Records for `seconds` without the pauses, which divide them evenly.
bool record(const QString &dir, int seconds, int pauses)
{
    KelMultiTrackRecorder recorder;
    QObject::connect(&recorder, &KelMultiTrackRecorder::recordingError,
                     [](const QString &error) { std::fprintf(stderr, "kel_record_sync: %s\n", qPrintable(error)); });
    KelMultiTrackRecorder::RecordConfig config;
    config.outputDir = dir;
    config.fps = kFps;
    config.enableMouse = false;
    config.enableSystemAudio = true;
    recorder.setRecordConfig(config);
    recorder.setRecordArea(QGuiApplication::primaryScreen()->geometry());
    if (!recorder.startRecording())
        return false;
    const int stretchMs = seconds * 1000 / (pauses + 1);
    for (int i = 1; i <= pauses; ++i) {
        const int at = i * stretchMs + (i - 1) * kPauseMs;
        QTimer::singleShot(at, &recorder, &KelMultiTrackRecorder::pauseRecording);
        QTimer::singleShot(at + kPauseMs, &recorder, &KelMultiTrackRecorder::startRecording);
    }
    QTimer::singleShot(seconds * 1000 + pauses * kPauseMs, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    recorder.stopRecording();
    return true;
}

bool exportAt(KelPlaybackTrackManager &manager, const QString &dir, double speed, bool isTrimmed)
{
    KelExportRequest request;
    request.fps = kFps;
    request.speed = speed;
    request.playbackManager = &manager;
    request.trackDataDir = manager.recordDir();
    request.outputPath = QString("%1/%2-%3.mp4").arg(dir).arg(speed).arg(isTrimmed ? "trim" : "whole");
    if (isTrimmed) {
        request.trimStartMs = int(manager.durationMs() / 4);
        request.trimEndMs = int(manager.durationMs() * 3 / 4);
    }
    KelExportPipeline pipeline(request);
    if (pipeline.run())
        return true;
    std::fprintf(stderr, "kel_record_sync: %s\n", qPrintable(pipeline.errorString()));
    return false;
}

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() < 5) {
        std::fputs("usage: kel_record_sync DIR SECONDS PAUSES SPEED…\n", stderr);
        return 2;
    }
    const QString recording = arguments[1] + "/recording";
    if (!record(recording, arguments[2].toInt(), arguments[3].toInt()))
        return 1;
    KelPlaybackTrackManager manager(recording, false);
    for (const QString &speed : arguments.mid(4)) {
        for (const bool isTrimmed : {false, true}) {
            if (!exportAt(manager, arguments[1], speed.toDouble(), isTrimmed))
                return 1;
        }
    }
    return 0;
}
