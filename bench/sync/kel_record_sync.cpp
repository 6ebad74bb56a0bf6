// kel_record_sync DIR SECONDS PAUSES FPS: records a part of the screen, and what the computer plays, into DIR, for
// SECONDS without the pauses.

#include <KelMovie/KelMultiTrackRecorder.h>

#include <QGuiApplication>
#include <QTimer>

#include <cstdio>

namespace
{

constexpr int kPauseMs = 1300; // not whole seconds: the flashes meet another phase of the clock after each
constexpr QRect kArea(0, 0, 640, 360);

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 5) {
        std::fputs("usage: kel_record_sync DIR SECONDS PAUSES FPS\n", stderr);
        return 2;
    }
    const int seconds = arguments[2].toInt();
    const int pauses = arguments[3].toInt();
    KelMultiTrackRecorder recorder;
    QObject::connect(&recorder, &KelMultiTrackRecorder::recordingError,
                     [](const QString &error) { std::fprintf(stderr, "kel_record_sync: %s\n", qPrintable(error)); });
    KelMultiTrackRecorder::RecordConfig config;
    config.outputDir = arguments[1];
    config.fps = arguments[4].toInt();
    config.enableMouse = false;
    config.enableSystemAudio = true;
    recorder.setRecordConfig(config);
    recorder.setRecordArea(kArea);
    if (!recorder.startRecording())
        return 1;
    const int stretchMs = seconds * 1000 / (pauses + 1);
    for (int i = 1; i <= pauses; ++i) {
        const int at = i * stretchMs + (i - 1) * kPauseMs;
        QTimer::singleShot(at, &recorder, &KelMultiTrackRecorder::pauseRecording);
        QTimer::singleShot(at + kPauseMs, &recorder, &KelMultiTrackRecorder::startRecording);
    }
    QTimer::singleShot(seconds * 1000 + pauses * kPauseMs, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    recorder.stopRecording();
    return 0;
}
