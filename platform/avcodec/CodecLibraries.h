#pragma once

#include <QStringList>

/// The libraries that encode and decode.
namespace CodecLibraries
{

/// Name and version of each, as "libavcodec 60.31.102".
QStringList versions();

} // namespace CodecLibraries
