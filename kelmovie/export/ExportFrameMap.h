#pragma once

#include <QtGlobal>

namespace kel
{

/// Which logic frame each output frame of an export shows: the range's frames, spread evenly over as many output frames
/// as the range lasts at the playback speed and the output frame rate.
class ExportFrameMap
{
public:
    struct Recording {
        int totalFrames = 1; ///< at least 1
        int fps = 25;        ///< logic frames a second, at least 1
        qint64 durationMs = 0;
    };
    struct Output {
        int fps = 25;       ///< at least 1
        double speed = 1.0; ///< above 0
        int trimStartMs = -1;
        int trimEndMs = -1; ///< the range counts when both ends are 0 or more
        bool trimsLongRecordings = false;
    };

    ExportFrameMap(const Recording &recording, const Output &output);

    /// At least 1; a huge number for an absurdly slow speed.
    qint64 outputFrames() const { return m_outputFrames; }
    /// The logic frame that output frame `i` shows.
    int logicFrame(qint64 i) const;
    /// Whether only a part of the recording is exported: logic frames firstFrame() to lastFrame().
    bool isRange() const { return m_isRange; }
    int firstFrame() const { return m_startFrame; }
    int lastFrame() const { return m_startFrame + m_frameSpan; }

private:
    bool m_isRange = false;
    int m_startFrame = 0;
    int m_frameSpan = 0;
    qint64 m_outputFrames = 1;
};

} // namespace kel
