#pragma once

#include <QLatin1String>
#include <QString>

#include <vector>

namespace kel
{

/// The content of a file that FrameTableWriter writes.
struct FrameTable {
    enum class Problem { None, Missing, Unreadable, InvalidVersion, InvalidCount };

    Problem problem = Problem::None; ///< the rest is usable only if None
    int version = 0;
    int count = 0;            ///< as stated, 1 to 1,000,000
    std::vector<int> entries; ///< as many of them as the file has; not checked
};

/// Reads the file `name` in `trackDir`.
FrameTable readFrameTable(const QString &trackDir, QLatin1String name);

} // namespace kel
