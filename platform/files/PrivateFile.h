#pragma once

#include <QFile>
#include <QString>

namespace kel
{

/// A file that only its owner can read, from before its first byte is written. Opening it follows no link: neither the
/// file nor the directory that contains it may be one. Where a system has no such modes (Windows), the permissions of
/// the directory apply.
class PrivateFile : public QFile
{
public:
    explicit PrivateFile(const QString &path = QString())
        : m_path(path)
    {
    }

    void setFileName(const QString &path) { m_path = path; }
    QString fileName() const override { return m_path; }

    /// WriteOnly or ReadWrite, and:
    /// - with Truncate or NewOnly creates the file; Truncate first deletes an earlier one, so that its permissions and
    ///   other names are not inherited;
    /// - with ExistingOnly opens a file that exists.
    ///
    /// False on failure; errorString() says why.
    bool open(OpenMode mode) override;

private:
    bool fail(const QString &reason);

    QString m_path;
};

/// Creates a directory that only its owner can list, and its parents with the default permissions. Succeeds if it
/// exists already, as a directory and not as a link to one. Returns a null string on success, otherwise an error text.
/// Any thread.
QString makePrivateDirectory(const QString &path);

} // namespace kel
