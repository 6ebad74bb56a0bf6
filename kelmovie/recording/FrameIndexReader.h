#pragma once

#include <QString>

#include <vector>

namespace kel
{

/// Reads "frame_indexes.dat" in `trackDir`: for every logic frame the number of the video frame to show. False when
/// there is no usable file; this is logged and `frameIndexes` is left empty. The numbers are not checked: they may be
/// negative or too large.
bool readFrameIndex(const QString &trackDir, std::vector<int> &frameIndexes);

} // namespace kel
