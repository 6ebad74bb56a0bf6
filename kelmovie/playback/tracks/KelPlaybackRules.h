#pragma once

#include <KelMovie/KelMovieGlobal.h>

/// How a recording is shown where there is a choice between the module's traditional rules, which are the defaults, and
/// rules that viewers find better. A host passes them when it loads a recording. A plain value; any thread.
struct KELMOVIE_EXPORT KelPlaybackRules {
    // Keys

    /// Shows every key press: presses in one logic frame follow each other in the next frames, a combination as a
    /// whole. Long text that a program typed at once catches up by several characters per frame. By default one key
    /// record per logic frame is handled.
    bool showsEveryKeyPress = false;
    /// Keys stay for the set time of the recording. By default times of keys assume 30 logic frames per second.
    bool keysFollowRecordingTime = false;
    /// A gap in the recording of keys releases the modifiers held before it: keys were switched off, the recording was
    /// paused, or the release of a key was not heard, as when the screen is locked. By default modifiers stay down
    /// until their release was recorded.
    bool releasesModifiersAtGaps = false;
    /// Whatever types a character without Ctrl, Alt or Win is a character key, in any keyboard layout and also with
    /// Shift or AltGr, so that hiding character keys hides all typed text. By default only A to Z and 0 to 9 are.
    bool hidesAllTypedText = false;
    /// Only keys that are shown take room in the history. By default hidden keys displace shown ones.
    bool shownKeysOnlyInHistory = false;

    // Pointer and clicks

    /// Shows pointer and effects everywhere. By default only up to x = 2000 and y = 1500.
    bool showsPointerEverywhere = false;
    /// Effects run in recording time, so that a frame looks the same however it is reached: played, sought, stepped or
    /// exported, at any speed and rate. By default they count painted frames.
    bool effectsFollowRecordingTime = false;
    /// A press ends at the nearest release of its button. By default at the first one in a later frame.
    bool pairsNearestRelease = false;

    // Time and sound

    /// The time display shows recording time, and in a trim range the time within it, before its export, too. By
    /// default it assumes the nominal frame rate.
    bool timeFollowsRecording = false;
    /// Computes the frames of a trim range in 64 bits. By default the product of ms and frames wraps at 32 bits, which
    /// selects another range in long recordings (from 4 minutes on at 30 frames per second). Recordings that contain
    /// the times of their frames are not affected.
    bool trimsLongRecordings = false;
    /// The sound keeps its pitch at other speeds than 1, unless the module was built without SoundTouch. By default a
    /// faster sound is higher.
    bool keepsPitch = false;

    /// All rules that viewers find better.
    static KelPlaybackRules recommended();
};
