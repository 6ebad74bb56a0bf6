#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>
#include <string>

namespace kel
{

/// One event as stored in the file. A member that is missing or has the wrong type keeps its default.
struct MouseRecord {
    int frame = 0;
    int x = 0;
    int y = 0;
    int delta = 0;
    qint64 timestamp = 0;
    std::string action = "move";
    std::string button;
    std::string cursor;
};

/// Reads the events in "mousemoves-0.json" or "mouseclicks-0.json" at `path` and passes them to `take` one by one; the
/// record is valid during the call only. False when the file is missing, too large or not a complete array; events
/// before the damage have been passed on then. Frames and coordinates are clamped to ±1e9 and ±1e6, so that arithmetic
/// with them cannot overflow.
bool readMouseEvents(const QString &path, const std::function<void(const MouseRecord &)> &take);

} // namespace kel
