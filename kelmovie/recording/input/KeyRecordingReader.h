#pragma once

#include <QSize>
#include <QString>
#include <QtGlobal>

#include <vector>

namespace kel
{

/// One key going down or up. Key 0 marks where the capture of keys was switched off (released) or on (pressed).
struct KeyRecord {
    qint32 key;
    bool pressed;
    qint32 frame; ///< logic frame, as it stands in the file: any number
};

/// What a recording's keyboard.keymeta holds.
struct KeyRecording {
    static constexpr int DefaultFps = 30;

    int fps = DefaultFps; ///< frames a second of the key timeline, 1 to 1000
    QSize canvas;         ///< size of the recorded rectangle in logical pixels; may be nonsense
    std::vector<KeyRecord> records;
};

/// Reads `trackDir`/keyboard.keymeta. False when it cannot be opened. A file whose size does not fit is logged and
/// gives no records, a senseless frame rate is logged and replaced by the usual one.
bool loadKeyRecording(const QString &trackDir, KeyRecording &out);

} // namespace kel
