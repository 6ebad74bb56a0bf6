#pragma once

#include <QRect>
#include <QString>

namespace kel
{

/// Records a part of the screen and plays it back.
class RecordingCheck
{
public:
    /// Works in `directory`, which must not exist yet.
    explicit RecordingCheck(const QString &directory)
        : m_directory(directory)
    {
    }

    /// Runs the check in a nested event loop. Returns the problem in one line, or an empty string.
    QString run();

    /// What was recorded, in one line. Valid after a successful run().
    QString finding() const { return m_finding; }

private:
    QString record();
    QString playBack();

    const QString m_directory;
    QRect m_area;
    QString m_finding;
};

} // namespace kel
