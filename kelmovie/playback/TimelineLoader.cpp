#include "playback/TimelineLoader.h"

#include "logging/Log.h"
#include "recording/FrameTimesReader.h"
#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingMetadata.h"
#include "recording/wav/RecordedSound.h"

#include <QDebug>

#include <algorithm>
#include <limits>
#include <vector>

namespace kel
{

namespace
{

qint64 soundMs(const QString &recordingDir)
{
    const QString voiceDir = KelRecordingFiles::path(recordingDir, KelRecordingFiles::kVoiceDir);
    qint64 longest = 0;
    for (const QLatin1String source : {KelRecordingFiles::kSystemAudio, KelRecordingFiles::kMicrophone})
        longest = std::max(longest, RecordedSound(RecordedSound::files(voiceDir, source)).durationMs());
    return longest;
}

} // namespace

RecordingTimeline loadTimeline(const QString &recordingDir, const KelRecordingMetadata &metadata, int totalFrames,
                               bool isIndexed)
{
    const int frameMs = RecordingTimeline::tickMs(metadata.fps);
    qint64 durationMs = metadata.durationMs;
    std::vector<int> times;
    if (isIndexed)
        times = readFrameTimes(KelRecordingFiles::path(recordingDir, KelRecordingFiles::kScreenDir));
    if (!metadata.complete) {
        // Either file may have been written last.
        while (!times.empty() && times.size() < std::size_t(totalFrames))
            times.push_back(std::min(times.back(), std::numeric_limits<int>::max() - frameMs) + frameMs);
        const qint64 framesMs = times.empty() ? qint64(totalFrames) * frameMs : qint64(times.back()) + frameMs;
        durationMs = std::max({durationMs, framesMs, soundMs(recordingDir)});
    } else if (!times.empty() &&
               (times.size() < std::size_t(totalFrames) || (durationMs >= 1 && times.back() > durationMs))) {
        qCWarning(logPlayback) << "The frame times do not belong to the recording in" << recordingDir;
        times.clear();
    }
    if (!times.empty())
        times.resize(std::size_t(totalFrames));
    return times.empty() ? RecordingTimeline(totalFrames, metadata.fps, durationMs)
                         : RecordingTimeline(times, metadata.fps, durationMs);
}

} // namespace kel
