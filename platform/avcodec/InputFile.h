#pragma once

#include "avcodec/AvHandles.h"

#include <QString>

namespace av
{

/// Opens a file for reading and finds out what is in it; null, with the reason, when that fails. What lies on the disk
/// is not trusted to name a playlist, an address or a format that needs guessing: only `formats` are considered, a
/// comma-separated list of demuxers. Finding out may decode pictures; it is given up when `interrupt` answers other
/// than 0, which is asked as long as the file is open.
FormatContext openInput(const QString &path, const char *formats, QString *error,
                        const AVIOInterruptCB *interrupt = nullptr);

} // namespace av
