#include "playback/tracks/KelPlaybackRules.h"

KelPlaybackRules KelPlaybackRules::recommended()
{
    KelPlaybackRules rules;
    rules.showsEveryKeyPress = true;
    rules.keysFollowRecordingTime = true;
    rules.releasesModifiersAtGaps = true;
    rules.hidesAllTypedText = true;
    rules.shownKeysOnlyInHistory = true;
    rules.showsPointerEverywhere = true;
    rules.effectsFollowRecordingTime = true;
    rules.pairsNearestRelease = true;
    rules.timeFollowsRecording = true;
    rules.trimsLongRecordings = true;
    rules.keepsPitch = true;
    return rules;
}
