#include "facade/KelMovieUI.h"

#include "audio/processing/TrimmedAudio.h"
#include "facade/KelMultiTrackRecorder.h"
#include "keymouse/KelKeyMouseHook.h"

#include <KelMovie/KelMovieVersion.h>

KelMovieUI::KelMovieUI(QObject *parent)
    : QObject(parent)
{
}

KelMovieUI::~KelMovieUI() = default;

KelMultiTrackRecorder *KelMovieUI::createMultiTrackRecorder()
{
    return new KelMultiTrackRecorder(this);
}

QString KelMovieUI::createTrimmedAudioFile(const QString &audioPath, int startMs, int endMs, const QString &outputPath)
{
    return kel::createTrimmedAudioFile(audioPath, startMs, endMs, outputPath);
}

void KelMovieUI::setReadsInputDevices(bool isAllowed)
{
    KelKeyMouseHook::setReadsInputDevices(isAllowed);
}

QString KelMovieUI::version()
{
    return QStringLiteral(KELMOVIE_VERSION_STRING "-multitrack");
}
