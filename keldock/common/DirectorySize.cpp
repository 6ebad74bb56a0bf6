#include "common/DirectorySize.h"

#include <QDirIterator>

qint64 directorySize(const QString &directory)
{
    qint64 bytes = 0;
    QDirIterator files(directory, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        bytes += files.fileInfo().size();
    }
    return bytes;
}
