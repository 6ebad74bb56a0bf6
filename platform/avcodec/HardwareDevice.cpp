#include "avcodec/HardwareDevice.h"

#include "avcodec/AvLog.h"

extern "C" {
#include <libavutil/hwcontext.h>
}

namespace av
{

BufferRef openDevice(const QByteArray &type)
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
        if (!(config->methods & AV_CODEC_HW_CONFIG_METHOD_HW_DEVICE_CTX))
            continue;
        QByteArray type = av_hwdevice_get_type_name(config->device_type);
        if (openDevice(type))
            return type;
    }
    return {};
}

} // namespace av
