#include "avcodec/decode/h264Decoder.h"

#include "avcodec/decode/FrameDecoder.h"
#include "avcodec/decode/HardwareDevice.h"

using namespace av;

h264Decoder::h264Decoder(const QString &path, const H264DecodeParams &params)
{
    FrameDecoder::Options options;
    options.logName = QStringLiteral("h264Decoder");
    options.codec = AV_CODEC_ID_H264;
    options.decoderName = params.decoderName.toLatin1();
    options.deviceType = params.deviceType.toLatin1();
    open(std::make_unique<FrameDecoder>(options), path);
}

bool h264Decoder::isSupported()
{
    return avcodec_find_decoder(AV_CODEC_ID_H264) != nullptr;
}

H264DecodeParams h264Decoder::PreferH264DecodeParams(bool preferHardware)
{
    H264DecodeParams params{QStringLiteral("h264"), {}};
    if (preferHardware && isSupported()) {
        static const QByteArray type = usableDeviceType(avcodec_find_decoder(AV_CODEC_ID_H264));
        params.deviceType = QString::fromLatin1(type);
    }
    return params;
}
