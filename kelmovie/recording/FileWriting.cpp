#include "recording/FileWriting.h"

#include "files/RenameOver.h"

#include <QFile>
#include <QTemporaryFile>

#include <memory>

namespace kel
{

namespace
{
/// Creates a new file beside `path`, unbuffered. It is not open if that failed.
std::unique_ptr<QFile> createBeside(const QString &path, FileAccess access)
{
    std::unique_ptr<QFile> file;
    if (access == FileAccess::OwnerOnly) {
        auto temporary = std::make_unique<QTemporaryFile>(path + QStringLiteral(".XXXXXX"));
        temporary->setAutoRemove(false);
        file = std::move(temporary);
        file->open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    } else {
        file = std::make_unique<QFile>(path + QStringLiteral(".tmp"));
        file->remove(); // left by a crash; removed so that NewOnly succeeds, which follows no link
        file->open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
    }
    return file;
}
} // namespace

bool writeAll(QIODevice &device, const QByteArray &bytes)
{
    qint64 written = 0;
    while (written < bytes.size()) {
        const qint64 more = device.write(bytes.constData() + written, bytes.size() - written);
        if (more <= 0)
            return false;
        written += more;
    }
    return true;
}

bool replaceFile(const QString &path, const QByteArray &bytes, FileAccess access, QString *error, QFile *replaced)
{
    std::unique_ptr<QFile> file = createBeside(path, access);
    QString problem = file->isOpen() && writeAll(*file, bytes) ? QString() : file->errorString();
    const QString written = file->fileName();
    // Some systems cannot rename or replace an open file, and close() leaves a QTemporaryFile open.
    file.reset();
    if (problem.isEmpty()) {
        if (replaced)
            replaced->close();
        problem = renameOver(written, path);
        if (problem.isEmpty())
            return true;
    }
    if (error)
        *error = problem;
    if (!written.isEmpty())
        QFile::remove(written);
    return false;
}

} // namespace kel
