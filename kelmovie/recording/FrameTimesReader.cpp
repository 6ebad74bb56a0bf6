#include "recording/FrameTimesReader.h"

#include "logging/Log.h"
#include "recording/FrameTableReader.h"
#include "recording/KelRecordingFiles.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace kel
{

std::vector<int> readFrameTimes(const QString &trackDir)
{
    FrameTable table = readFrameTable(trackDir, KelRecordingFiles::kFrameTimes);
    if (table.problem == FrameTable::Problem::Missing) // recordings have had this file only since a later version
        return {};
    std::vector<int> times = std::move(table.entries);
    if (!times.empty() && times.front() >= 0 && std::is_sorted(times.begin(), times.end()))
        return times;
    qCWarning(logRecording) << "No usable frame times in" << trackDir;
    return {};
}

} // namespace kel
