#pragma once

#include <QSize>
#include <QString>

#include <functional>

class KelPlaybackTrackManager;

/// What to export, and how. A plain record, copied by the classes that take it.
struct KelExportRequest {
    /// Output formats.
    enum Format { Mp4 = 0, Gif = 1, Apng = 2, WebP = 3 };

    int format = Mp4;     ///< a Format, as in the setting playbackEncodeFormat
    int fps = 25;         ///< frames per second of the output, at least 1
    int quality = 90;     ///< 0 (smallest file) to 100 (best), see KelMovieExportQuality()
    double speed = 1.0;   ///< playback speed as a factor above 0; 2.0 plays twice as fast
    QString outputPath;   ///< the file to produce; its directory must exist
    QString trackDataDir; ///< recording directory that contains the sound; if empty, that of the playback manager
    KelPlaybackTrackManager *playbackManager = nullptr; ///< the recording; not owned, must outlive the export
    int trimStartMs = -1;                               ///< start of the exported range in ms of recording time
    int trimEndMs = -1;               ///< end of the range in ms; it is used if both values are 0 or more
    bool fromRecording = false;       ///< the export follows a recording: the dialog then offers "Exit Record"
    bool autoExitAfterEncode = false; ///< the setting encodeExitRecordAfterEncode
    /// Called on the GUI thread when the user changes that setting in the dialog; may be empty.
    std::function<void(bool)> onExitRecord;

    // Fields that were added later:

    int loops = 0; ///< how many times GIF, APNG and WebP play, up to 65535; 0: endlessly
    QSize size;    ///< of the output in pixels; empty: the frame size of the playback manager
};
