#include "recording/FileWriting.h"

#include "files/PrivateFile.h"
#include "files/RenameOver.h"
#include "files/WriteAll.h"

#include <QFileInfo>

namespace kel
{

QString createFile(const QString &path, const QByteArray &bytes)
{
    QFile::remove(path);
    PrivateFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered) && writeAll(file, bytes))
        return {};
    const QString problem = file.errorString();
    if (file.isOpen()) {
        file.close();
        QFile::remove(path);
    }
    return problem;
}

QString moveIntoPlace(const QString &from, const QString &to)
{
    const QString problem = QFileInfo(to).isSymLink() ? QStringLiteral("It is a link") : renameOver(from, to);
    if (!problem.isEmpty())
        QFile::remove(from);
    return problem;
}

bool replaceFile(const QString &path, const QByteArray &bytes, QString *error, QFile *replaced)
{
    const QString written = path + QStringLiteral(".tmp");
    QString problem = createFile(written, bytes);
    if (problem.isEmpty()) {
        if (replaced)
            replaced->close(); // some systems cannot replace an open file
        problem = moveIntoPlace(written, path);
    }
    if (error && !problem.isEmpty())
        *error = problem;
    return problem.isEmpty();
}

} // namespace kel
