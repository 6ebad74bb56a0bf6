#include "files/PrivateFile.h"

#include "files/windows/ExtendedPath.h"
#include "files/windows/ReparsePoint.h"

#include <QDir>
#include <QFileInfo>

namespace kel
{

namespace
{
const QString kIsLink = QStringLiteral("It is a link");
} // namespace

/// Only administrators can create links to files, so nobody can put one here between the checks and the opening.
bool PrivateFile::open(OpenMode mode)
{
    const QString directory = QFileInfo(m_path).path();
    if (isLinkAt(directory))
        return fail(QStringLiteral("%1: %2").arg(directory, kIsLink));
    if (isLinkAt(m_path))
        return fail(kIsLink);
    if (mode & Truncate)
        QFile::remove(m_path);
    QFile::setFileName(m_path);
    return QFile::open((mode & ~Truncate) | ((mode & ExistingOnly) ? ReadWrite : NewOnly));
}

QString makePrivateDirectory(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    const std::wstring name = extendedPath(path);
    if (CreateDirectoryW(name.c_str(), nullptr))
        return {};
    const DWORD error = GetLastError();
    if (isLinkAt(path))
        return kIsLink;
    return QFileInfo(path).isDir() ? QString() : qt_error_string(int(error));
}

} // namespace kel
