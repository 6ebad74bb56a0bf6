#pragma once

#include "recording/RecordingTimeline.h"

#include <QString>

struct KelRecordingMetadata;

namespace kel
{

/// The timeline of the recording in `recordingDir`, which has `totalFrames` frames. `isIndexed`: they are those of the
/// frame index; otherwise those of the video, whose times are not known. The duration of an interrupted recording is
/// the longest of what metadata, frames and sound say, because each of them may end before the others.
RecordingTimeline loadTimeline(const QString &recordingDir, const KelRecordingMetadata &metadata, int totalFrames,
                               bool isIndexed);

} // namespace kel
