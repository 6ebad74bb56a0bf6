#pragma once

#include <QtGlobal>

/// Frames of a recording and milliseconds on its timeline, whose end is the last frame. It maps as an export of a
/// range does, so what is trimmed is what is exported.
class RecordingClock
{
public:
    /// `durationMs` may be 0, for a recording whose metadata is lost: its frames count as its clock ticks then.
    RecordingClock(int totalFrames, int fps, qint64 durationMs);

    int durationMs() const { return m_durationMs; }
    int lastFrame() const { return m_lastFrame; }
    /// The frame to be seen at that time.
    int frameAt(int ms) const;
    /// When the frame begins.
    int msOf(int frame) const;

private:
    int m_lastFrame;
    int m_durationMs;
};
