#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QString>

namespace av
{

/// Opens a file for reading; null, with the reason, when that fails. What lies on the disk is not trusted to name a
/// playlist, an address or a format that needs guessing: only `formats` are considered, a comma-separated list of
/// demuxers.
FormatContext openContainer(const QString &path, const char *formats, QString *error);

/// The same, and finds out what the container does not tell, for which it may read and decode some of it.
FormatContext openInput(const QString &path, const char *formats, QString *error);

} // namespace av
