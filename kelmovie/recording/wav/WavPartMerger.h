#pragma once

#include <QString>
#include <QStringList>

namespace kel
{

/// Joins the parts of a recording, in order, into `output`. A part that cannot be opened is skipped and kept. A single
/// part is renamed if it begins with the 44 bytes of WavHeader.
///
/// The output appears when it is complete; only then are the parts deleted. If that fails, for example on a full disk,
/// or the process dies, the parts are whole, and RecordedSound reads them where they are.
///
/// Every problem is logged. Returns, in English, why the parts were not joined; empty if they were. Any thread.
QString mergePartFiles(const QStringList &parts, const QString &output);

/// The same for parts of the microphone, with messages about it.
QString mergeMicrophoneParts(const QStringList &parts, const QString &output);

} // namespace kel
