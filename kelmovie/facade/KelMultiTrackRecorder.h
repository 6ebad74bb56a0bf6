#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QObject>
#include <QRect>
#include <QString>

#include <memory>

class KelPlaybackTrackManager;
struct KelExportRequest;

/// Records a rectangle of the screen as separate tracks into one directory, and loads such a directory for playback and
/// export. GUI thread only; needs a running event loop, whose timer is the recording's clock.
///
///     idle --startRecording--> recording --pauseRecording--> paused --startRecording--> recording
///     recording or paused --stopRecording--> idle
///
/// Loading and exporting are independent of these states.
class KELMOVIE_EXPORT KelMultiTrackRecorder : public QObject
{
    Q_OBJECT

public:
    struct RecordConfig {
        QString outputDir = QStringLiteral("./KelRecordData"); ///< recording directory, created as needed
        int fps = 25;                                          ///< logic frames a second, 1 to 1000
        bool enableScreen = true;
        bool enableMouse = true;
        bool mouseCaptureEnabled = true; ///< whether the mouse track captures from the start
        bool enableKeyboard = false;
        bool enableSystemAudio = false;
        bool enableMicrophone = false;
    };

    explicit KelMultiTrackRecorder(QObject *parent = nullptr);
    /// Stops a running recording.
    ~KelMultiTrackRecorder() override;

    /// The rectangle to record, in logical pixels of the desktop; empty at first. Used by the next start, where odd
    /// sides are made even by one pixel.
    void setRecordArea(const QRect &area);
    QRect recordArea() const;

    /// Used by the next start.
    void setRecordConfig(const RecordConfig &config);
    RecordConfig recordConfig() const;

    bool isRecording() const; ///< also while paused
    bool isPaused() const;

    /// Starts a recording, or resumes a paused one. False while recording, and on failure (recordingError() tells),
    /// which leaves nothing behind.
    ///
    /// An earlier recording in the output directory is never overwritten: it is moved, whole and loadable, into the
    /// sub-directory "Previous-1" (or -2, -3, …) first.
    bool startRecording();

    void pauseRecording();

    /// Completes the recording's files; waits for them, but not beyond some seconds. Failures are signalled before
    /// recordingStopped().
    void stopRecording();

    /// Whether buttons and wheel of the mouse are recorded; the pointer is in any case. While recording.
    void setMouseRecordingEnabled(bool enabled);

    /// Whether keys are recorded, while recording. What is typed while they are off is known to nobody afterwards; what
    /// was typed before a pause is forgotten when the recording is resumed. Off stays off over a pause.
    void setKeyboardRecordingEnabled(bool enabled);

    /// Loads the recording in `dir` in place of the one loaded before. What the directory lacks is left out:
    /// playbackManager()->isValidRecording() tells whether there is anything to see.
    bool loadRecording(const QString &dir);

    /// The loaded recording, null before loadRecording(). Owned by the recorder, until the next load.
    KelPlaybackTrackManager *playbackManager() const;

    /// Exports the loaded recording at its playback speed with 25 frames a second. Formats: 0 MP4, 1 GIF, 2 APNG,
    /// 3 WebP. Runs in a modal dialog where the program has a QApplication. Returns when the file is complete; false on
    /// failure and when the user cancelled. The quality is 90 unless the setting saveQuality says otherwise.
    bool exportToVideo(const QString &path, int format);

    /// exportToVideo() as GIF. The second argument is ignored.
    bool exportToGif(const QString &path, int);

    /// Exports a range of the recording, in ms of recording time, with quality 100, unless saveQuality asks for small
    /// files, and `fps` frames a second. The whole recording unless both ends are 0 or more. The fifth argument is
    /// ignored.
    bool exportToVideoWithTrim(const QString &path, int format, int trimStart, int trimEnd, int, int fps);

    /// The text of the last recordingError().
    QString lastError() const;

signals:
    void recordingStarted();
    void recordingStopped();
    void recordingPaused();
    void recordingResumed();

    /// An operation failed, or a track of the running recording did; the other tracks go on then. English; a track's
    /// failure begins with its name and a colon.
    void recordingError(const QString &error);

    /// A track of the running recording failed, for the first time; the other tracks go on. recordingError() with both
    /// texts follows at once. Tracks: "Screen track", "Mouse track", "Keyboard track", "System audio track",
    /// "Microphone track".
    void trackFailed(const QString &track, const QString &problem);

private:
    class Private;

    bool runExport(KelExportRequest request, const QString &failure);
    void reportError(const QString &error);
    void reportTrackFailures();
    void stopAtFrameLimit();

    std::unique_ptr<Private> d;
};
