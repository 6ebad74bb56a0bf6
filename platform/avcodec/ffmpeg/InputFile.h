#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QString>

namespace av
{

/// Opens a file for demuxing; null, with the reason in `error`, on failure. As files are not trusted, only the demuxers
/// in `formats`, a comma-separated list, are tried, and no other files or addresses that it refers to are opened.
FormatContext openContainer(const QString &path, const char *formats, QString *error);

/// The same, and also determines stream parameters that the container does not state, for which it may read and decode
/// some packets.
FormatContext openInput(const QString &path, const char *formats, QString *error);

} // namespace av
