#pragma once

#include "files/PrivateFile.h"

#include <QString>

#include <vector>

namespace kel
{

/// Writes a file with a number for every logic frame, "frame_indexes.dat" or "frame_times.dat", and keeps it valid at
/// every moment: entries are appended before the count in the header is raised, so a killed process leaves all entries
/// up to its last update. One thread at a time.
class FrameTableWriter
{
public:
    explicit FrameTableWriter(const QString &path);

    /// Opens the file, replacing an earlier one, unless it is open. False when it cannot be opened.
    bool open();

    /// Appends the entries added since the last call; `entries` holds all of them. False when they cannot be written;
    /// the file is then unchanged, and a later call tries again.
    bool update(const std::vector<qint64> &entries);

    /// A later update() writes the file anew.
    void close();

    QString path() const { return m_file.fileName(); }
    QString errorString() const { return m_file.errorString(); }

private:
    bool writeAt(qint64 offset, const std::vector<qint64> &numbers);

    PrivateFile m_file;
    qint64 m_count = -1; // entries in the file; -1 before its header is written
};

} // namespace kel
