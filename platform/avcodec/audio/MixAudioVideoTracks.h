#pragma once

#include "avcodec/AudioTrack.h"

#include <QList>
#include <QString>

#include <functional>

/// Called with the completed share of a mix, 0 to 1, many times a second on the mixing thread. Returning false cancels
/// the mix within milliseconds; its error is then "Cancelled".
using MixProgress = std::function<bool(double share)>;

/// Why a mix failed.
struct MixError {
    QString text;          ///< in English, with the file and the system's reason
    bool isOutput = false; ///< the output cannot be written, for example because the disk is full
};

/// Whether the file name suffix stands for a container that MixAudioVideoTracks() can write.
bool canMixInto(const QString &path);

/// Combines a video with the sum of audio tracks in one file. The video is copied without re-encoding; the audio
/// becomes 48 kHz stereo.
///
/// Each track is scaled by its gain, and a limiter keeps the sum within full scale. The audio is as long as the video,
/// padded with silence where tracks are shorter; a video of a single frame is treated as a still image and shown as
/// long as there is audio. A track that cannot be read is skipped with a warning, as long as another one can be read.
///
/// The suffix of the output selects the container: mp4, m4v, mov, mkv with AAC, with the index at the front where the
/// container allows it; m4a, mka, aac, mp3, wav, flac, ogg, oga, opus without video.
///
/// The output appears only when it is complete; an existing file is replaced in one step. Memory use does not depend on
/// the duration. Blocks until the mix is done. False, with the reason in `error`, on failure. Any thread.
bool MixAudioVideoTracks(const QString &videoPath, const QList<AudioTrack> &tracks, const QString &outputPath,
                         const MixProgress &progress = {}, MixError *error = nullptr);
