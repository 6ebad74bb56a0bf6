#include "playback/keys/KeyDisplayListBuilder.h"

#include "playback/keys/KeyNames.h"

#include <algorithm>
#include <climits>

namespace kel
{

namespace
{

/// Whether a recorded Alt key is the Meta key, or the reverse. With Shift held, X11 layouts map the Alt key to Meta, so
/// it may be pressed as one and released as the other. (The Windows key is a Super key there.)
bool isSwapped(const KeyRecord &record, quint32 held)
{
    if (record.key != Qt::Key_Alt && record.key != Qt::Key_Meta)
        return false;
    const quint32 own = modifierOfKey(record.key);
    const quint32 other = own ^ (Qt::AltModifier | Qt::MetaModifier);
    if (record.pressed)
        return record.key == Qt::Key_Meta && (held & Qt::ShiftModifier) && !(held & other);
    return (held & other) && !(held & own);
}

/// The records with the keys as they are shown, see shownKey().
std::vector<KeyRecord> shownRecords(const std::vector<KeyRecord> &records)
{
    std::vector<KeyRecord> shown;
    shown.reserve(records.size());
    quint32 held = 0;
    for (KeyRecord record : records) {
        if (isSwapped(record, held))
            record.key = record.key == Qt::Key_Alt ? Qt::Key_Meta : Qt::Key_Alt;
        else if (record.key != 0 && shownKey(record.key) == 0)
            continue;
        record.key = shownKey(record.key);
        const quint32 modifier = modifierOfKey(record.key);
        held = record.pressed ? held | modifier : held & ~modifier;
        shown.push_back(record);
    }
    return shown;
}

} // namespace

KeyDisplayList KeyDisplayListBuilder::build(const KeyLog &recording, int totalFrames, const Limits &limits)
{
    KeyDisplayListBuilder builder(recording, limits);
    builder.run(totalFrames);
    builder.m_list.entries.shrink_to_fit();
    builder.m_list.past.shrink_to_fit();
    return std::move(builder.m_list);
}

KeyDisplayListBuilder::KeyDisplayListBuilder(const KeyLog &recording, const Limits &limits)
    : m_records(shownRecords(recording.records))
    , m_fps(recording.fps)
    , m_keepMs(qint64(std::max(limits.keepTimeSeconds, 0)) * 1000)
    , m_maxPast(std::max(limits.maxHistoryCount - 1, 0))
    , m_maxContinueChar(limits.maxContinueChar)
{
}

void KeyDisplayListBuilder::run(int totalFrames)
{
    applyModifier();
    // Visits only frames at which something changes.
    for (int frame = 0; frame < totalFrames;) {
        catchUp(frame);
        m_nowMs = std::min<qint64>(frame * 1000LL / m_fps, INT_MAX);
        KeyDisplayEntry entry = startEntry(frame);
        bool isDisplayed = false;
        if (hasRecordAt(frame) && (m_records[m_next].key == 0 || !m_captureOn)) {
            if (m_records[m_next].key == 0)
                m_captureOn = m_records[m_next].pressed;
            isDisplayed = true;
        } else {
            if (hasRecordAt(frame))
                handleRecord(entry);
            trim(entry);
            isDisplayed = entry.hasContent();
        }
        m_last = entry;
        catchUp(frame + 1);
        int next = hasRecord() ? std::min(m_records[m_next].frame, totalFrames) : totalFrames;
        if (isDisplayed) {
            if (entry.hasContent())
                next = std::min(next, std::max(frame + 1, firstFrameOfChange(entry)));
            entry.lastFrame = entry.hasContent() ? next - 1 : frame;
            append(entry);
        }
        frame = next;
    }
}

/// Extends the last entry if this one looks the same: a release, for example, only changes when the entry expires.
void KeyDisplayListBuilder::append(const KeyDisplayEntry &entry)
{
    std::vector<KeyDisplayEntry> &entries = m_list.entries;
    if (!entries.empty() && entries.back().lastFrame + 1 == entry.firstFrame && entries.back().looksLike(entry))
        entries.back().lastFrame = entry.lastFrame;
    else
        entries.push_back(entry);
}

/// Skips the records before `frame`. m_modifiers is one record ahead: it includes the record that is handled next.
void KeyDisplayListBuilder::catchUp(int frame)
{
    while (hasRecord() && m_records[m_next].frame < frame) {
        if (m_records[m_next].key == 0)
            m_captureOn = m_records[m_next].pressed;
        ++m_next;
        applyModifier();
    }
}

void KeyDisplayListBuilder::applyModifier()
{
    if (!hasRecord())
        return;
    const quint32 modifier = modifierOfKey(m_records[m_next].key);
    m_modifiers = m_records[m_next].pressed ? m_modifiers | modifier : m_modifiers & ~modifier;
}

/// What is still displayed from the frame before. When the current item expires, its history goes with it.
KeyDisplayEntry KeyDisplayListBuilder::startEntry(int frame) const
{
    KeyDisplayEntry entry = m_last;
    if (entry.hasCurrent() && isExpired(entry.current)) {
        entry.current = KeyDisplayItem();
        entry.historyBegin = entry.historyEnd;
    }
    entry.firstFrame = entry.lastFrame = frame;
    return entry;
}

void KeyDisplayListBuilder::handleRecord(KeyDisplayEntry &entry)
{
    const KeyRecord &record = m_records[m_next];
    if (record.pressed)
        handlePress(record, entry);
    else
        handleRelease(record, entry);
}

void KeyDisplayListBuilder::handleRelease(const KeyRecord &record, KeyDisplayEntry &entry)
{
    if (!entry.hasCurrent())
        return;
    entry.current.timeMs = int(m_nowMs);
    if (modifierOfKey(record.key) && entry.current.type == KeyDisplayItem::Modifier && m_modifiers == 0)
        entry.current.type = KeyDisplayItem::NoType;
}

void KeyDisplayListBuilder::handlePress(const KeyRecord &record, KeyDisplayEntry &entry)
{
    KeyDisplayItem &current = entry.current;
    if (isCharacterKey(record.key) && current.type == KeyDisplayItem::Character && m_modifiers == 0) {
        if (current.text.size() >= m_maxContinueChar) {
            moveToHistory(entry);
            current.text.clear();
        }
        current.text += textOf(record.key);
        current.timeMs = int(m_nowMs);
        return;
    }

    KeyDisplayItem item;
    item.timeMs = int(m_nowMs);
    if (modifierOfKey(record.key)) {
        item.type = KeyDisplayItem::Modifier;
        item.text = modifierPrefix(m_modifiers);
        item.text.chop(1);
        if (entry.hasCurrent() && current.type != KeyDisplayItem::Modifier)
            moveToHistory(entry);
        current = item;
        return;
    }

    item.text = m_modifiers ? modifierPrefix(m_modifiers) + textOf(record.key) : textOf(record.key);
    if (m_modifiers != 0 || current.type == KeyDisplayItem::Modifier)
        item.type = KeyDisplayItem::Combination;
    else
        item.type = isCharacterKey(record.key) ? KeyDisplayItem::Character : KeyDisplayItem::Other;
    if (current.type == item.type && current.text == item.text) {
        current.timeMs = item.timeMs;
        ++current.count;
        return;
    }
    if (entry.hasCurrent() && current.type != KeyDisplayItem::Modifier)
        moveToHistory(entry);
    current = item;
}

void KeyDisplayListBuilder::moveToHistory(KeyDisplayEntry &entry)
{
    m_list.past.push_back(entry.current);
    entry.historyEnd = int(m_list.past.size());
}

/// Items are moved to the history in order of time, so that the oldest ones expire first.
void KeyDisplayListBuilder::trim(KeyDisplayEntry &entry) const
{
    entry.historyBegin = std::max(entry.historyBegin, entry.historyEnd - m_maxPast);
    while (entry.hasHistory() && isExpired(m_list.past[size_t(entry.historyBegin)]))
        ++entry.historyBegin;
    if (entry.hasCurrent() && isExpired(entry.current))
        entry.current = KeyDisplayItem();
}

/// The first frame at which a part of the entry is expired.
int KeyDisplayListBuilder::firstFrameOfChange(const KeyDisplayEntry &entry) const
{
    qint64 timeMs = entry.hasCurrent() ? entry.current.timeMs : INT_MAX;
    if (entry.hasHistory())
        timeMs = std::min<qint64>(timeMs, m_list.past[size_t(entry.historyBegin)].timeMs);
    const qint64 frame = ((timeMs + m_keepMs + 1) * m_fps + 999) / 1000;
    return int(std::min<qint64>(frame, INT_MAX));
}

const QString &KeyDisplayListBuilder::textOf(int key)
{
    QString &text = m_texts[key];
    if (text.isNull())
        text = keyText(key);
    return text;
}

} // namespace kel
