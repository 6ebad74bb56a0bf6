#include "recording/FrameIndexReader.h"

#include "logging/Log.h"
#include "recording/FrameIndexFormat.h"
#include "recording/KelRecordingFiles.h"
#include "recording/RecordingFile.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace kel
{

using namespace FrameIndexFormat;

namespace
{

constexpr int kMaxCount = 1'000'000;

/// The integer at `offset`; 0 beyond the end, which is no valid version or count.
qint32 integerAt(const QByteArray &data, qint64 offset)
{
    return offset + kEntrySize <= data.size() ? qFromBigEndian<qint32>(data.constData() + offset) : 0;
}

} // namespace

bool readFrameIndex(const QString &trackDir, std::vector<int> &frameIndexes)
{
    frameIndexes.clear();
    const QString path = KelRecordingFiles::path(trackDir, KelRecordingFiles::kFrameIndex);
    if (!QFileInfo::exists(path)) {
        qCWarning(logRecording) << "Frame indexes file not found:" << path;
        return false;
    }
    QFile file;
    if (!openTrackFile(&file, trackDir, KelRecordingFiles::kFrameIndex).isEmpty()) {
        qCCritical(logRecording) << "Failed to open frame indexes file:" << path;
        return false;
    }
    const QByteArray header = file.read(kEntriesOffset);
    const qint32 version = integerAt(header, 0);
    if (version != kVersion) {
        qCCritical(logRecording) << "Unsupported frame index file version:" << version;
        return false;
    }
    const qint32 count = integerAt(header, kCountOffset);
    if (count < 1 || count > kMaxCount) {
        qCCritical(logRecording) << "Invalid frame count in file:" << count;
        return false;
    }
    const QByteArray entries = file.read(count * kEntrySize);
    frameIndexes.resize(std::size_t(count));
    qFromBigEndian<qint32>(entries.constData(), entries.size() / int(kEntrySize), frameIndexes.data());
    return true;
}

} // namespace kel
