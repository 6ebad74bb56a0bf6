#include "library/ThumbnailCache.h"

#include "library/RecordingsFolder.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QSaveFile>
#include <QStandardPaths>

namespace
{

constexpr int kMaxFiles = 5000;

QString folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QStringLiteral("/thumbnails");
}

} // namespace

QString ThumbnailCache::path(const QString &dir)
{
    const QByteArray name = QCryptographicHash::hash(QDir(dir).absolutePath().toUtf8(), QCryptographicHash::Sha1);
    return folder() + QLatin1Char('/') + QString::fromLatin1(name.toHex()) + QStringLiteral(".png");
}

QImage ThumbnailCache::find(const QString &dir)
{
    const QFileInfo file(path(dir));
    if (!file.exists() || file.lastModified() < RecordingsFolder::lastWritten(dir))
        return QImage();
    return QImage(file.filePath());
}

QImage ThumbnailCache::store(const QString &dir, const QString &pictureFile)
{
    const QImage picture = QImageReader(pictureFile, "png").read();
    if (picture.isNull())
        return QImage();
    QSize size = picture.size();
    if (size.width() > Size.width() || size.height() > Size.height())
        size = size.scaled(Size, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    const QImage thumbnail = picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    // A cache that cannot be written to costs time, not the picture.
    QDir().mkpath(folder());
    QSaveFile file(path(dir));
    if (file.open(QIODevice::WriteOnly) && thumbnail.save(&file, "PNG"))
        file.commit();
    return thumbnail;
}

void ThumbnailCache::prune()
{
    const QFileInfoList files = QDir(folder()).entryInfoList(QDir::Files, QDir::Time); // the newest first
    for (int i = kMaxFiles; i < files.size(); ++i)
        QFile::remove(files.at(i).filePath());
}
