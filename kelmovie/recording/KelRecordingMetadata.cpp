#include "recording/KelRecordingMetadata.h"

#include "files/OpenInside.h"
#include "logging/Log.h"
#include "recording/FileWriting.h"
#include "recording/KelRecordingFiles.h"

#include <QDebug>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

using namespace kel;

namespace
{
constexpr qint64 kMaxFileBytes = 1 << 20;

// About thirty years: products with a frame rate or a frame count stay within 64 bits.
constexpr qint64 kMaxDurationMs = 1'000'000'000'000;

// Limits of desktops and frames. The file is not trusted, but frames of its size are allocated.
constexpr int kMaxCoordinate = 1 << 20;
constexpr int kMaxSide = 1 << 15;
constexpr qint64 kMaxPixels = 1 << 28;

constexpr double kMinRatio = 0.1;
constexpr double kMaxRatio = 16.0;

qint64 readInteger(const QJsonValue &value, qint64 maximum)
{
    // Converting a variant to an integer is undefined for numbers beyond 64 bits.
    if (value.isDouble() && !(value.toDouble() < double(maximum)))
        return maximum;
    if (value.isDouble() && !(value.toDouble() > 0.0))
        return 0;
    return qBound(qint64(0), value.toVariant().toLongLong(), maximum);
}

qint64 readDuration(const QJsonObject &root)
{
    for (const QString &key : {QStringLiteral("duration"), QStringLiteral("recordingDuration")}) {
        if (root.contains(key))
            return readInteger(root.value(key), kMaxDurationMs);
    }
    qCWarning(logRecording) << "No recording duration found in metadata";
    return 0;
}

QRect readArea(const QJsonObject &area)
{
    // Checked before a QRect is made, whose far corner could overflow.
    const int x = area.value(QLatin1String("x")).toInt();
    const int y = area.value(QLatin1String("y")).toInt();
    const int width = area.value(QLatin1String("width")).toInt();
    const int height = area.value(QLatin1String("height")).toInt();
    const auto isCoordinate = [](int v) { return v >= -kMaxCoordinate && v <= kMaxCoordinate; };
    const auto isSide = [](int v) { return v >= 0 && v <= kMaxSide; };
    const bool isValid =
        isCoordinate(x) && isCoordinate(y) && isSide(width) && isSide(height) && qint64(width) * height <= kMaxPixels;
    return isValid ? QRect(x, y, width, height) : QRect(0, 0, 0, 0);
}

int readFps(const QJsonValue &value)
{
    const int fps = value.toInt(KelRecordingMetadata::kDefaultFps);
    return fps >= 1 && fps <= KelRecordingMetadata::kMaxFps ? fps : KelRecordingMetadata::kDefaultFps;
}

double readRatio(const QJsonValue &value)
{
    const double ratio = value.toDouble(1.0);
    return ratio >= kMinRatio && ratio <= kMaxRatio ? ratio : 1.0;
}
} // namespace

QString KelRecordingMetadata::filePath(const QString &recordingDir)
{
    return KelRecordingFiles::path(recordingDir, KelRecordingFiles::kMetadata);
}

QByteArray KelRecordingMetadata::toJson() const
{
    QJsonObject root{
        {QStringLiteral("version"), version},
        {QStringLiteral("recordArea"), QJsonObject{{QStringLiteral("x"), recordArea.x()},
                                                   {QStringLiteral("y"), recordArea.y()},
                                                   {QStringLiteral("width"), recordArea.width()},
                                                   {QStringLiteral("height"), recordArea.height()}}},
        {QStringLiteral("fps"), fps},
        {QStringLiteral("totalFrames"), totalFrames},
        {QStringLiteral("actualRecordedFrames"), actualRecordedFrames},
        {QStringLiteral("duration"), durationMs},
        {QStringLiteral("timestamp"), timestamp},
        {QStringLiteral("pixelRatio"), pixelRatio},
        {QStringLiteral("devicePixelRatio"), devicePixelRatio},
        {QStringLiteral("tracks"), QJsonObject{{QStringLiteral("screenTrack"), screenTrack},
                                               {QStringLiteral("mouseTrack"), mouseTrack},
                                               {QStringLiteral("keyboardTrack"), keyboardTrack},
                                               {QStringLiteral("systemAudio"), systemAudio},
                                               {QStringLiteral("microphoneAudio"), microphoneAudio}}},
    };
    if (!complete)
        root.insert(QStringLiteral("complete"), false);
    return QJsonDocument(root).toJson();
}

bool KelRecordingMetadata::fromJson(const QByteArray &json, KelRecordingMetadata *out)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject()) {
        qCWarning(logRecording) << "Invalid manager metadata format";
        return false;
    }
    const QJsonObject root = document.object();
    const QJsonObject tracks = root.value(QLatin1String("tracks")).toObject();
    KelRecordingMetadata read;
    read.version = root.value(QLatin1String("version")).toString(read.version);
    read.recordArea = readArea(root.value(QLatin1String("recordArea")).toObject());
    read.fps = readFps(root.value(QLatin1String("fps")));
    read.totalFrames = readInteger(root.value(QLatin1String("totalFrames")), kMaxDurationMs);
    read.actualRecordedFrames = qMax(0, root.value(QLatin1String("actualRecordedFrames")).toInt());
    read.durationMs = readDuration(root);
    read.timestamp = root.value(QLatin1String("timestamp")).toString();
    read.pixelRatio = readRatio(root.value(QLatin1String("pixelRatio")));
    read.devicePixelRatio = readRatio(root.value(QLatin1String("devicePixelRatio")));
    read.screenTrack = tracks.value(QLatin1String("screenTrack")).toBool(read.screenTrack);
    read.mouseTrack = tracks.value(QLatin1String("mouseTrack")).toBool(read.mouseTrack);
    read.keyboardTrack = tracks.value(QLatin1String("keyboardTrack")).toBool(read.keyboardTrack);
    read.systemAudio = tracks.value(QLatin1String("systemAudio")).toBool(read.systemAudio);
    read.microphoneAudio = tracks.value(QLatin1String("microphoneAudio")).toBool(read.microphoneAudio);
    read.complete = root.value(QLatin1String("complete")).toBool(true);
    *out = read;
    return true;
}

bool KelRecordingMetadata::load(const QString &recordingDir, KelRecordingMetadata *out)
{
    QFile file;
    if (!openInside(&file, recordingDir, KelRecordingFiles::kMetadata).isEmpty()) {
        qCWarning(logRecording) << "Cannot open manager metadata:" << filePath(recordingDir);
        return false;
    }
    const QByteArray json = file.read(kMaxFileBytes + 1);
    return fromJson(json.size() > kMaxFileBytes ? QByteArray() : json, out);
}

bool KelRecordingMetadata::save(const QString &recordingDir, QString *error) const
{
    return replaceFile(filePath(recordingDir), toJson(), error);
}
