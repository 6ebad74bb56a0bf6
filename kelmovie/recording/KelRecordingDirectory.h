#pragma once

#include <QString>

/// The directory of a recording that is about to start.
class KelRecordingDirectory
{
public:
    explicit KelRecordingDirectory(const QString &path);

    /// Creates the directory if necessary, checks that it is writable, and moves a recording that is already in it to a
    /// subdirectory. False when that fails; errorString() says why.
    bool prepare();

    /// Removes the files that a recording has created in the prepared directory before it failed to start.
    void discard();

    QString errorString() const { return m_error; }

private:
    bool isWritable();
    bool setAsideRecording();

    const QString m_path;
    bool m_isNew = false;
    QString m_error;
};
