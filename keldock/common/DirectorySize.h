#pragma once

#include <QString>

/// Bytes of all files in a directory and below.
qint64 directorySize(const QString &directory);
