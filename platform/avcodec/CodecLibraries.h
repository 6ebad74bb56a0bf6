#pragma once

#include <QStringList>

/// The codec libraries this module is linked against.
namespace av::CodecLibraries
{

/// Name and version of each at run time, such as "libavcodec 60.31.102".
QStringList versions();

} // namespace av::CodecLibraries
