#include "audio/capture/MicrophoneRecord.h"

#include "recording/wav/WavPartMerger.h"

#include <QAudioEncoderSettings>

#include <utility>

namespace kel
{

namespace
{
SoundRecorder::Source microphone(const QAudioEncoderSettings &settings)
{
    SoundRecorder::Source source;
    source.flow = eCapture;
    source.format = CaptureFormat::int16(DWORD(settings.sampleRate()), WORD(settings.channelCount()));
    source.merge = mergeMicrophoneParts;
    source.alreadyRunning = "麦克风录制已在运行中";
    source.notRunning = "麦克风录制未在运行";
    source.notPaused = "麦克风录制未处于暂停状态";
    return source;
}
} // namespace

MicrophoneRecord::MicrophoneRecord(const QAudioEncoderSettings &settings, const QString &outputPath,
                                   FailureHandler failed, QObject *parent, const CaptureDependencies &dependencies)
    : SoundRecorder(microphone(settings), outputPath, std::move(failed), parent, dependencies)
{
}

} // namespace kel
