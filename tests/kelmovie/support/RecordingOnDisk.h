#pragma once

#include "kelmovie/support/KeyScript.h"
#include "kelmovie/support/MouseScript.h"
#include "support/Files.h"

#include "avcodec/mp4/KelAsyncEncoder.h"
#include "recording/KelRecordingMetadata.h"

#include <QImage>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QThread>
#include <QtEndian>

#include <functional>
#include <memory>
#include <vector>

/// A recording that was written instead of recorded:
///
///     RecordingOnDisk recording;
///     recording.size(300, 200).frames(50).cursor().moves("0:20,30 4:30,40").clicks("8 left down, 9 left up");
///
/// At first it has 100 frames of 64x48, whose video only a scripted decoder can read, and no other track. Each call
/// writes its file at once and enters the track into the metadata. Copies share the directory.
class RecordingOnDisk
{
public:
    /// In a temporary directory that goes with the last copy.
    RecordingOnDisk()
        : m_temporary(std::make_shared<QTemporaryDir>())
        , m_path(m_temporary->path())
    {
        begin();
    }
    explicit RecordingOnDisk(const QString &path)
        : m_path(path)
    {
        begin();
    }

    QString path() const { return m_path; }
    QString filePath(const QString &name) const { return m_path + '/' + name; }
    const KelRecordingMetadata &metadata() const { return m_metadata; }

    template <typename Value>
    RecordingOnDisk &set(Value KelRecordingMetadata::*field, const Value &value)
    {
        m_metadata.*field = value;
        m_metadata.save(m_path);
        return *this;
    }
    RecordingOnDisk &area(const QRect &area) { return set(&KelRecordingMetadata::recordArea, area); }
    RecordingOnDisk &size(int width, int height) { return area(QRect(0, 0, width, height)); }

    /// Logic frames, and the index of the video frame that each of them shows.
    RecordingOnDisk &frames(int count, int fps = 25, const std::function<int(int)> &videoFrame = nullptr)
    {
        m_metadata.fps = fps;
        m_metadata.durationMs = qint64(count) * 1000 / fps;
        m_metadata.save(m_path);
        std::vector<qint32> indexes;
        for (int i = 0; i < count; ++i)
            indexes.push_back(videoFrame ? videoFrame(i) : i);
        return frameTable("Screen/frame_indexes.dat", indexes);
    }
    /// Ends of the ticks, in ms of the recording, up to its end.
    RecordingOnDisk &frameTimes(const std::vector<qint32> &times)
    {
        frameTable("Screen/frame_times.dat", times);
        return set(&KelRecordingMetadata::durationMs, qint64(times.back()));
    }
    /// A real video of these images.
    RecordingOnDisk &video(int count, const std::function<QImage(int)> &image)
    {
        KelAsyncEncoder::Params params;
        params.frameSize = image(0).size();
        params.path = filePath("Screen/screen_record.mp4");
        KelAsyncEncoder encoder(params);
        for (int i = 0; i < count; ++i) {
            while (encoder.isBusy() && encoder.errorString().isEmpty())
                QThread::yieldCurrentThread();
            if (encoder.addFrame(i, image(i)) != i)
                qFatal("cannot write the video");
        }
        encoder.waitForClosed();
        return *this;
    }

    /// One cursor, "square": `pixels` by `pixels` of plain green with a red pixel at its hotspot (2, 3).
    RecordingOnDisk &cursor(int pixels = 16, double ratio = 1)
    {
        QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::green);
        image.setPixelColor(2, 3, Qt::red);
        QDir().mkpath(filePath("Mouse/cursors"));
        if (!image.save(filePath("Mouse/cursors/square.png")))
            qFatal("cannot write the cursor");
        return cursorList("square.png", ratio);
    }
    RecordingOnDisk &cursorList(const QString &image, double ratio = 1)
    {
        const QJsonObject cursor{
            {"id", "square"}, {"image", image}, {"hotspot_x", 2}, {"hotspot_y", 3}, {"device_pixel_ratio", ratio}};
        file("Mouse/cursor.json", QJsonDocument(QJsonObject{{"cursors", QJsonArray{cursor}}}).toJson());
        return set(&KelRecordingMetadata::mouseTrack, true);
    }
    RecordingOnDisk &moves(const QJsonArray &records) { return mouseFile("mousemoves-0.json", records); }
    RecordingOnDisk &moves(const QString &script) { return moves(mouseMoves(script)); }
    RecordingOnDisk &clicks(const QJsonArray &records) { return mouseFile("mouseclicks-0.json", records); }
    RecordingOnDisk &clicks(const QString &script) { return clicks(mouseClicks(script)); }

    RecordingOnDisk &keys(const std::vector<kel::KeyRecord> &records)
    {
        file("Keyboard/keyboard.keymeta", keyMetaFile(records, m_metadata.recordArea.size(), m_metadata.fps));
        return set(&KelRecordingMetadata::keyboardTrack, true);
    }
    RecordingOnDisk &keys(const QString &script) { return keys(keyScript(script)); }

    /// A WAV file in "Voice", such as "microphone_1.wav".
    RecordingOnDisk &sound(const QString &name, const QByteArray &wav)
    {
        file("Voice/" + name, wav);
        return set(name.startsWith("microphone") ? &KelRecordingMetadata::microphoneAudio
                                                 : &KelRecordingMetadata::systemAudio,
                   true);
    }

    RecordingOnDisk &file(const QString &name, const QByteArray &content)
    {
        writeFile(filePath(name), content);
        return *this;
    }
    /// Removes a file, or a directory with all that is in it.
    RecordingOnDisk &without(const QString &name)
    {
        if (!QFile::remove(filePath(name)))
            QDir(filePath(name)).removeRecursively();
        return *this;
    }

    static QByteArray bigEndian(const std::vector<qint32> &values)
    {
        QByteArray bytes(int(values.size() * sizeof(qint32)), Qt::Uninitialized);
        qToBigEndian<qint32>(values.data(), qsizetype(values.size()), bytes.data());
        return bytes;
    }

private:
    void begin()
    {
        m_metadata.mouseTrack = false;
        size(64, 48).frames(100).file("Screen/screen_record.mp4", "video");
    }
    /// Of frame indexes or times.
    RecordingOnDisk &frameTable(const QString &name, std::vector<qint32> entries)
    {
        entries.insert(entries.begin(), {1, qint32(entries.size())});
        return file(name, bigEndian(entries));
    }
    RecordingOnDisk &mouseFile(const QString &name, const QJsonArray &records)
    {
        file("Mouse/" + name, QJsonDocument(records).toJson());
        return set(&KelRecordingMetadata::mouseTrack, true);
    }

    std::shared_ptr<QTemporaryDir> m_temporary;
    QString m_path;
    KelRecordingMetadata m_metadata;
};
