#pragma once

#include "audio/output/AudioSink.h"

#include <QString>
#include <QtGlobal>

#include <functional>
#include <memory>

class KelAVCodecDecoder;
struct H264DecodeParams;

/// Creates the decoders of the screen track. isFfv1Supported() and isH264Supported() report whether the library has
/// them; the create functions return a decoder that may be invalid, or null.
struct KelDecoderFactory {
    std::function<bool()> isFfv1Supported;
    std::function<bool()> isH264Supported;
    std::function<std::unique_ptr<KelAVCodecDecoder>(const QString &path)> createFfv1;
    std::function<std::unique_ptr<KelAVCodecDecoder>(const QString &path, const H264DecodeParams &params)> createH264;
};

/// What playback needs from its environment; tests replace it.
struct KelPlaybackDependencies {
    std::function<qint64()> nowMs; ///< wall clock, ms since the epoch
    KelDecoderFactory decoders;
    kel::AudioSink::Factory createAudioSink;

    /// The system clock, the default sound device and the decoders of the codec library.
    static KelPlaybackDependencies real();
};
