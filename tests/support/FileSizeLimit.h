#pragma once

#include <QString>

/// What stands in for a full disk: no file of this process grows beyond `bytes`. One at a time.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(quint64 bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

    /// What the system says of it.
    static QString errorText();
};
