// A host program as somebody else would write it, on the installed headers alone.

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMovieUI.h>
#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KelRecordingMetadata.h>

#include <QGuiApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    KelMovieUI movie;
    KelMultiTrackRecorder *recorder = movie.createMultiTrackRecorder();
    QString error;
    QObject::connect(recorder, &KelMultiTrackRecorder::recordingError, [&](const QString &text) { error = text; });
    const bool started = recorder->startRecording();
    std::printf("%s %s\n", qPrintable(KelMovieUI::version()), qPrintable(error));
    return !started && error == QLatin1String("Record area not set") && KelMovieFormatSuffix() == QLatin1String("mp4")
               ? 0
               : 1;
}
