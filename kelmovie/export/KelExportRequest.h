#pragma once

#include <QSize>
#include <QString>

#include <functional>

class KelPlaybackTrackManager;

/// What to export, and how. A plain record, copied.
struct KelExportRequest {
    int format = 0;       ///< 0 MP4, 1 GIF, 2 APNG, 3 WebP, as the setting playbackEncodeFormat has it
    int fps = 25;         ///< frames a second of the output
    int quality = 90;     ///< 0 to 100, see KelMovieExportQuality(); each encoder documents what it makes of it
    double speed = 1.0;   ///< above 0; 2.0 plays twice as fast
    QString outputPath;   ///< the file to produce
    QString trackDataDir; ///< recording directory in which the sound is looked for; may be empty
    KelPlaybackTrackManager *playbackManager = nullptr; ///< not owned; must outlive the export
    int trimStartMs = -1;                               ///< range in recording time, used when both ends are 0 or more
    int trimEndMs = -1;
    /// Whether the range is found in recordings of any length. Without it, it is found as it always was: in 32 bits,
    /// which is another part of a recording once ms times frames exceeds them (4 minutes at 30 frames a second).
    bool trimsLongRecordings = false;
    bool fromRecording = false;             ///< started right after a recording
    bool autoExitAfterEncode = false;       ///< the setting encodeExitRecordAfterEncode
    std::function<void(bool)> onExitRecord; ///< told when the user changes that setting; may be empty
    int loops = 0;                          ///< how often GIF, APNG and WebP play, up to 65535; 0: endlessly
    QSize size;                             ///< pixels of the output; empty: the recorded area in logical pixels
};
