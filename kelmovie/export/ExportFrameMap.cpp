#include "export/ExportFrameMap.h"

#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"

#include <KelMovie/KelExportRequest.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <algorithm>
#include <cmath>

namespace kel
{

namespace
{

constexpr double kMaxOutputFrames = 1e15;

} // namespace

ExportFrameMap::ExportFrameMap(const RecordingTimeline &timeline, const Output &output)
    : m_timeline(timeline)
    , m_frameMs(1000.0 * output.speed / output.fps)
{
    if (output.trimStartMs >= 0 && output.trimEndMs >= 0)
        m_range = timeline.rangeOf(output.trimStartMs, output.trimEndMs, !output.trimsLongRecordings);
    m_exported = m_range.value_or(timeline.whole());
    const double spanMs = m_exported.endMs - m_exported.startMs;
    m_outputFrames = qint64(std::clamp(spanMs / output.speed * output.fps / 1000.0, 1.0, kMaxOutputFrames));
}

ExportFrameMap ExportFrameMap::forExport(const KelPlaybackTrackManager &manager, const KelExportRequest &request)
{
    return ExportFrameMap(
        PlaybackInternals::engine(manager).tracks().timeline(),
        {request.fps, request.speed, request.trimStartMs, request.trimEndMs, manager.rules().trimsLongRecordings});
}

int ExportFrameMap::logicFrame(qint64 i) const
{
    // Whatever the frame rate, the export begins and ends with the frames at which the range was cut.
    const int first = m_exported.firstFrame;
    const int last = std::max(m_exported.lastFrame, first);
    if (i <= 0 || i >= m_outputFrames - 1)
        return i <= 0 ? first : last;
    if (m_timeline.hasTimes())
        return std::clamp(m_timeline.frameAt(recordingMsAt(double(i) + 0.5)), first, last);
    const double position = double(i) * (last - first) / double(m_outputFrames - 1);
    return first + int(std::floor(position + 0.5));
}

} // namespace kel
