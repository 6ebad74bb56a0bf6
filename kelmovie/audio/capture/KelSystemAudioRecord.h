#pragma once

#include "audio/capture/SoundRecorder.h"

/// Records what the computer plays, in the format of the output.
class KelSystemAudioRecord : public kel::SoundRecorder
{
    Q_OBJECT

public:
    KelSystemAudioRecord(const QString &outputPath, FailureHandler failed, QObject *parent,
                         const kel::CaptureDependencies &dependencies = kel::CaptureDependencies());
};
