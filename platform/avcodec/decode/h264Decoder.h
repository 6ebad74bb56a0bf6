#pragma once

#include "avcodec/decode/VideoFileDecoder.h"

#include <QString>

/// How to decode H.264, in FFmpeg's names.
struct H264DecodeParams {
    QString decoderName; ///< "h264": the built-in decoder, which uses the device if there is one
    QString deviceType;  ///< "vaapi", "cuda", "d3d11va", …; empty: software only
};

/// Decodes H.264 from MP4 or Matroska. Falls back to software if the requested hardware is missing or fails.
class h264Decoder : public av::VideoFileDecoder
{
public:
    /// Opens the file. On failure, logs the reason; the decoder is invalid then.
    h264Decoder(const QString &path, const H264DecodeParams &params);

    /// H.264 can be decoded on this system.
    static bool isSupported();

    /// Parameters for a device that works on this machine if hardware is preferred and there is one, otherwise for
    /// software. The first call that prefers hardware probes the devices, which takes a while. Any thread.
    static H264DecodeParams PreferH264DecodeParams(bool preferHardware);
};
