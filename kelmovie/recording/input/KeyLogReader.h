#pragma once

#include "recording/input/KeyLogFormat.h"

#include <QSize>
#include <QString>
#include <QtGlobal>

#include <vector>

namespace kel
{

/// One key going down or up. Key 0 marks where recording keys was switched off (released) or on (pressed).
struct KeyRecord {
    qint32 key;
    bool pressed;
    qint32 frame; ///< logic frame; not checked, so any number
};

/// The content of "keyboard.keymeta".
struct KeyLog {
    int fps = KeyLogHeader::kFrameRate; ///< logic frames a second, 1 to KelRecordingMetadata::kMaxFps
    QSize canvas;                       ///< size of the recorded rectangle in logical pixels; not checked
    std::vector<KeyRecord> records;
};

/// Reads "keyboard.keymeta" in `trackDir`. False when it cannot be opened. A file whose size does not match its header
/// is logged and yields no records; an invalid frame rate is logged and replaced by the default.
bool readKeyLog(const QString &trackDir, KeyLog &out);

} // namespace kel
