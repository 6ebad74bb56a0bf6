#pragma once

#include <QString>

#include <vector>

namespace kel
{

/// Reads `trackDir`/frame_indexes.dat: for every logic frame the number of the video frame to show. False (logged, and
/// the table empty) when there is no usable table. The numbers are not checked: they may be negative or too large.
bool readFrameIndex(const QString &trackDir, std::vector<int> &frameIndexes);

} // namespace kel
