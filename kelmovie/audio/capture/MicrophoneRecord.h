#pragma once

#include "audio/capture/SoundRecorder.h"

class QAudioEncoderSettings;

namespace kel
{

/// Records the microphone as 16-bit integers.
class MicrophoneRecord : public SoundRecorder
{
    Q_OBJECT

public:
    /// `settings`: the sample rate and the channel count of the file.
    MicrophoneRecord(const QAudioEncoderSettings &settings, const QString &outputPath, FailureHandler failed,
                     QObject *parent, const CaptureDependencies &dependencies = CaptureDependencies());
};

} // namespace kel
