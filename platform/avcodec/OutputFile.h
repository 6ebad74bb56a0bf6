#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace av
{

/// A file whose every write is checked at once; nothing is kept back in a buffer. After a failure it takes no more,
/// and the text of the first failure stays. One thread at a time.
class OutputFile
{
public:
    /// Creates the file, or empties it when it exists.
    bool open(const QString &path);

    /// Appends.
    bool write(const QByteArray &bytes);

    /// Replaces bytes that have been written.
    bool overwrite(qint64 position, const QByteArray &bytes);

    /// Cuts off what stands behind `size` and forgets a failure, so that what is left can be brought to a good end.
    bool truncate(qint64 size);

    /// Puts the file of `other`, which is done with, in the place of this one. When that fails, this one is as before.
    bool replaceWith(OutputFile &other);

    /// Deletes the file.
    void remove();

    /// Refuses all further writing for the reason given. Answers false.
    bool fail(const QString &reason);

    QString path() const { return m_file.fileName(); }
    qint64 size() const { return m_size; }
    const QString &errorString() const { return m_error; }

private:
    bool put(const QByteArray &bytes);

    QFile m_file;
    qint64 m_size = 0;
    QString m_error;
};

} // namespace av
