#include "recording/input/CursorListReader.h"

#include "recording/KelRecordingFiles.h"

#include "logging/Log.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
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

/// An open file of a bounded size. Not a pipe: opening one would wait for its writer.
bool openBounded(QFile &file, qint64 maxSize)
{
    return QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly) && file.size() <= maxSize;
}

/// Whether `path` leads into the folder `dir`, links followed.
bool isInside(const QString &path, const QString &dir)
{
    const QString root = QFileInfo(dir).canonicalFilePath();
    return !root.isEmpty() && QFileInfo(path).canonicalFilePath().startsWith(root + '/');
}

/// Null when it is not a PNG, too large, or has more than `maxPixels`, which is found out before it is decoded.
QImage readImage(const QString &path, qint64 maxPixels)
{
    QFile file(path);
    if (!openBounded(file, kMaxImageSize))
        return {};
    QImageReader reader(&file, "png");
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > kMaxSide || size.height() > kMaxSide ||
        qint64(size.width()) * size.height() > maxPixels)
        return {};
    return reader.read();
}

} // namespace

bool CursorImages::load(const QString &trackDir)
{
    m_cursors.clear();
    QFile list(KelRecordingFiles::path(trackDir, KelRecordingFiles::kCursorList));
    if (!openBounded(list, kMaxListSize))
        return false;
    const QJsonDocument document = QJsonDocument::fromJson(list.read(kMaxListSize));
    if (!document.isObject())
        return false;
    const QString dir = KelRecordingFiles::path(trackDir, KelRecordingFiles::kCursorImageDir);
    qint64 pixelsLeft = kMaxPixels;
    const QJsonArray entries = document.object().value(QLatin1String("cursors")).toArray();
    for (const QJsonValue &entry : entries) {
        const QJsonObject object = entry.toObject();
        const QString path = dir + '/' + object.value(QLatin1String("image")).toString();
        QImage image = isInside(path, dir) ? readImage(path, pixelsLeft) : QImage();
        if (image.isNull()) {
            qCWarning(logRecording) << "Failed to load cursor image:" << path;
            continue;
        }
        pixelsLeft -= qint64(image.width()) * image.height();
        const double ratio = object.value(QLatin1String("device_pixel_ratio")).toDouble();
        if (ratio >= kMinRatio && ratio <= kMaxRatio)
            image.setDevicePixelRatio(ratio);
        const QPointF hotspot(object.value(QLatin1String("hotspot_x")).toInt(),
                              object.value(QLatin1String("hotspot_y")).toInt());
        // The hotspot is a place in the image's own pixels.
        const double scale = image.devicePixelRatioF();
        m_cursors.insert(object.value(QLatin1String("id")).toString(),
                         {QPixmap::fromImage(std::move(image)), hotspot / scale});
    }
    return true;
}

const CursorImages::Cursor *CursorImages::find(const QString &id) const
{
    const auto found = m_cursors.constFind(id);
    return found == m_cursors.constEnd() ? nullptr : &*found;
}

} // namespace kel
