#pragma once

#include <QRect>
#include <QString>

namespace kel
{

/// Records a piece of the screen and plays it back.
class RecordingCheck
{
public:
    /// Works in `directory`, which must not exist yet.
    explicit RecordingCheck(const QString &directory)
        : m_directory(directory)
    {
    }

    /// What is wrong, in one line; empty when nothing is. Runs an event loop.
    QString run();

    /// What was recorded, in one line. Valid after run().
    QString finding() const { return m_finding; }

private:
    QString record();
    QString playBack();

    const QString m_directory;
    QRect m_area;
    QString m_finding;
};

} // namespace kel
