#include "export/ExportOutput.h"

#include "files/RenameOver.h"
#include "files/WriteAll.h"
#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingMetadata.h"

#include <KelMovie/KelExportRequest.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringList>

namespace kel
{

namespace
{

constexpr qint64 kCopyBlock = 1 << 20;

/// Media files that are not in any format of an export.
const QStringList kOtherMedia =
    QStringLiteral("wav mp3 m4a mka aac flac ogg oga opus wma aif aiff avi webm wmv mpg mpeg "
                   "ts flv jpg jpeg bmp tif tiff svg ico")
        .split(QLatin1Char(' '));

/// The suffixes for a KelExportRequest::Format; empty for an unknown format.
QStringList suffixesOf(int format)
{
    switch (format) {
    case KelExportRequest::Mp4:
        return {QStringLiteral("mp4"), QStringLiteral("m4v"), QStringLiteral("mov"), QStringLiteral("mkv")};
    case KelExportRequest::Gif:
        return {QStringLiteral("gif")};
    case KelExportRequest::Apng:
        return {QStringLiteral("apng"), QStringLiteral("png")};
    case KelExportRequest::WebP:
        return {QStringLiteral("webp")};
    default:
        return {};
    }
}

bool belongsToRecording(const QFileInfo &file, const QString &recordDir)
{
    const QString recording = QFileInfo(recordDir).canonicalFilePath();
    if (recording.isEmpty())
        return false;
    // Resolves links: of the file if it exists, else of its directory.
    const QString target =
        file.exists() ? file.canonicalFilePath() : file.dir().canonicalPath() + QLatin1Char('/') + file.fileName();
    if (target == KelRecordingMetadata::filePath(recording))
        return true;
    for (const QLatin1String track : KelRecordingFiles::kTrackDirs) {
        if (target.startsWith(KelRecordingFiles::path(recording, track) + QLatin1Char('/')))
            return true;
    }
    return false;
}

} // namespace

QString exportFormatProblem(const QString &path, int format)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    const QStringList allowed = suffixesOf(format);
    bool isOther = kOtherMedia.contains(suffix);
    for (const int other :
         {KelExportRequest::Mp4, KelExportRequest::Gif, KelExportRequest::Apng, KelExportRequest::WebP})
        isOther = isOther || suffixesOf(other).contains(suffix);
    if (!isOther || allowed.isEmpty() || allowed.contains(suffix))
        return {};
    return QStringLiteral("The suffix of %1 stands for another format; use .%2")
        .arg(path, allowed.join(QLatin1String(", .")));
}

QString exportOutputProblem(const QString &path, const QString &recordDir)
{
    if (path.isEmpty())
        return QStringLiteral("No output file given");
    const QFileInfo info(path);
    if (info.isDir())
        return QLatin1String("Output path is a directory: ") + path;
    if (info.exists() && !info.isFile())
        return QLatin1String("Output path is not a regular file: ") + path;
    if (!info.dir().exists())
        return QLatin1String("Output directory does not exist: ") + info.path();
    if (belongsToRecording(info, recordDir))
        return QLatin1String("Output file would overwrite a part of the recording: ") + path;
    QSaveFile probe(path); // only creates a temporary file beside it
    if (!probe.open(QIODevice::WriteOnly))
        return QLatin1String("Cannot write output file ") + path + QLatin1String(": ") + probe.errorString();
    return QString();
}

QString moveOverFile(const QString &from, const QString &to, const std::function<bool(qint64 copied)> &shouldContinue)
{
    const QFileInfo old(to);
    if (!shouldContinue(0))
        return QStringLiteral("cancelled");
    if (old.exists())
        QFile::setPermissions(from, old.permissions());
    // The target of a link is replaced, not the link.
    const QString destination = old.exists() ? old.canonicalFilePath() : to;
    if (renameOver(from, destination).isEmpty())
        return QString();
    QFile source(from); // renaming fails between different disks
    if (!source.open(QIODevice::ReadOnly))
        return source.errorString();
    QSaveFile target(to);
    if (!target.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return target.errorString();
    QByteArray block(int(kCopyBlock), Qt::Uninitialized);
    qint64 copied = 0;
    for (;;) {
        const qint64 size = source.read(block.data(), block.size());
        if (size < 0)
            return source.errorString();
        if (size == 0)
            break;
        if (!writeAll(target, QByteArray::fromRawData(block.constData(), int(size))))
            return target.errorString();
        copied += size;
        if (!shouldContinue(copied))
            return QStringLiteral("cancelled");
    }
    if (!target.commit())
        return target.errorString();
    source.remove();
    return QString();
}

} // namespace kel
