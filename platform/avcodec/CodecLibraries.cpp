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

/// Packed as 8 bits each, FFmpeg's and libwebp's way.
QString packed(const char *name, unsigned version)
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
    return {packed("libavcodec", avcodec_version()),
            packed("libavformat", avformat_version()),
            packed("libavutil", avutil_version()),
            packed("libswresample", swresample_version()),
            packed("libswscale", swscale_version()),
            QStringLiteral("x264 ") + QLatin1String(X264_POINTVER),
            packed("libwebp", unsigned(WebPGetEncoderVersion())),
            QStringLiteral("libdeflate ") + QLatin1String(LIBDEFLATE_VERSION_STRING)};
}

} // namespace av
