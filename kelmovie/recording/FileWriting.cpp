#include "recording/FileWriting.h"

#include "files/PrivateFile.h"
#include "files/RenameOver.h"

#include <QFileInfo>

namespace kel
{

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

bool replaceFile(const QString &path, const QByteArray &bytes, QString *error, QFile *replaced)
{
    if (QFileInfo(path).isSymLink()) {
        if (error)
            *error = QStringLiteral("It is a link");
        return false;
    }
    PrivateFile file(path + QStringLiteral(".tmp"));
    QFile::remove(file.fileName()); // left by a crash
    const bool isWritten =
        file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered) && writeAll(file, bytes);
    QString problem = isWritten ? QString() : file.errorString();
    file.close(); // some systems cannot rename or replace an open file
    if (isWritten) {
        if (replaced)
            replaced->close();
        problem = renameOver(file.fileName(), path);
        if (problem.isEmpty())
            return true;
    }
    if (error)
        *error = problem;
    QFile::remove(file.fileName());
    return false;
}

} // namespace kel
