#pragma once

#include "audio/output/AudioSink.h"

#include <QString>
#include <QtGlobal>

#include <functional>
#include <memory>

class KelAVCodecDecoder;
struct H264DecodeParams;

/// Where the screen track gets its decoders from.
struct KelDecoderFactory {
    std::function<bool()> isFfv1Supported;
    std::function<bool()> isH264Supported;
    std::function<std::unique_ptr<KelAVCodecDecoder>(const QString &path)> createFfv1;
    std::function<std::unique_ptr<KelAVCodecDecoder>(const QString &path, const H264DecodeParams &params)> createH264;
};

/// What playback takes from the outside world; a test brings its own.
struct KelPlaybackSeams {
    std::function<qint64()> nowMs; ///< wall clock, ms since the epoch
    KelDecoderFactory decoders;
    kel::AudioSink::Factory createAudioSink;

    /// The system's clock and default sound device, and the codec library's decoders.
    static KelPlaybackSeams real();
};
