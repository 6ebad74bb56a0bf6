#pragma once

#include "playback/keys/KeyClock.h"
#include "playback/keys/KeyDisplayList.h"
#include "playback/keys/KeyDisplaySettings.h"
#include "playback/keys/KeyStrokes.h"
#include "recording/input/KeyLogReader.h"

#include <QHash>

namespace kel
{

/// Converts recorded keys into the list of what is displayed at every logic frame.
class KeyDisplayListBuilder
{
public:
    static KeyDisplayList build(const KeyLog &recording, int totalFrames, const KeyDisplaySettings &settings,
                                const KelPlaybackRules &rules, const RecordingTimeline &timeline);

private:
    KeyDisplayListBuilder(std::vector<KeyStroke> strokes, const KeyClock &clock, const KeyDisplaySettings &settings);

    void run(int totalFrames);
    bool hasStrokeAt(int frame) const { return m_next < m_strokes.size() && m_strokes[m_next].frame == frame; }

    void append(const KeyDisplayEntry &entry);
    KeyDisplayEntry startEntry(int frame) const;
    void handle(const KeyStroke &stroke, KeyDisplayEntry &entry);
    void handleRelease(const KeyStroke &stroke, KeyDisplayEntry &entry) const;
    void handlePress(const KeyStroke &stroke, KeyDisplayEntry &entry);
    void moveToHistory(KeyDisplayEntry &entry);
    void trim(KeyDisplayEntry &entry) const;
    bool isExpired(const KeyDisplayItem &item) const { return m_keepMs + item.timeMs < m_nowMs; }
    int firstFrameOfChange(const KeyDisplayEntry &entry, int first, int end) const;
    QString textOf(const KeyStroke &stroke);

    const std::vector<KeyStroke> m_strokes;
    const KeyClock m_clock;
    const qint64 m_keepMs;
    const int m_maxPast;
    const int m_maxContinueChar;
    KeyDisplayList m_list;
    KeyDisplayEntry m_last; // of the last visited frame, even if it displays nothing
    QHash<int, QString> m_texts;
    size_t m_next = 0;            // index of the next stroke
    bool m_isInterrupted = false; // by a press that is not displayed
    qint64 m_nowMs = 0;
};

} // namespace kel
