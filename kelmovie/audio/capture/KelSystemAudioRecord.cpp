#include "audio/capture/KelSystemAudioRecord.h"

#include "recording/wav/WavPartMerger.h"

#include <utility>

using namespace kel;

namespace
{
SoundRecorder::Source systemAudio()
{
    SoundRecorder::Source source;
    source.flow = eRender;
    source.merge = mergePartFiles;
    source.alreadyRunning = "系统音频录制已在运行中";
    source.notRunning = "系统音频录制未在运行";
    source.notPaused = "系统音频录制未处于暂停状态";
    return source;
}
} // namespace

KelSystemAudioRecord::KelSystemAudioRecord(const QString &outputPath, FailureHandler failed, QObject *parent,
                                           const CaptureDependencies &dependencies)
    : SoundRecorder(systemAudio(), outputPath, std::move(failed), parent, dependencies)
{
}
