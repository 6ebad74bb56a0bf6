#pragma once

#include <QtGlobal>

class QIODevice;

namespace av
{

/// Samples that the tables of an MP4 file state; 0 for files of other kinds. FFmpeg's demuxer allocates an entry for
/// each before it looks for its data, and a few bytes can state billions. Reads the headers of the boxes only. Files
/// with a compressed index, which none of our encoders writes, count as having the largest number.
qint64 statedMp4Samples(QIODevice &file);

} // namespace av
