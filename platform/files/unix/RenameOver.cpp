#include "files/RenameOver.h"

#include <QFile>

#include <cstdio>

namespace kel
{

QString renameOver(const QString &from, const QString &to)
{
    if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0)
        return QString();
    return qt_error_string();
}

} // namespace kel
