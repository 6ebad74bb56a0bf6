#pragma once

#include "files/FileLock.h"

#include <QString>
#include <QTemporaryDir>

namespace kel
{

/// The private directory in which an export makes its files, and which is deleted at the end. It is in the folder of
/// the destination: that disk must have room for the file anyway, and moving the complete file there is a rename.
/// Directories of exports that were killed are deleted by the next export into the same folder.
class ExportDirectory
{
public:
    /// Creates the directory in `folder`. Private: nobody else can place a link or a file in it.
    explicit ExportDirectory(const QString &folder);

    bool isValid() const { return m_directory.isValid(); }

    /// Why the directory could not be created, in English.
    QString errorString() const { return m_directory.errorString(); }

    QString path() const { return m_directory.path(); }
    QString filePath(const QString &name) const { return m_directory.filePath(name); }

    /// False while a file in it is open, on systems where that prevents deleting it. The destructor tries again.
    bool remove();

private:
    void removeAbandoned() const;

    QTemporaryDir m_directory;
    FileLock m_lock; // tells the exports of other processes that this one is running
};

} // namespace kel
