#pragma once

#include <QString>

namespace kel
{

/// Joins the sound parts in `voiceDir` that a killed process left behind, into every sound file that does not exist
/// yet. Does nothing while a recording is still writing there. Parts that cannot be joined are kept and logged.
void repairInterruptedSound(const QString &voiceDir);

} // namespace kel
