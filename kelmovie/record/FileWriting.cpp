#include "record/FileWriting.h"

#include <QFile>
#include <QTemporaryFile>

#include <filesystem>
#include <memory>
#include <system_error>

namespace
{
std::filesystem::path nativePath(const QString &path)
{
    return std::filesystem::path(path.toStdU16String());
}

/// A new file beside `path`, open and without a buffer, or not open.
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
        file->remove(); // left behind by a crash; NewOnly then follows no link
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
    const std::unique_ptr<QFile> file = createBeside(path, access);
    std::error_code failure;
    if (file->isOpen() && writeAll(*file, bytes)) {
        file->close();
        if (replaced)
            replaced->close(); // not every system replaces a file that is open
        // QFile::rename() does not replace.
        std::filesystem::rename(nativePath(file->fileName()), nativePath(path), failure);
        if (!failure)
            return true;
    }
    if (error)
        *error = failure ? QString::fromLocal8Bit(failure.message().c_str()) : file->errorString();
    file->remove();
    return false;
}
