#pragma once

#include "recording/input/WipingAllocator.h"

#include <QtEndian>

#include <vector>

namespace kel
{

/// What "keyboard.keymeta" begins with, as in the file.
struct KeyLogHeader {
    char magic[4] = {'K', 'E', 'L', 'K'};
    qint32_le count{0}; ///< records that follow
    quint32_le frameRate{kFrameRate};
    quint32_le reserved{0};
    quint64_le recordBytes{0}; ///< bytes of all records
    qint32_le width{0};        ///< of the recorded rectangle, in logical pixels
    qint32_le height{0};

    /// At which a reader converts logic frames to milliseconds.
    static constexpr int kFrameRate = 30;
};
static_assert(sizeof(KeyLogHeader) == 32, "written as it is");

/// One key of "keyboard.keymeta", as in the file. Key 0 marks where recording keys was switched off (pressed 0) or on
/// (pressed 1).
struct StoredKeyRecord {
    qint32_le key;      ///< a Qt::Key value
    quint32_le pressed; ///< 1 pressed, 0 released
    qint32_le frame;    ///< logic frame
};
static_assert(sizeof(StoredKeyRecord) == 12, "written as it is");

/// Keys that were typed are wiped from memory when they are discarded.
using StoredKeyRecords = std::vector<StoredKeyRecord, WipingAllocator<StoredKeyRecord>>;

} // namespace kel
