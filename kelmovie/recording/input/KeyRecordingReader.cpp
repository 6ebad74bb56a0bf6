#include "recording/input/KeyRecordingReader.h"

#include "logging/Log.h"
#include "recording/KelRecordingMetadata.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace kel
{

namespace
{

constexpr int kHeaderSize = 32;
constexpr int kRecordSize = 12;
constexpr qint64 kMaxRecords = 10'000'000; // more than anybody can type; bounds what a forged file costs

qint32 wordAt(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<qint32>(bytes.constData() + offset);
}

int usableFps(qint32 fps, const QString &path)
{
    if (fps >= 1 && fps <= KelRecordingMetadata::MaxFps)
        return fps;
    qCWarning(logRecording) << "KelPlaybackKeyboardTrack meta file frame rate error:" << path << fps
                            << "a second, taken as" << KeyRecording::DefaultFps;
    return KeyRecording::DefaultFps;
}

} // namespace

bool loadKeyRecording(const QString &trackDir, KeyRecording &out)
{
    out = {};
    const QString path = trackDir + "/keyboard.keymeta";
    QFile file(path);
    // Opening a pipe would wait for its writer.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    const qint64 fileSize = file.size();
    const QByteArray header = file.read(kHeaderSize);
    const qint64 count = header.size() == kHeaderSize ? wordAt(header, 4) : 0;
    const bool isSizeRight = header.size() == kHeaderSize && count >= 0 && count <= kMaxRecords &&
                             fileSize == kHeaderSize + count * kRecordSize;
    const QByteArray body = isSizeRight ? file.read(count * kRecordSize) : QByteArray();
    if (!isSizeRight || body.size() != count * kRecordSize) {
        qCWarning(logRecording) << "KelPlaybackKeyboardTrack meta file size error:" << path;
        return true;
    }
    out.fps = usableFps(wordAt(header, 8), path);
    out.canvas = QSize(wordAt(header, 24), wordAt(header, 28));
    out.records.reserve(size_t(count));
    for (int offset = 0; offset < body.size(); offset += kRecordSize)
        out.records.push_back({wordAt(body, offset), wordAt(body, offset + 4) != 0, wordAt(body, offset + 8)});
    return true;
}

} // namespace kel
