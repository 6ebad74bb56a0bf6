#pragma once

#include "recording/input/JsonArrayFile.h"
#include "recording/input/MouseTrackEvent.h"

#include <QString>

#include <cstddef>
#include <vector>

namespace kel
{

/// Writes the pointer events of a recording as they happen: moves to "mousemoves-0.json", buttons and wheel to
/// "mouseclicks-0.json". A change of shape is written to neither; the next move carries the new shape. One thread at a
/// time.
class MouseEventWriter
{
public:
    explicit MouseEventWriter(const QString &trackDir);

    /// The first event that update() has to be given.
    std::size_t firstNeeded() const;

    /// Appends the events from number `first` on that a file does not have yet. False when a file cannot be written;
    /// the other one is written all the same, and a later call tries again.
    bool update(std::size_t first, const std::vector<MouseTrackEvent> &events);

    /// A later update() writes both files anew.
    void close();

    /// The first file that could not be written and why, in English, after an update() that returned false.
    QString failedPath() const { return m_failedPath; }
    QString errorString() const { return m_error; }

private:
    struct EventFile {
        bool (*holds)(const MouseTrackEvent &);
        JsonArrayFile file;
        std::size_t written = 0; ///< events that the file has or that do not belong to it
    };

    EventFile m_moves;
    EventFile m_clicks;
    QString m_failedPath;
    QString m_error;
};

} // namespace kel
