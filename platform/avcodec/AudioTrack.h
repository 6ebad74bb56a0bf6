#pragma once

#include <QSharedPointer>
#include <QString>

class QIODevice;

/// One audio source of a mix: a file, the range of it that is used, and where that range goes in the output.
struct AudioTrack {
    QString path;          ///< the audio file
    double offsetMs = 0.0; ///< where the range starts in the output, in ms; negative: cuts as much off its start
    double startMs = -1.0; ///< start of the range in ms of recording time; negative: start of the file
    double endMs = -1.0;   ///< end of the range in ms of recording time; negative: end of the file
    double speed = 1.0;    ///< above 0: how fast the file plays the recording; recording time t is at t / speed in it
    double gain = 1.0;     ///< linear amplitude factor, 0 or more
    /// An open WAV file that is read instead of `path`, which then only names it in messages. Used by nobody else
    /// during the mix.
    QSharedPointer<QIODevice> device = {};
};
