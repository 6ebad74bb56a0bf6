#pragma once

#include "recording/FrameTableWriter.h"

#include <QString>

#include <vector>

namespace kel
{

/// Collects the times of the logic frames and writes them to "frame_times.dat". One thread at a time.
class FrameTimesWriter
{
public:
    explicit FrameTimesWriter(const QString &path)
        : m_file(path)
    {
    }

    /// Starts with an empty file again, at the next save().
    void restart()
    {
        m_file.close();
        m_times.clear();
    }
    /// Adds the next logic frame, recorded at `ms` of recording time without pauses.
    void add(qint64 ms) { m_times.push_back(ms); }
    /// Writes what was added since the last call. False when that fails; a later call tries again.
    bool save() { return m_file.update(m_times); }

    QString path() const { return m_file.path(); }
    QString errorString() const { return m_file.errorString(); }

private:
    FrameTableWriter m_file;
    std::vector<qint64> m_times;
};

} // namespace kel
