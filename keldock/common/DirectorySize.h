#pragma once

#include <QString>

/// Total size in bytes of all files in a directory and its subdirectories. Symbolic links do not count.
qint64 directorySize(const QString &directory);
