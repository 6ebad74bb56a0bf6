#include "facade/KelMovieUI.h"

#include "audio/processing/TrimmedAudio.h"
#include "facade/KelMultiTrackRecorder.h"
#include "keymouse/KelKeyMouseHook.h"
#include "screen/KelScreenManager.h"

#include <KelMovie/KelMovieVersion.h>

#include <memory>

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

QImage KelMovieUI::screenshot(const QRect &area)
{
    constexpr bool kWithPointer = false;
    const std::unique_ptr<KelScreenStreamer> streamer(
        KelScreenManager::instance()->createScreenStreamer(area, kWithPointer));
    QImage image;
    streamer->captureTo(image);
    return image;
}

QString KelMovieUI::version()
{
    return QStringLiteral(KELMOVIE_VERSION_STRING "-multitrack");
}
