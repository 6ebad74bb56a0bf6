#include "recording/FrameIndexReader.h"

#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace kel
{

namespace
{

constexpr int kVersion = 1;
constexpr int kMaxCount = 1'000'000;
constexpr int kEntrySize = sizeof(qint32);

/// Entry `i` of big-endian data; 0 past its end, as a data stream answers there.
qint32 entryAt(const QByteArray &data, int i)
{
    const int offset = i * kEntrySize;
    return offset + kEntrySize <= data.size() ? qFromBigEndian<qint32>(data.constData() + offset) : 0;
}

} // namespace

bool readFrameIndex(const QString &trackDir, std::vector<int> &frameIndexes)
{
    frameIndexes.clear();
    const QString path = KelRecordingFiles::path(trackDir, KelRecordingFiles::kFrameIndex);
    const QFileInfo info(path);
    if (!info.exists()) {
        qCWarning(logRecording) << "Frame indexes file not found:" << path;
        return false;
    }
    QFile file(path);
    // Opening a pipe would wait for its writer.
    if (!info.isFile() || !file.open(QIODevice::ReadOnly)) {
        qCCritical(logRecording) << "Failed to open frame indexes file:" << path;
        return false;
    }
    const QByteArray header = file.read(2 * kEntrySize);
    const qint32 version = entryAt(header, 0);
    if (version != kVersion) {
        qCCritical(logRecording) << "Unsupported frame index file version:" << version;
        return false;
    }
    const qint32 count = entryAt(header, 1);
    if (count < 1 || count > kMaxCount) {
        qCCritical(logRecording) << "Invalid frame count in file:" << count;
        return false;
    }
    const QByteArray entries = file.read(qint64(count) * kEntrySize);
    frameIndexes.resize(count);
    qFromBigEndian<qint32>(entries.constData(), entries.size() / kEntrySize, frameIndexes.data());
    return true;
}

} // namespace kel
