#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <memory>

namespace av
{

/// Unbuffered output file that reports the failure of a write at once. After a failure all further writes are refused,
/// and the first error is kept. Not thread-safe.
class OutputFile
{
public:
    enum class Access {
        Default, ///< the permissions of the user's new files
        Private  ///< as kel::PrivateFile
    };

    /// Creates the file, or truncates or replaces an existing one.
    bool open(const QString &path, Access access = Access::Default);

    /// Appends.
    bool write(const QByteArray &bytes);

    /// Replaces bytes that have already been written.
    bool overwrite(qint64 position, const QByteArray &bytes);

    /// Shortens the file to `size` bytes and clears the error, so that the rest can be completed after a failed write.
    bool truncate(qint64 size);

    /// Renames the file of `other` over this one, which continues with its content; `other` is closed. On failure the
    /// content of this file is unchanged.
    bool replaceWith(OutputFile &other);

    void close() { m_file->close(); }

    /// Closes and deletes the file.
    void remove();

    /// Sets the error unless there is one, which refuses all further writes. Returns false.
    bool fail(const QString &reason);

    bool isOpen() const { return m_file->isOpen(); }
    QString path() const { return m_file->fileName(); }

    /// Bytes of all writes that succeeded.
    qint64 size() const { return m_size; }

    const QString &errorString() const { return m_error; }

private:
    bool put(const QByteArray &bytes);

    std::unique_ptr<QFile> m_file = std::make_unique<QFile>();
    qint64 m_size = 0;
    QString m_error;
};

} // namespace av
