#pragma once

#include <QString>

/// The place on disk of a recording that is about to start.
class KelRecordingDirectory
{
public:
    explicit KelRecordingDirectory(const QString &path);

    /// Makes the directory exist, proves that it can be written to, and moves an earlier recording in it out of the
    /// way, into a sub-directory. False when that fails; errorString() says why.
    bool prepare();

    /// Removes what a recording that could not start has left in the prepared directory.
    void discard();

    QString errorString() const { return m_error; }

private:
    bool isWritable();
    bool holdsRecording() const;
    bool setAsideRecording();

    const QString m_path;
    bool m_isNew = false;
    QString m_error;
};
