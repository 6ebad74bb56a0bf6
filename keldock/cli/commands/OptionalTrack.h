#pragma once

#include <KelMovie/KelMultiTrackRecorder.h>

#include <array>

/// A track besides the screen that `record` can be asked for or told to leave out.
struct OptionalTrack {
    const char *option; ///< `--option` asks for it, `--no-option` leaves it out
    bool KelMultiTrackRecorder::RecordConfig::*enabled;
    bool isDefault;
};

inline constexpr std::array OptionalTracks{
    OptionalTrack{"mouse", &KelMultiTrackRecorder::RecordConfig::enableMouse, true},
    OptionalTrack{"keyboard", &KelMultiTrackRecorder::RecordConfig::enableKeyboard, false},
    OptionalTrack{"system-audio", &KelMultiTrackRecorder::RecordConfig::enableSystemAudio, false},
    OptionalTrack{"microphone", &KelMultiTrackRecorder::RecordConfig::enableMicrophone, false},
};
