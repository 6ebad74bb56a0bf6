#pragma once

#include "avcodec/decode/VideoFileDecoder.h"

#include <QString>

/// How H.264 is to be decoded, in FFmpeg's names.
struct H264DecodeParams {
    QString decoderName; ///< "h264" is the software decoder, which hardware helps when a device is given
    QString deviceType;  ///< "vaapi", "cuda", "d3d11va", …; empty: no hardware
};

/// Decodes an MP4 or Matroska file of H.264, in software wherever the wanted hardware is missing or fails.
class h264Decoder : public av::VideoFileDecoder
{
public:
    h264Decoder(const QString &path, const H264DecodeParams &params);

    /// H.264 can be decoded on this system.
    static bool isSupported();

    /// Parameters for a device that is present and works when hardware is preferred and there is one, else for
    /// software. The first call that prefers hardware probes the devices.
    static H264DecodeParams PreferH264DecodeParams(bool preferHardware);
};
