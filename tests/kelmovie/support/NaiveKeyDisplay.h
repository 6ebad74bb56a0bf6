#pragma once

#include "playback/keys/KeyDisplayListBuilder.h"
#include "playback/keys/KeyNames.h"

#include <QStringList>

#include <vector>

inline QString boxText(const kel::KeyDisplayItem &item)
{
    if (item.type == kel::KeyDisplayItem::NoType)
        return QString();
    return QString("%1:%2").arg(item.type).arg(item.text) + (item.count > 1 ? QString("*%1").arg(item.count) : "");
}

/// What is displayed at one frame, with its own copy of everything.
struct NaiveKeyEntry {
    int frame = 0;
    kel::KeyDisplayItem current;
    std::vector<kel::KeyDisplayItem> history;

    bool hasContent() const { return current.type != 0 || !history.empty(); }
    QString boxes() const
    {
        QStringList all;
        for (const kel::KeyDisplayItem &item : history)
            all += boxText(item);
        all += "| " + boxText(current);
        return all.join(' ').trimmed();
    }
};

/// A naive implementation of KeyDisplayListBuilder, frame by frame, to compare its result with.
inline std::vector<NaiveKeyEntry> naiveKeyDisplay(const kel::KeyLog &recording, int totalFrames,
                                                  const kel::KeyDisplaySettings &limits)
{
    const std::vector<kel::KeyRecord> &records = recording.records;
    const qint64 keepMs = limits.keepTimeSeconds * 1000;
    std::vector<NaiveKeyEntry> entries;
    NaiveKeyEntry last;
    size_t i = 0;
    quint32 modifiers = 0;
    bool captureOn = true;
    const auto setModifier = [&] {
        if (i < records.size()) {
            const quint32 modifier = kel::modifierOfKey(records[i].key);
            modifiers = records[i].pressed ? modifiers | modifier : modifiers & ~modifier;
        }
    };
    setModifier();
    for (int frame = 0; frame < totalFrames; ++frame) {
        const int t = int(qint64(frame) * 1000 / recording.fps);
        while (i < records.size() && records[i].frame < frame) {
            if (records[i].key == 0)
                captureOn = records[i].pressed;
            ++i;
            setModifier();
        }
        NaiveKeyEntry entry;
        if (last.current.type == 0 || t <= keepMs + last.current.timeMs)
            entry = last;
        entry.frame = frame;
        kel::KeyDisplayItem &current = entry.current;
        if (i < records.size() && records[i].frame == frame) {
            const kel::KeyRecord &record = records[i];
            if (record.key == 0 || !captureOn) {
                if (record.key == 0)
                    captureOn = record.pressed;
                entries.push_back(entry);
                last = entry;
                continue;
            }
            const bool isModifier = kel::modifierOfKey(record.key) != 0;
            if (!record.pressed) {
                if (current.type != 0) {
                    current.timeMs = t;
                    if (isModifier && current.type == 4 && modifiers == 0)
                        current.type = 0;
                }
            } else if (kel::isCharacterKey(record.key) && current.type == 1 && modifiers == 0) {
                if (current.text.size() >= limits.maxContinueChar) {
                    entry.history.push_back(current);
                    current.text.clear();
                }
                current.text += kel::keyText(record.key);
                current.timeMs = t;
            } else if (isModifier) {
                if (current.type != 0 && current.type != 4)
                    entry.history.push_back(current);
                current = {kel::modifierPrefix(modifiers).chopped(1), 4, t, 1};
            } else if (current.type == 4) {
                current.text = kel::modifierPrefix(modifiers) + kel::keyText(record.key);
                current.type = 8;
                current.timeMs = t;
            } else {
                const int type = modifiers ? 8 : kel::isCharacterKey(record.key) ? 1 : 2;
                const kel::KeyDisplayItem item{kel::modifierPrefix(modifiers) + kel::keyText(record.key), type, t, 1};
                if (current.type == 0) {
                    current = item;
                } else if (current.type != type || current.text != item.text) {
                    entry.history.push_back(current);
                    current = item;
                } else {
                    current.timeMs = t;
                    ++current.count;
                }
            }
        }
        while (int(entry.history.size()) > qMax(limits.maxHistoryCount - 1, 0))
            entry.history.erase(entry.history.begin());
        for (int k = int(entry.history.size()) - 1; k >= 0; --k) {
            if (keepMs + entry.history[size_t(k)].timeMs < t)
                entry.history.erase(entry.history.begin() + k);
        }
        if (keepMs + current.timeMs < t && current.type != 0)
            current.type = 0;
        last = entry;
        if (entry.hasContent())
            entries.push_back(entry);
    }
    return entries;
}
