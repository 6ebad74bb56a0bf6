#pragma once

#include <QStringList>

/// The libraries that encode and decode.
namespace av::CodecLibraries
{

/// Name and version of each, as "libavcodec 60.31.102".
QStringList versions();

} // namespace av::CodecLibraries
