#pragma once

#include "kelmovie/support/RecordingFixture.h"

#include "avcodec/mp4/KelAsyncEncoder.h"

#include <QImage>
#include <QThread>

#include <functional>

/// Writes a real video of the size of its area into the recording.
inline void writeVideo(const RecordingFixture &recording, int frames, const std::function<QImage(int)> &image)
{
    KelAsyncEncoder::Params params;
    params.frameSize = recording.metadata.recordArea.size();
    params.path = recording.screenDir() + "/screen_record.mp4";
    KelAsyncEncoder encoder(params);
    for (int i = 0; i < frames; ++i) {
        while (encoder.isBusy() && encoder.errorString().isEmpty())
            QThread::yieldCurrentThread();
        if (encoder.addFrame(i, image(i)) != i)
            qFatal("cannot write the video");
    }
    encoder.waitForClosed();
}
