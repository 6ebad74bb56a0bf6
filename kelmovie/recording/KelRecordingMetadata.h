#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QByteArray>
#include <QRect>
#include <QString>

/// What the file "TrackManager.meta" tells about a recording. A plain value; any thread.
struct KELMOVIE_EXPORT KelRecordingMetadata {
    static constexpr int MaxFps = 1000;
    static constexpr int DefaultFps = 25;

    QString version = QStringLiteral("1.0");
    QRect recordArea;             ///< logical pixels of the desktop
    int fps = DefaultFps;         ///< nominal logic frames a second, 1 to MaxFps
    qint64 totalFrames = 0;       ///< logic frames that the duration amounts to at the nominal rate
    int actualRecordedFrames = 0; ///< logic frames that the clock ticked
    qint64 durationMs = 0;        ///< recorded time without pauses
    QString timestamp;            ///< local time of writing, ISO 8601
    double pixelRatio = 1.0;
    double devicePixelRatio = 1.0; ///< physical per logical pixel
    bool screenTrack = true;
    bool mouseTrack = true;
    bool keyboardTrack = false;
    bool systemAudio = false;
    bool microphoneAudio = false;
    bool complete = true; ///< false: the recording is under way, or its process died before the stop

    static QString filePath(const QString &recordingDir);

    QByteArray toJson() const;

    /// Reads what `json` says; what is missing, of the wrong type or absurd becomes the default above. Logs a warning
    /// and returns false, `out` being untouched, when it is not a JSON object.
    static bool fromJson(const QByteArray &json, KelRecordingMetadata *out);

    /// fromJson() of the directory's file. Logs a warning and returns false also when the file cannot be read.
    static bool load(const QString &recordingDir, KelRecordingMetadata *out);

    /// Replaces the directory's file in one step: a reader, or a crash, finds the old one or the new one, whole.
    /// On failure the old one stays and `error`, unless null, says why.
    bool save(const QString &recordingDir, QString *error = nullptr) const;
};
