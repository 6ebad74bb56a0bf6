#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QByteArray>
#include <QRect>
#include <QString>

/// The content of "TrackManager.meta", which describes a recording. A plain value; any thread.
struct KELMOVIE_EXPORT KelRecordingMetadata {
    static constexpr int kMaxFps = 1000;   ///< largest fps
    static constexpr int kDefaultFps = 25; ///< fps of a file that does not state it

    QString version = QStringLiteral("1.0"); ///< of the file format
    QRect recordArea;                        ///< logical pixels of the desktop
    int fps = kDefaultFps;                   ///< nominal logic frames a second, 1 to kMaxFps
    qint64 totalFrames = 0;                  ///< logic frames in the duration at the nominal rate
    int actualRecordedFrames = 0;            ///< logic frames counted by the recording clock
    qint64 durationMs = 0;                   ///< recorded time without pauses
    QString timestamp;                       ///< local time at which the file was written, ISO 8601
    double pixelRatio = 1.0;                 ///< logical dots per inch of the screen / 96
    double devicePixelRatio = 1.0;           ///< physical per logical pixel
    bool screenTrack = true;                 ///< whether the screen was to be recorded; likewise the next four
    bool mouseTrack = true;                  ///< pointer, buttons and wheel
    bool keyboardTrack = false;              ///< keys
    bool systemAudio = false;                ///< system audio
    bool microphoneAudio = false;            ///< microphone
    bool complete = true;                    ///< false: the recording is running, or its process died before the stop

    /// The path of the file in the directory of a recording.
    static QString filePath(const QString &recordingDir);

    QByteArray toJson() const; ///< the content of the file

    /// Reads `json`; a value that is missing, of the wrong type or out of range becomes the default above. If it is not
    /// a JSON object, logs a warning and returns false without changing `out`.
    static bool fromJson(const QByteArray &json, KelRecordingMetadata *out);

    /// fromJson() of the file in `recordingDir`. Logs a warning and returns false also if the file cannot be read.
    static bool load(const QString &recordingDir, KelRecordingMetadata *out);

    /// Replaces the file in `recordingDir` in one step: a reader, even after a crash, finds the old content or the new
    /// one, each complete. On failure the old file is kept, and `error`, unless null, says why in English.
    bool save(const QString &recordingDir, QString *error = nullptr) const;
};
