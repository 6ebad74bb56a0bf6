// A host program as another developer would write it, using nothing but the installed headers.

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMovieUI.h>
#include <KelMovie/KelMovieVersion.h>
#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelPlayCtrlWidget.h>
#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KelRecordTimeLable.h>
#include <KelMovie/KelRecordingMetadata.h>

#include <QApplication>

#include <cstdio>

#if !KELMOVIE_VERSION_CHECK(2, 0, 0) || KELMOVIE_VERSION_CHECK(KELMOVIE_VERSION_MAJOR + 1, 0, 0)
#error "KELMOVIE_VERSION_CHECK does not compare versions"
#endif

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    KelPlayCtrlWidget controls;
    KelRecordTimeLable time;
    KelMovieUI movie;
    KelMultiTrackRecorder *recorder = movie.createMultiTrackRecorder();
    QString error;
    QObject::connect(recorder, &KelMultiTrackRecorder::recordingError, [&](const QString &text) { error = text; });
    const bool started = recorder->startRecording();
    std::printf("%s %s\n", qPrintable(KelMovieUI::version()), qPrintable(error));
    return !started && error == QLatin1String("Record area not set") &&
                   KelMovieUI::version().startsWith(KELMOVIE_VERSION_STRING "-") &&
                   KelMovieFormatSuffix() == QLatin1String("mp4") && time.text() == QLatin1String("00:00")
               ? 0
               : 1;
}
