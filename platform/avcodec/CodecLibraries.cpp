#include "avcodec/CodecLibraries.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <libdeflate.h>
#include <stdint.h>
#include <webp/decode.h>
#include <webp/encode.h>
#include <x264.h>

namespace av
{

namespace
{

/// Decodes a version packed into 8 bits per component, as FFmpeg and libwebp do.
QString unpacked(const char *name, unsigned version)
{
    return QStringLiteral("%1 %2.%3.%4")
        .arg(QLatin1String(name))
        .arg(version >> 16)
        .arg(version >> 8 & 0xff)
        .arg(version & 0xff);
}

} // namespace

QStringList CodecLibraries::versions()
{
    return {unpacked("libavcodec", avcodec_version()),
            unpacked("libavformat", avformat_version()),
            unpacked("libavutil", avutil_version()),
            unpacked("libswresample", swresample_version()),
            unpacked("libswscale", swscale_version()),
            QLatin1String("x264 ") + QLatin1String(X264_POINTVER),
            unpacked("libwebp", unsigned(WebPGetEncoderVersion())),
            QLatin1String("libdeflate ") + QLatin1String(LIBDEFLATE_VERSION_STRING)};
}

} // namespace av
