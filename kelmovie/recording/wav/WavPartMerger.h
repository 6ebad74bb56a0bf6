#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace kel
{

/// When a part was recorded, by the clock.
struct WavPartTime {
    qint64 durationMs = 0; ///< required duration of its sound
    qint64 lateMs = 0;     ///< delay until its sound began
    qint64 surplusMs = 0;  ///< recorded beyond its end, to be dropped
};

/// Joins the parts of a recording, in order, into `output`, and deletes each part once its sound is in there. A part
/// that cannot be read is skipped and kept. A single part is renamed.
///
/// Every problem is logged. Returns, in English, the first problem that lost sound or left parts behind; empty if there
/// was none. After a crash or on a full disk, every sound is in the output or in a part that still exists.
QString mergePartFiles(const QStringList &parts, const QString &output);

/// The same for the microphone, which starts with a delay: silence fills what is missing from the duration of each
/// part, so that all sound keeps its time. `times`: one for each part, or empty.
QString mergeMicrophoneParts(const QStringList &parts, const QString &output, const QList<WavPartTime> &times = {});

} // namespace kel
