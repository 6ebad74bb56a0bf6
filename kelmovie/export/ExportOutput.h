#pragma once

#include <QString>

#include <functional>

namespace kel
{

/// Why an export cannot write to `path`, as one English line; empty when it can. Touches no existing file.
/// `recordDir` is the recording that is exported: its own files must not be written over.
QString exportOutputProblem(const QString &path, const QString &recordDir);

/// Moves the file `from` to `to`. An existing `to` is replaced in one step, when the new file is complete; its
/// permissions stay. Where they are on different disks, the file is copied; `goOn` is called with the bytes copied so
/// far, first with 0, and ends it by false.
/// Returns an empty string, or why it failed; `to` then is as it was.
QString moveOverFile(const QString &from, const QString &to, const std::function<bool(qint64 copied)> &goOn);

} // namespace kel
