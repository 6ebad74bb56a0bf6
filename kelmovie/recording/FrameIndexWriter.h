#pragma once

#include <QFile>
#include <QString>

#include <vector>

namespace kel
{

/// Writes "frame_indexes.dat" and keeps it valid at every moment: entries are appended first, then the count in the
/// header is raised, so a process that dies leaves all entries up to its last update. One thread at a time.
class FrameIndexWriter
{
public:
    explicit FrameIndexWriter(const QString &path);

    /// Opens the file, replacing an earlier one, unless that has been done. False when it cannot be opened.
    bool open();

    /// Appends what `entries` has more than at the last call. False when it could not be written; the file then holds
    /// what it held, and a later call tries again.
    bool update(const std::vector<qint64> &entries);

    /// A later update() writes the file anew.
    void close();

    QString path() const { return m_file.fileName(); }
    QString errorString() const { return m_file.errorString(); }

private:
    bool writeAt(qint64 offset, const std::vector<qint64> &numbers);

    QFile m_file;
    qint64 m_count = -1; // entries in the file; -1 before its header is written
};

} // namespace kel
