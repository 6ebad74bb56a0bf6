#pragma once

#include <QString>

/// Simulates a full disk: no file of this process can grow beyond `bytes`. Only one at a time.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(quint64 bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

    /// The system's error text for a write beyond the limit.
    static QString errorText();
    /// A regular expression for that text and the C library's, which differ on Windows.
    static QString errorPattern();
};
