#include "recording/input/CursorListReader.h"

#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"
#include "recording/RecordingFile.h"

#include <QDebug>
#include <QFile>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace kel
{

namespace
{

constexpr qint64 kMaxListSize = 4 * 1024 * 1024;
constexpr qint64 kMaxImageSize = 8 * 1024 * 1024;
constexpr int kMaxSide = 1024;
constexpr qint64 kMaxPixels = 32 * 1024 * 1024; // of all images together
constexpr double kMaxRatio = 16;
constexpr double kMinRatio = 1 / kMaxRatio;

/// Opens a file of a bounded size.
bool openBounded(QFile *file, const QString &trackDir, const QString &name, qint64 maxSize)
{
    return openTrackFile(file, trackDir, name).isEmpty() && file->size() <= maxSize;
}

/// Null unless it is a PNG of acceptable size with at most `maxPixels`; the size is checked before decoding.
QImage readImage(const QString &trackDir, const QString &name, qint64 maxPixels)
{
    QFile file;
    if (!openBounded(&file, trackDir, name, kMaxImageSize))
        return {};
    QImageReader reader(&file, "png");
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > kMaxSide || size.height() > kMaxSide ||
        qint64(size.width()) * size.height() > maxPixels)
        return {};
    return reader.read();
}

} // namespace

bool readCursorList(const QString &trackDir, CursorImages &cursors)
{
    cursors.clear();
    QFile list;
    if (!openBounded(&list, trackDir, KelRecordingFiles::kCursorList, kMaxListSize))
        return false;
    const QJsonDocument document = QJsonDocument::fromJson(list.read(kMaxListSize));
    if (!document.isObject())
        return false;
    qint64 pixelsLeft = kMaxPixels;
    const QJsonArray entries = document.object().value(QLatin1String("cursors")).toArray();
    for (const QJsonValue &entry : entries) {
        const QJsonObject object = entry.toObject();
        const QString name =
            KelRecordingFiles::kCursorImageDir + QLatin1Char('/') + object.value(QLatin1String("image")).toString();
        QImage image = readImage(trackDir, name, pixelsLeft);
        if (image.isNull()) {
            qCWarning(logRecording) << "Failed to load cursor image:" << trackDir + QLatin1Char('/') + name;
            continue;
        }
        pixelsLeft -= qint64(image.width()) * image.height();
        const double ratio = object.value(QLatin1String("device_pixel_ratio")).toDouble();
        if (ratio >= kMinRatio && ratio <= kMaxRatio)
            image.setDevicePixelRatio(ratio);
        const QPointF hotspot(object.value(QLatin1String("hotspot_x")).toInt(),
                              object.value(QLatin1String("hotspot_y")).toInt());
        const double scale = image.devicePixelRatioF(); // the file has the hotspot in the image's own pixels
        cursors.insert(object.value(QLatin1String("id")).toString(),
                       {QPixmap::fromImage(std::move(image)), hotspot / scale});
    }
    return true;
}

} // namespace kel
