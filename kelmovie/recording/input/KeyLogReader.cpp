#include "recording/input/KeyLogReader.h"

#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingMetadata.h"
#include "recording/RecordingFile.h"

#include <QDebug>
#include <QFile>

#include <cstring>

namespace kel
{

namespace
{

constexpr qint64 kHeaderSize = sizeof(KeyLogHeader);
constexpr qint64 kRecordSize = sizeof(StoredKeyRecord);
constexpr qint64 kMaxRecords = 10'000'000; // more than anybody can type; bounds what a forged file costs

int usableFps(quint32 fps, const QString &path)
{
    if (fps >= 1 && fps <= quint32(KelRecordingMetadata::kMaxFps))
        return int(fps);
    qCWarning(logRecording) << "KelPlaybackKeyboardTrack meta file frame rate error:" << path << qint32(fps)
                            << "frames a second, using" << KeyLogHeader::kFrameRate;
    return KeyLogHeader::kFrameRate;
}

} // namespace

bool readKeyLog(const QString &trackDir, KeyLog &out)
{
    out = {};
    const QString path = KelRecordingFiles::path(trackDir, KelRecordingFiles::kKeyLog);
    QFile file;
    if (!openTrackFile(&file, trackDir, KelRecordingFiles::kKeyLog).isEmpty())
        return false;
    const qint64 fileSize = file.size();
    KeyLogHeader header;
    const bool hasHeader = file.read(reinterpret_cast<char *>(&header), kHeaderSize) == kHeaderSize;
    const qint64 count = hasHeader ? qint32(header.count) : -1;
    const bool isSizeRight = count >= 0 && count <= kMaxRecords && fileSize == kHeaderSize + count * kRecordSize;
    const QByteArray body = isSizeRight ? file.read(count * kRecordSize) : QByteArray();
    if (!isSizeRight || body.size() != count * kRecordSize) {
        qCWarning(logRecording) << "KelPlaybackKeyboardTrack meta file size error:" << path;
        return true;
    }
    out.fps = usableFps(header.frameRate, path);
    out.canvas = QSize(header.width, header.height);
    out.records.reserve(std::size_t(count));
    for (qint64 offset = 0; offset < body.size(); offset += kRecordSize) {
        StoredKeyRecord record;
        std::memcpy(&record, body.constData() + offset, sizeof record);
        out.records.push_back({record.key, record.pressed != 0U, record.frame});
    }
    return true;
}

} // namespace kel
