#include "export/ExportOutput.h"

#include "files/RenameOver.h"
#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingMetadata.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace kel
{

namespace
{

constexpr qint64 kCopyBlock = 1 << 20;

bool belongsToRecording(const QFileInfo &file, const QString &recordDir)
{
    const QString recording = QFileInfo(recordDir).canonicalFilePath();
    if (recording.isEmpty())
        return false;
    // Links are resolved where the file exists, and in the path to it where it does not yet.
    const QString target =
        file.exists() ? file.canonicalFilePath() : file.dir().canonicalPath() + '/' + file.fileName();
    if (target == KelRecordingMetadata::filePath(recording))
        return true;
    for (const QLatin1String track : KelRecordingFiles::kTrackDirs) {
        if (target.startsWith(KelRecordingFiles::path(recording, track) + '/'))
            return true;
    }
    return false;
}

} // namespace

QString exportOutputProblem(const QString &path, const QString &recordDir)
{
    if (path.isEmpty())
        return "No output file given";
    const QFileInfo info(path);
    if (info.isDir())
        return "Output path is a directory: " + path;
    if (info.exists() && !info.isFile())
        return "Output path is not a regular file: " + path;
    if (!info.dir().exists())
        return "Output directory does not exist: " + info.path();
    if (belongsToRecording(info, recordDir))
        return "Output file would overwrite a part of the recording: " + path;
    QSaveFile probe(path); // creates a file beside it, which goes away again
    if (!probe.open(QIODevice::WriteOnly))
        return "Cannot write output file " + path + ": " + probe.errorString();
    return QString();
}

QString moveOverFile(const QString &from, const QString &to, const std::function<bool(qint64 copied)> &goOn)
{
    const QFileInfo old(to);
    if (!goOn(0))
        return "cancelled";
    if (old.exists())
        QFile::setPermissions(from, old.permissions());
    // What a link points to is replaced, not the link.
    const QString place = old.exists() ? old.canonicalFilePath() : to;
    if (renameOver(from, place).isEmpty())
        return QString();
    QFile source(from); // on another disk
    if (!source.open(QIODevice::ReadOnly))
        return source.errorString();
    QSaveFile target(to);
    if (!target.open(QIODevice::WriteOnly))
        return target.errorString();
    QByteArray block(int(kCopyBlock), Qt::Uninitialized);
    qint64 copied = 0;
    for (;;) {
        const qint64 size = source.read(block.data(), block.size());
        if (size < 0)
            return source.errorString();
        if (size == 0)
            break;
        if (target.write(block.constData(), size) != size)
            return target.errorString();
        copied += size;
        if (!goOn(copied))
            return "cancelled";
    }
    if (!target.commit())
        return target.errorString();
    source.remove();
    return QString();
}

} // namespace kel
