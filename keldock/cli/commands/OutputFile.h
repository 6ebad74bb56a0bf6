#pragma once

#include <QString>

/// A file to be written. It is written under a temporary name in the same directory and renamed when it is complete, so
/// that a failure leaves no partial file and does not damage an existing file.
class OutputFile
{
public:
    explicit OutputFile(const QString &path);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    /// Why the file cannot be written, in one line; empty if it can.
    QString error() const { return m_error; }

    /// The path to write to; the file does not exist yet. It has the same suffix as the final name.
    QString temporaryPath() const { return m_temporaryPath; }

    /// Renames the temporary file. Returns an error message, or an empty string.
    QString commit();

private:
    QString m_path;
    QString m_temporaryPath;
    QString m_error;
};
