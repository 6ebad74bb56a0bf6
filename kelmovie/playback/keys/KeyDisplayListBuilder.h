#pragma once

#include "playback/keys/KeyDisplayList.h"
#include "recording/input/KeyLogReader.h"

#include <QHash>

namespace kel
{

/// Converts recorded keys into the list of what is displayed at every logic frame.
///
/// At most one record per frame is displayed; of the others, only the modifiers are tracked.
class KeyDisplayListBuilder
{
public:
    struct Limits {
        int keepTimeSeconds = 3;
        int maxHistoryCount = 5;  ///< displayed boxes, including the current one
        int maxContinueChar = 20; ///< characters in one box of continuous text

        bool operator==(const Limits &other) const
        {
            return keepTimeSeconds == other.keepTimeSeconds && maxHistoryCount == other.maxHistoryCount &&
                   maxContinueChar == other.maxContinueChar;
        }
    };

    static KeyDisplayList build(const KeyLog &recording, int totalFrames, const Limits &limits);

private:
    KeyDisplayListBuilder(const KeyLog &recording, const Limits &limits);

    void run(int totalFrames);
    void catchUp(int frame);
    void applyModifier();
    bool hasRecord() const { return m_next < m_records.size(); }
    bool hasRecordAt(int frame) const { return hasRecord() && m_records[m_next].frame == frame; }

    void append(const KeyDisplayEntry &entry);
    KeyDisplayEntry startEntry(int frame) const;
    void handleRecord(KeyDisplayEntry &entry);
    void handleRelease(const KeyRecord &record, KeyDisplayEntry &entry);
    void handlePress(const KeyRecord &record, KeyDisplayEntry &entry);
    void moveToHistory(KeyDisplayEntry &entry);
    void trim(KeyDisplayEntry &entry) const;
    bool isExpired(const KeyDisplayItem &item) const { return m_keepMs + item.timeMs < m_nowMs; }
    int firstFrameOfChange(const KeyDisplayEntry &entry) const;
    const QString &textOf(int key);

    const std::vector<KeyRecord> m_records;
    const qint64 m_fps;
    const qint64 m_keepMs;
    const int m_maxPast;
    const int m_maxContinueChar;
    KeyDisplayList m_list;
    KeyDisplayEntry m_last; // of the last visited frame, even if it displays nothing
    QHash<int, QString> m_texts;
    size_t m_next = 0; // index of the next record
    quint32 m_modifiers = 0;
    bool m_captureOn = true;
    qint64 m_nowMs = 0;
};

} // namespace kel
