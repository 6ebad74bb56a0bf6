#pragma once

#include "recording/input/KeyLogReader.h"

#include <vector>

namespace kel
{

class KeyClock;

/// The records with the keys as they are shown, see shownKey(). With `releasesModifiersAtGaps`, modifiers that are held
/// when keys are no longer heard are released there.
std::vector<KeyRecord> shownKeyRecords(const std::vector<KeyRecord> &records, const KeyClock &clock,
                                       bool releasesModifiersAtGaps);

} // namespace kel
