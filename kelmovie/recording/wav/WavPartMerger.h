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

/// Joins the parts of a recording, in order, into `output`. A part that cannot be opened is skipped and kept. A single
/// part is renamed if it begins with the 44 bytes of WavHeader.
///
/// The output appears when it is complete; only then are the parts deleted. If that fails, for example on a full disk,
/// or the process dies, the parts are whole, and RecordedSound reads them where they are.
///
/// Every problem is logged. Returns, in English, why the parts were not joined; empty if they were. Any thread.
QString mergePartFiles(const QStringList &parts, const QString &output);

/// The same for the microphone, which starts with a delay: silence fills what is missing from the duration of each
/// part, so that all sound keeps its time. `times`: one for each part, or empty.
QString mergeMicrophoneParts(const QStringList &parts, const QString &output, const QList<WavPartTime> &times = {});

} // namespace kel
