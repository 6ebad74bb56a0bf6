#pragma once

#include <QtGlobal>

/// Layout of "frame_indexes.dat": 32-bit big-endian integers, first the version, then the number of entries, then for
/// every logic frame the number of the video frame to show.
namespace kel::FrameIndexFormat
{

constexpr qint32 kVersion = 1;
constexpr qint64 kCountOffset = 4;
constexpr qint64 kEntriesOffset = 8;
constexpr qint64 kEntrySize = 4;

} // namespace kel::FrameIndexFormat
