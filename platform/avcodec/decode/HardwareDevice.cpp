#include "avcodec/decode/HardwareDevice.h"

#include "avcodec/ffmpeg/AvLog.h"

extern "C" {
#include <libavutil/hwcontext.h>
}

namespace av
{

BufferRef openHardwareDevice(const QByteArray &type)
{
    useQtLog();
    AVBufferRef *device = nullptr;
    const AVHWDeviceType number = av_hwdevice_find_type_by_name(type.constData());
    if (number == AV_HWDEVICE_TYPE_NONE || av_hwdevice_ctx_create(&device, number, nullptr, nullptr, 0) < 0)
        return {};
    return BufferRef(device);
}

QByteArray usableDeviceType(const AVCodec *codec)
{
    for (int i = 0; const AVCodecHWConfig *config = avcodec_get_hw_config(codec, i); ++i) {
        // Drivers with the older Windows API also have the newer one, which survives locking the screen.
        const bool isOutdated = config->device_type == AV_HWDEVICE_TYPE_DXVA2;
        if (isOutdated || !(config->methods & AV_CODEC_HW_CONFIG_METHOD_HW_DEVICE_CTX))
            continue;
        QByteArray type = av_hwdevice_get_type_name(config->device_type);
        if (openHardwareDevice(type))
            return type;
    }
    return {};
}

bool canDecodeOnHardware(const AVCodecParameters &video)
{
    // MP4 and Matroska files state the profile in the "avcC" record.
    const bool isStated = video.extradata_size > 1 && video.extradata[0] == 1;
    switch (isStated ? video.extradata[1] : video.profile) {
    case FF_PROFILE_UNKNOWN:
    case FF_PROFILE_H264_BASELINE:
    case FF_PROFILE_H264_MAIN:
    case FF_PROFILE_H264_HIGH:
        return true;
    default:
        return false;
    }
}

} // namespace av
