#pragma once

#include "avcodec/AvHandles.h"

#include <QString>

namespace av
{

/// Opens a file for reading and finds out what is in it; null, with the reason, when that fails. What lies on the disk
/// is not trusted to name a playlist, an address or a format that needs guessing: only `formats` are considered, a
/// comma-separated list of demuxers.
FormatContext openInput(const QString &path, const char *formats, QString *error);

} // namespace av
