#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QByteArray>

namespace av
{

/// Opens the machine's device of an FFmpeg type ("vaapi", "cuda", "d3d11va", …). Null when there is none.
BufferRef openHardwareDevice(const QByteArray &type);

/// The type of a device that can decode for the codec and really opens on this machine; empty when there is none.
QByteArray usableDeviceType(const AVCodec *codec);

/// Whether trying a device for this video of H.264 makes sense: all that there are know only 8 bits with colors at
/// half the size (4:2:0), which our own recordings are not.
bool canDecodeOnHardware(const AVCodecParameters &video);

} // namespace av
