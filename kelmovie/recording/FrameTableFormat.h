#pragma once

#include <QtGlobal>

/// Layout of "frame_indexes.dat" and "frame_times.dat": 32-bit big-endian integers, first the version, then the number
/// of entries, then one entry for every logic frame.
namespace kel::FrameTableFormat
{

constexpr qint32 kVersion = 1;
constexpr qint64 kCountOffset = 4;
constexpr qint64 kEntriesOffset = 8;
constexpr qint64 kEntrySize = 4;
constexpr int kMaxCount = 1'000'000;

} // namespace kel::FrameTableFormat
