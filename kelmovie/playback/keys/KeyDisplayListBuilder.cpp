#include "playback/keys/KeyDisplayListBuilder.h"

#include "playback/keys/KeyNames.h"
#include "playback/keys/ShownKeyRecords.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace kel
{

KeyDisplayList KeyDisplayListBuilder::build(const KeyLog &recording, int totalFrames,
                                            const KeyDisplaySettings &settings, const KelPlaybackRules &rules,
                                            const RecordingTimeline &timeline)
{
    const KeyClock clock = rules.keysFollowRecordingTime ? KeyClock(timeline) : KeyClock(recording.fps);
    const std::vector<KeyRecord> records = shownKeyRecords(recording.records, clock, rules.releasesModifiersAtGaps);
    KeyDisplayListBuilder builder(keyStrokes(records, totalFrames, settings, rules), clock, settings);
    builder.run(totalFrames);
    builder.m_list.entries.shrink_to_fit();
    builder.m_list.past.shrink_to_fit();
    return std::move(builder.m_list);
}

KeyDisplayListBuilder::KeyDisplayListBuilder(std::vector<KeyStroke> strokes, const KeyClock &clock,
                                             const KeyDisplaySettings &settings)
    : m_strokes(std::move(strokes))
    , m_clock(clock)
    , m_keepMs(qint64(std::max(settings.keepTimeSeconds, 0)) * 1000)
    , m_maxPast(std::max(settings.maxHistoryCount - 1, 0))
    , m_maxContinueChar(settings.maxContinueChar)
{
}

void KeyDisplayListBuilder::run(int totalFrames)
{
    // Visits only frames at which something changes.
    for (int frame = 0; frame < totalFrames;) {
        m_nowMs = std::min<qint64>(m_clock.msOf(frame), INT_MAX);
        KeyDisplayEntry entry = startEntry(frame);
        const bool standsStill = hasStrokeAt(frame) && m_strokes[m_next].kind == KeyStroke::Standstill;
        for (; hasStrokeAt(frame); ++m_next)
            handle(m_strokes[m_next], entry);
        if (!standsStill)
            trim(entry);
        m_last = entry;
        int next = m_next < m_strokes.size() ? m_strokes[m_next].frame : totalFrames;
        if (standsStill || entry.hasContent()) {
            if (entry.hasContent())
                next = firstFrameOfChange(entry, frame + 1, next);
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

void KeyDisplayListBuilder::handle(const KeyStroke &stroke, KeyDisplayEntry &entry)
{
    switch (stroke.kind) {
    case KeyStroke::Press:
        return handlePress(stroke, entry);
    case KeyStroke::Release:
        return handleRelease(stroke, entry);
    case KeyStroke::HiddenPress:
        m_isInterrupted = true;
        return;
    case KeyStroke::Standstill:
        return;
    }
}

void KeyDisplayListBuilder::handleRelease(const KeyStroke &stroke, KeyDisplayEntry &entry) const
{
    if (!entry.hasCurrent())
        return;
    entry.current.timeMs = int(m_nowMs);
    if (stroke.type == KeyDisplayItem::Modifier && entry.current.type == KeyDisplayItem::Modifier &&
        stroke.modifiers == 0)
        entry.current.type = KeyDisplayItem::NoType;
}

void KeyDisplayListBuilder::handlePress(const KeyStroke &stroke, KeyDisplayEntry &entry)
{
    KeyDisplayItem &current = entry.current;
    const bool isContinued = !std::exchange(m_isInterrupted, false);
    if (isContinued && stroke.type == KeyDisplayItem::Character && current.type == KeyDisplayItem::Character) {
        if (current.text.size() >= m_maxContinueChar) {
            moveToHistory(entry);
            current.text.clear();
        }
        current.text += textOf(stroke);
        current.timeMs = int(m_nowMs);
        return;
    }

    KeyDisplayItem item;
    item.timeMs = int(m_nowMs);
    item.type = stroke.type;
    item.text = modifierPrefix(stroke.modifiers);
    if (stroke.type == KeyDisplayItem::Modifier) {
        item.text.chop(1);
    } else {
        item.text += textOf(stroke);
        if (current.type == KeyDisplayItem::Modifier && !stroke.isText)
            item.type = KeyDisplayItem::Combination;
        if (isContinued && current.type == item.type && current.text == item.text) {
            current.timeMs = item.timeMs;
            ++current.count;
            return;
        }
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

/// The first frame from `first` to `end` at which a part of the entry is expired, or `end`.
int KeyDisplayListBuilder::firstFrameOfChange(const KeyDisplayEntry &entry, int first, int end) const
{
    qint64 timeMs = entry.hasCurrent() ? entry.current.timeMs : INT_MAX;
    if (entry.hasHistory())
        timeMs = std::min<qint64>(timeMs, m_list.past[size_t(entry.historyBegin)].timeMs);
    return m_clock.firstFrameAfter(timeMs + m_keepMs, first, end);
}

QString KeyDisplayListBuilder::textOf(const KeyStroke &stroke)
{
    if (stroke.isText)
        return typedText(stroke.key);
    QString &text = m_texts[stroke.key];
    if (text.isNull())
        text = keyText(stroke.key);
    return text;
}

} // namespace kel
