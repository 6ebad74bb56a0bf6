#include "library/ThumbnailCache.h"

#include "common/PngFile.h"

#include <KelMovie/KelRecordingState.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QStandardPaths>

namespace
{

constexpr int kMaxFiles = 5000;

QString folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QLatin1String("/thumbnails");
}

} // namespace

QString ThumbnailCache::path(const QString &dir)
{
    const QByteArray name = QCryptographicHash::hash(QDir(dir).absolutePath().toUtf8(), QCryptographicHash::Sha1);
    return folder() + QLatin1Char('/') + QString::fromLatin1(name.toHex()) + QLatin1String(".png");
}

QImage ThumbnailCache::find(const QString &dir)
{
    const QFileInfo file(path(dir));
    if (!file.exists() || file.lastModified() < KelRecordingState::lastWritten(dir))
        return QImage();
    return QImage(file.filePath());
}

QImage ThumbnailCache::store(const QString &dir, const QString &imageFile)
{
    const QImage image = QImageReader(imageFile, "png").read();
    if (image.isNull())
        return QImage();
    QSize size = image.size();
    if (size.width() > kMaxSize.width() || size.height() > kMaxSize.height())
        size = size.scaled(kMaxSize, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    const QImage thumbnail = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    // If the cache is not writable, the thumbnail is still returned.
    QDir().mkpath(folder());
    savePng(thumbnail, path(dir));
    return thumbnail;
}

void ThumbnailCache::prune()
{
    const QFileInfoList files = QDir(folder()).entryInfoList(QDir::Files, QDir::Time); // newest first
    for (int i = kMaxFiles; i < files.size(); ++i)
        QFile::remove(files.at(i).filePath());
}
