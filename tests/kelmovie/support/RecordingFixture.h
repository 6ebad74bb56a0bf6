#pragma once

#include "recording/KelRecordingMetadata.h"

#include "support/Files.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <functional>
#include <vector>

/// A recording directory with handmade files and a video that only a scripted decoder can read.
class RecordingFixture
{
public:
    explicit RecordingFixture(int logicFrames = 100, int fps = 25)
    {
        metadata.recordArea = QRect(0, 0, 64, 48);
        metadata.fps = fps;
        metadata.durationMs = qint64(logicFrames) * 1000 / fps;
        metadata.mouseTrack = false;
        metadata.save(path());
        write("Screen/screen_record.mp4", "video");
        writeIndexes(logicFrames, [](int i) { return i; });
    }

    QString path() const { return m_dir.path(); }
    QString screenDir() const { return m_dir.filePath("Screen"); }
    void save() { metadata.save(path()); }
    void remove(const QString &name) { QFile::remove(m_dir.filePath(name)); }
    void write(const QString &name, const QByteArray &content) { writeFile(m_dir.filePath(name), content); }
    void writeIndexes(int count, const std::function<int(int)> &entry)
    {
        std::vector<qint32> values{1, count};
        for (int i = 0; i < count; ++i)
            values.push_back(entry(i));
        write("Screen/frame_indexes.dat", bigEndian(values));
    }
    static QByteArray bigEndian(const std::vector<qint32> &values)
    {
        QByteArray bytes(int(values.size() * sizeof(qint32)), Qt::Uninitialized);
        qToBigEndian<qint32>(values.data(), qsizetype(values.size()), bytes.data());
        return bytes;
    }

    KelRecordingMetadata metadata;

private:
    QTemporaryDir m_dir;
};
