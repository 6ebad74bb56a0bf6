#include "recording/FrameIndexReader.h"

#include "logging/Log.h"
#include "recording/FrameTableReader.h"
#include "recording/KelRecordingFiles.h"

#include <QDebug>

#include <utility>

namespace kel
{

bool readFrameIndex(const QString &trackDir, std::vector<int> &frameIndexes)
{
    using Problem = FrameTable::Problem;
    const QString path = KelRecordingFiles::path(trackDir, KelRecordingFiles::kFrameIndex);
    FrameTable table = readFrameTable(trackDir, KelRecordingFiles::kFrameIndex);
    frameIndexes.clear();
    switch (table.problem) {
    case Problem::Missing:
        qCWarning(logRecording) << "Frame indexes file not found:" << path;
        return false;
    case Problem::Unreadable:
        qCCritical(logRecording) << "Failed to open frame indexes file:" << path;
        return false;
    case Problem::InvalidVersion:
        qCCritical(logRecording) << "Unsupported frame index file version:" << table.version;
        return false;
    case Problem::InvalidCount:
        qCCritical(logRecording) << "Invalid frame count in file:" << table.count;
        return false;
    case Problem::None:
        break;
    }
    frameIndexes = std::move(table.entries);
    frameIndexes.resize(std::size_t(table.count)); // missing entries are 0
    return true;
}

} // namespace kel
