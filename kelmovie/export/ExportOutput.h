#pragma once

#include <QString>

#include <functional>

namespace kel
{

/// Why a file in a KelExportRequest::Format cannot have the name `path`: its suffix stands for another kind of file. An
/// English line; empty when the name fits, which one without a suffix or with an unknown one does.
QString exportFormatProblem(const QString &path, int format);

/// Why an export cannot write to `path`, as one English line; empty when it can. Does not touch existing files.
/// `recordDir` is the exported recording, whose files must not be overwritten.
QString exportOutputProblem(const QString &path, const QString &recordDir);

/// Moves the file `from` to `to`. An existing `to` is replaced atomically by the complete file and keeps its
/// permissions. Between different disks, the file is copied. `shouldContinue` is called with the number of bytes copied
/// so far, first with 0, and cancels by returning false.
/// Returns an empty string, or the error; `to` is then unchanged.
QString moveOverFile(const QString &from, const QString &to, const std::function<bool(qint64 copied)> &shouldContinue);

} // namespace kel
