#include "playback/tracks/KelPlaybackTrack.h"

KelPlaybackTrack::KelPlaybackTrack(const QString &directory, KelPlaybackTrackManager *)
    : m_directory(directory)
{
}

KelPlaybackTrack::~KelPlaybackTrack() = default;

bool KelPlaybackTrack::moveToFrame(int frame)
{
    seekToFrame(frame);
    return true;
}

bool KelPlaybackTrack::isVisible()
{
    return true;
}
