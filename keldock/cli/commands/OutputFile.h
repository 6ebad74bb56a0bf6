#pragma once

#include <QString>

/// A file that is to be produced. It is written beside its place under another name and put there only once it is
/// whole, so that a failed or cancelled attempt leaves nothing behind and an older file of that name untouched.
class OutputFile
{
public:
    explicit OutputFile(const QString &path);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    /// Why the file cannot be produced there, in one line; empty when it can.
    QString error() const { return m_error; }

    /// The name under which to write it; no such file exists yet. It has the suffix of the final name.
    QString temporaryPath() const { return m_temporaryPath; }

    /// Puts the file in place. Answers why that failed, empty when it did not.
    QString commit();

private:
    QString m_path;
    QString m_temporaryPath;
    QString m_error;
};
