#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QByteArray>

namespace av
{

/// Opens the machine's device of an FFmpeg type ("vaapi", "cuda", "d3d11va", …). Null if there is none.
BufferRef openHardwareDevice(const QByteArray &type);

/// The first device type that supports the codec and can be opened on this machine; empty if there is none.
QByteArray usableDeviceType(const AVCodec *codec);

/// Whether hardware may be able to decode this H.264 video. Devices support only 8-bit 4:2:0, which excludes the RGB
/// videos of recordings.
bool canDecodeOnHardware(const AVCodecParameters &video);

} // namespace av
