#include "avcodec/decode/ffv1Decoder.h"

#include "avcodec/decode/FrameDecoder.h"

using namespace av;

ffv1Decoder::ffv1Decoder(const QString &path)
{
    FrameDecoder::Options options;
    options.logName = QStringLiteral("ffv1Decoder");
    options.codec = AV_CODEC_ID_FFV1;
    open(std::make_unique<FrameDecoder>(options), path);
}

bool ffv1Decoder::isSupported()
{
    return avcodec_find_decoder(AV_CODEC_ID_FFV1) != nullptr;
}
