#pragma once

#include <QString>

/// A sound file of a mix, and the part of it that is heard.
struct AudioTrack {
    QString path;
    double offsetMs = 0.0; ///< later, in output time, than the picture begins; below 0: the sound has already begun
    double startMs = -1.0; ///< range in recording time; below 0: from the beginning
    double endMs = -1.0;   ///< below 0: to the end
    double speed = 1.0;    ///< above 0; the file plays the recording so many times as fast: moment t is at t / speed
    double gain = 1.0;     ///< factor of its level, 0 or more
};
