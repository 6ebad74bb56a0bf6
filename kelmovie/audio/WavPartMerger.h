#pragma once

#include <QString>
#include <QStringList>

/// Join the parts of a recording, in order, into `output`, and delete each part once its sound is in there. A part that
/// cannot be read is skipped and stays. A single part is renamed.
///
/// What goes wrong is logged; the answer tells, in English, what of it cost sound or left parts behind, and is empty
/// when all is well. After a crash, or on a full disk, every sound is in the output or in a part that is still there.
QString mergePartFiles(const QStringList &parts, const QString &output);
QString mergeMicrophoneParts(const QStringList &parts, const QString &output);
