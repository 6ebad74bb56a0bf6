#pragma once

#include <QString>

#include <functional>
#include <string>

namespace kel
{

/// One record of a file of moves or clicks, as it stands there. What is missing or of another type is 0 or empty.
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

/// Reads the array of records in the file `path`, and hands over one after the other, which lasts for the call only.
/// False when it is not a file, too large, or not an array from start to end; records before the damage were handed
/// over then. Frames and coordinates stay within ±1e9 and ±1e6, so that one may calculate with them.
bool readMouseEvents(const QString &path, const std::function<void(const MouseRecord &)> &take);

} // namespace kel
