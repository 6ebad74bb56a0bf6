#pragma once

#include <QString>

#include <vector>

namespace kel
{

/// Reads "frame_times.dat" in `trackDir`: for every logic frame the recording time in ms, without pauses, at which it
/// was recorded, never falling and not below 0. Empty when there is no usable file.
std::vector<int> readFrameTimes(const QString &trackDir);

} // namespace kel
