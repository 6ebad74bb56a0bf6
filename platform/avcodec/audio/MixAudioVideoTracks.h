#pragma once

#include "avcodec/AudioTrack.h"

#include <QList>
#include <QString>

#include <functional>

/// Told how much of a mix is done, 0 to 1, many times a second on the mixing thread; false gives the mix up, within
/// milliseconds.
using MixProgress = std::function<bool(double share)>;

/// Whether the file's suffix tells a container that a mix can be written to.
bool canMixInto(const QString &path);

/// Puts a video and the sum of sound tracks into one file. The video is copied as it is; the sound becomes 48 kHz
/// stereo.
///
/// Each track is amplified by its gain. Where the sum would exceed full scale, it is lowered smoothly. Sound begins and
/// ends with the picture, silence filling up what the tracks leave; a video of a single picture is a still, which is
/// shown for as long as there is sound. A track that cannot be read is left out with a warning as long as another one
/// can be read.
///
/// The output's suffix chooses the container: mp4, m4v, mov, mkv with AAC, the index in front where there is one; m4a,
/// mka, aac, mp3, wav, flac, ogg, oga, opus without the picture.
///
/// The output appears when it is whole, or not at all; an existing file is replaced in one step. Memory does not grow
/// with length. False, with the reason in English, on failure. Any thread.
bool MixAudioVideoTracks(const QString &videoPath, const QList<AudioTrack> &tracks, const QString &outputPath,
                         const MixProgress &progress = {}, QString *error = nullptr);
