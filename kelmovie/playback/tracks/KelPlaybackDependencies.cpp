#include "playback/tracks/KelPlaybackDependencies.h"

#include "audio/output/QtAudioSink.h"
#include "avcodec/decode/ffv1Decoder.h"
#include "avcodec/decode/h264Decoder.h"

#include <QDateTime>

using namespace kel;

KelPlaybackDependencies KelPlaybackDependencies::real()
{
    KelPlaybackDependencies dependencies;
    dependencies.nowMs = [] { return QDateTime::currentMSecsSinceEpoch(); };
    dependencies.decoders.isFfv1Supported = [] { return ffv1Decoder::isSupported(); };
    dependencies.decoders.isH264Supported = [] { return h264Decoder::isSupported(); };
    dependencies.decoders.createFfv1 = [](const QString &path) { return std::make_unique<ffv1Decoder>(path); };
    dependencies.decoders.createH264 = [](const QString &path, const H264DecodeParams &params) {
        return std::make_unique<h264Decoder>(path, params);
    };
    dependencies.createAudioSink = [](const QAudioFormat &format) { return std::make_unique<QtAudioSink>(format); };
    return dependencies;
}
