#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace kel
{

/// When a part was recorded, by the clock.
struct WavPartTime {
    qint64 durationMs = 0; ///< that its sound is to have
    qint64 lateMs = 0;     ///< until the sound began
    qint64 surplusMs = 0;  ///< that it was recorded for after its end
};

/// Join the parts of a recording, in order, into `output`, and delete each part once its sound is in there. A part that
/// cannot be read is skipped and stays. A single part is renamed.
///
/// What goes wrong is logged; the answer tells, in English, what of it cost sound or left parts behind, and is empty
/// when all is well. After a crash, or on a full disk, every sound is in the output or in a part that is still there.
QString mergePartFiles(const QStringList &parts, const QString &output);

/// `times`: of each part, or empty. A microphone begins a moment after it was told to: silence makes up for what is
/// missing, so that all sound keeps its time.
QString mergeMicrophoneParts(const QStringList &parts, const QString &output, const QList<WavPartTime> &times = {});

} // namespace kel
