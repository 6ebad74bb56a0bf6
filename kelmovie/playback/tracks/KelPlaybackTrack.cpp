#include "playback/tracks/KelPlaybackTrack.h"

#include "recording/RecordingTimeline.h"

namespace
{
const kel::RecordingTimeline kEmptyTimeline;
}

KelPlaybackTrack::KelPlaybackTrack(const QString &directory, KelPlaybackTrackManager *)
    : m_directory(directory)
    , m_timeline(&kEmptyTimeline)
{
}

KelPlaybackTrack::~KelPlaybackTrack() = default;

void KelPlaybackTrack::setContext(const kel::RecordingTimeline &timeline, const KelPlaybackRules &rules)
{
    m_timeline = &timeline;
    m_rules = rules;
}

bool KelPlaybackTrack::moveToFrame(int frame)
{
    seekToFrame(frame);
    return true;
}

bool KelPlaybackTrack::isVisible()
{
    return true;
}
