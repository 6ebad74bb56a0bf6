#pragma once

#include <KelMovie/KelMultiTrackRecorder.h>

#include <array>

/// A track that `keldock record` can include or exclude.
struct OptionalTrack {
    const char *option; ///< `--option` includes it, `--no-option` excludes it
    bool KelMultiTrackRecorder::RecordConfig::*enabled;
    bool isDefault;
};

inline constexpr std::array kOptionalTracks{
    OptionalTrack{"mouse", &KelMultiTrackRecorder::RecordConfig::enableMouse, true},
    OptionalTrack{"keyboard", &KelMultiTrackRecorder::RecordConfig::enableKeyboard, false},
    OptionalTrack{"system-audio", &KelMultiTrackRecorder::RecordConfig::enableSystemAudio, false},
    OptionalTrack{"microphone", &KelMultiTrackRecorder::RecordConfig::enableMicrophone, false},
};
