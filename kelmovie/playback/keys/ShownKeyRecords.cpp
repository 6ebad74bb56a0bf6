#include "playback/keys/ShownKeyRecords.h"

#include "playback/keys/HeldModifiers.h"
#include "playback/keys/KeyClock.h"
#include "playback/keys/KeyNames.h"

namespace kel
{

namespace
{

/// A key that is held repeats sooner, whatever the settings of the keyboard.
constexpr qint64 kLongestRepeatMs = 2000;

/// Older recordings on X11 name the Windows key Super, and Alt Meta if Shift was held first: a key may be pressed as
/// one and released as the other. In all other recordings Meta is the Windows key.
bool mayNameAltMeta(const std::vector<KeyRecord> &records)
{
    HeldModifiers held;
    for (const KeyRecord &record : records) {
        if (record.key == Qt::Key_Super_L || record.key == Qt::Key_Super_R)
            return true;
        const bool isSwapped = (record.key == Qt::Key_Alt && held.has(Qt::Key_Meta)) ||
                               (record.key == Qt::Key_Meta && held.has(Qt::Key_Alt));
        if (!record.pressed && isSwapped && !held.has(record.key))
            return true;
        held.apply(record);
    }
    return false;
}

/// In a recording that may name Alt Meta, the key that was meant.
int unswapped(const KeyRecord &record, const HeldModifiers &held)
{
    if (record.key == Qt::Key_Meta && record.pressed)
        return held.has(Qt::Key_Shift) && !held.has(Qt::Key_Alt) ? Qt::Key_Alt : Qt::Key_Meta;
    if (record.key != Qt::Key_Meta && record.key != Qt::Key_Alt)
        return record.key;
    const int other = record.key == Qt::Key_Alt ? Qt::Key_Meta : Qt::Key_Alt;
    return !record.pressed && held.has(other) && !held.has(record.key) ? other : record.key;
}

/// Whether keys were not heard for a while before `record`: the last key stayed down without repeating. (Modifiers do
/// not repeat on all systems, so a modifier that is held for long says nothing.)
bool isGap(const KeyRecord &last, const KeyRecord &record, const KeyClock &clock)
{
    if (!last.pressed || last.key == 0 || modifierOfKey(last.key) != 0)
        return false;
    const bool isItsRelease = record.key == last.key && !record.pressed;
    return !isItsRelease && clock.msOf(record.frame) - clock.msOf(last.frame) >= kLongestRepeatMs;
}

} // namespace

std::vector<KeyRecord> shownKeyRecords(const std::vector<KeyRecord> &records, const KeyClock &clock,
                                       bool releasesModifiersAtGaps)
{
    const bool namesAltMeta = mayNameAltMeta(records);
    std::vector<KeyRecord> shown;
    shown.reserve(records.size());
    HeldModifiers held;
    const auto add = [&](const KeyRecord &record) {
        held.apply(record);
        shown.push_back(record);
    };
    const auto releaseModifiers = [&](qint32 frame) {
        for (const int key : {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta}) {
            if (held.has(key))
                add({key, false, frame});
        }
    };
    for (KeyRecord record : records) {
        if (releasesModifiersAtGaps && record.key == 0)
            releaseModifiers(record.frame);
        else if (releasesModifiersAtGaps && !shown.empty() && isGap(shown.back(), record, clock))
            releaseModifiers(shown.back().frame);
        if (namesAltMeta)
            record.key = unswapped(record, held);
        const int key = shownKey(record.key);
        if (key != 0 || record.key == 0)
            add({key, record.pressed, record.frame});
    }
    return shown;
}

} // namespace kel
