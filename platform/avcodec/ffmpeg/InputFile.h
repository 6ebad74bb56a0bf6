#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QString>

class QIODevice;

namespace av
{

/// Opens a file for demuxing; null, with the reason in `error`, on failure. As files are not trusted, only the demuxers
/// in `formats`, a comma-separated list, are tried, and no other files or addresses that it refers to are opened.
FormatContext openContainer(const QString &path, const char *formats, QString *error);

/// The same, and also determines stream parameters that the container does not state, for which it may read and decode
/// some packets.
FormatContext openInput(const QString &path, const char *formats, QString *error);

/// Gives demuxers access to an open device from its start; the device outlives it. Null without memory.
IoContext readerOf(QIODevice &device);

/// openInput() for a file in a device, whose reader outlives the result.
FormatContext openInput(AVIOContext *reader, const char *formats, QString *error);

} // namespace av
