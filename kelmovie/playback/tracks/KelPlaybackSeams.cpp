#include "playback/tracks/KelPlaybackSeams.h"

#include "audio/output/QtAudioSink.h"
#include "avcodec/decode/ffv1Decoder.h"
#include "avcodec/decode/h264Decoder.h"

#include <QDateTime>

using namespace kel;

KelPlaybackSeams KelPlaybackSeams::real()
{
    KelPlaybackSeams seams;
    seams.nowMs = [] { return QDateTime::currentMSecsSinceEpoch(); };
    seams.decoders.isFfv1Supported = [] { return ffv1Decoder::isSupported(); };
    seams.decoders.isH264Supported = [] { return h264Decoder::isSupported(); };
    seams.decoders.createFfv1 = [](const QString &path) { return std::make_unique<ffv1Decoder>(path); };
    seams.decoders.createH264 = [](const QString &path, const H264DecodeParams &params) {
        return std::make_unique<h264Decoder>(path, params);
    };
    seams.createAudioSink = [](const QAudioFormat &format) { return std::make_unique<QtAudioSink>(format); };
    return seams;
}
