#include "export/ExportFrameMap.h"

#include <KelMovie/KelExportRequest.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <algorithm>
#include <cmath>

namespace kel
{

namespace
{

constexpr double kMaxOutputFrames = 1e15;

/// The logic frame at `ms` of a recording. By default the product wraps at 32 bits for long recordings: kept for
/// compatibility, so that a range always selects the same frames.
int frameAtMs(int ms, const ExportFrameMap::Recording &recording, bool isExact)
{
    const int lastFrame = recording.totalFrames - 1;
    const qint64 exact = qint64(ms) * lastFrame;
    const qint64 product = isExact ? exact : qint32(quint32(exact));
    return int(std::clamp<qint64>(product / recording.durationMs, 0, lastFrame));
}

} // namespace

ExportFrameMap::ExportFrameMap(const Recording &recording, const Output &output)
{
    Recording known = recording;
    // Without metadata, the duration follows from the frames; the recording clock ticks at whole milliseconds.
    if (known.durationMs < 1 && known.totalFrames > 1)
        known.durationMs = qint64(known.totalFrames) * std::max(1000 / known.fps, 1);

    int endFrame = known.totalFrames - 1;
    qint64 spanMs = known.durationMs;
    if (output.trimStartMs >= 0 && output.trimEndMs >= 0 && known.durationMs >= 1) {
        m_startFrame = frameAtMs(output.trimStartMs, known, output.trimsLongRecordings);
        endFrame = frameAtMs(output.trimEndMs, known, output.trimsLongRecordings);
        spanMs = qint64(output.trimEndMs) - output.trimStartMs;
        m_isRange = true;
    }
    m_frameSpan = endFrame - m_startFrame;
    const double frames = double(spanMs) / output.speed * output.fps / 1000.0;
    m_outputFrames = qint64(std::clamp(frames, 1.0, kMaxOutputFrames));
}

ExportFrameMap ExportFrameMap::forExport(const KelPlaybackTrackManager &manager, const KelExportRequest &request)
{
    return ExportFrameMap(
        {manager.totalFrames(), manager.fps(), manager.durationMs()},
        {request.fps, request.speed, request.trimStartMs, request.trimEndMs, manager.rules().trimsLongRecordings});
}

int ExportFrameMap::logicFrame(qint64 i) const
{
    const double position = m_outputFrames > 1 ? double(i) * m_frameSpan / double(m_outputFrames - 1) : 0.0;
    const int offset = int(std::floor(position + 0.5));
    return m_startFrame + std::max(std::min(offset, m_frameSpan), 0);
}

} // namespace kel
