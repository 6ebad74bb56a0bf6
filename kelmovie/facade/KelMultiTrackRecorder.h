#pragma once

#include <KelMovie/KelMovieGlobal.h>
#include <KelMovie/KelPlaybackRules.h>

#include <QKeySequence>
#include <QObject>
#include <QRect>
#include <QString>
#include <QVector>

#include <memory>

class KelPlaybackTrackManager;

/// Records a rectangle of the screen as separate tracks into one directory, and loads such a directory for playback and
/// export. GUI thread only, which also emits all signals; needs a running event loop, whose timer is the recording's
/// clock.
///
/// On some systems a person must allow each recording: prepareRecording() asks, and startRecording() follows the
/// answer. Hosts that always do both work everywhere.
///
///     idle --startRecording--> recording --pauseRecording--> paused --startRecording--> recording
///     recording or paused --stopRecording--> idle
///
/// Loading and exporting are independent of these states.
class KELMOVIE_EXPORT KelMultiTrackRecorder : public QObject
{
    Q_OBJECT

public:
    /// What the next recording records, and where.
    struct RecordConfig {
        QString outputDir = QStringLiteral("./KelRecordData"); ///< recording directory, created if missing
        int fps = 25;                                          ///< logic frames per second, 1 to 1000
        bool enableScreen = true;                              ///< record the screen
        bool enableMouse = true;                               ///< record pointer, buttons and wheel
        bool mouseCaptureEnabled = true; ///< whether the mouse track records buttons and wheel from the start
        bool enableKeyboard = false;     ///< record keys, everything typed included
        bool enableSystemAudio = false;  ///< record the sound that the computer plays
        bool enableMicrophone = false;   ///< record the microphone
        /// Resuming keeps the keys from before the pause. By default it discards them.
        bool keepsKeysAcrossPauses = false;
        /// The host's shortcuts for pause and stop, one combination each: the recording does not contain the one that
        /// pauses or stops it.
        QVector<QKeySequence> controlShortcuts;
    };

    explicit KelMultiTrackRecorder(QObject *parent = nullptr);
    /// Stops a running recording as stopRecording() does, but without signals. Deletes playbackManager().
    ~KelMultiTrackRecorder() override;

    /// The rectangle to record, in logical pixels of the desktop; initially empty. Takes effect at the next start,
    /// which extends odd sides by one pixel.
    void setRecordArea(const QRect &area);
    QRect recordArea() const; ///< the area set last

    /// Takes effect at the next start.
    void setRecordConfig(const RecordConfig &config);
    RecordConfig recordConfig() const; ///< the configuration set last

    /// Asks the system for everything that the next recording, as configured, needs, as long as a person takes to
    /// answer. Ends with recordingPrepared(), recordingDeclined() or recordingError(), before it returns where nobody
    /// is asked. What was obtained is kept for the next startRecording(). Ignored while recording.
    void prepareRecording();
    /// Withdraws the request of prepareRecording() without a signal, or gives up what was obtained.
    void cancelPreparation();

    bool isRecording() const; ///< also while paused
    bool isPaused() const;    ///< a recording is paused

    /// Starts a recording, or resumes a paused one. Fails without prepareRecording() where the system asks. False while
    /// recording, and on failure, which is reported by recordingError() and leaves no files behind.
    ///
    /// An earlier recording in the output directory is never overwritten: it is first moved, complete and loadable,
    /// into the subdirectory "Previous-1" (or -2, -3, …).
    bool startRecording();

    /// Does nothing unless a recording is running.
    void pauseRecording();

    /// Completes the recording's files, and waits some seconds at most until they are complete. Failures are signaled
    /// before recordingStopped(). Does nothing while idle.
    void stopRecording();

    /// Switches the recording of mouse buttons and wheel; the pointer is always recorded. Ignored, with a warning in
    /// the log, while idle and in a recording without mouse.
    void setMouseRecordingEnabled(bool enabled);

    /// Switches the recording of keys. Keys typed while it is off do not reach this process. Resuming after a pause
    /// discards the keys recorded before it. Recording of keys that is off stays off across a pause. Ignored, with a
    /// warning in the log, while idle and in a recording without keys.
    void setKeyboardRecordingEnabled(bool enabled);

    /// Loads the recording in `dir` and deletes the one loaded before. Missing tracks are left out:
    /// playbackManager()->isValidRecording() returns whether anything can be played. False on
    /// failure, after recordingError().
    bool loadRecording(const QString &dir);
    /// The same with other rules than the default ones.
    bool loadRecording(const QString &dir, const KelPlaybackRules &rules);

    /// The loaded recording, null before loadRecording(). Owned by the recorder and valid until the next load.
    KelPlaybackTrackManager *playbackManager() const;

    /// Exports the loaded recording at its playback speed with 25 frames per second. Formats: 0 MP4, 1 GIF, 2 APNG,
    /// 3 WebP. Shows a modal dialog if the program has a QApplication. Returns when the file is complete: true on
    /// success, false on failure, after recordingError(), and when the user cancels. The quality is
    /// KelMovieExportQuality().
    bool exportToVideo(const QString &path, int format);

    /// exportToVideo() as GIF. The second argument is ignored.
    bool exportToGif(const QString &path, int);

    /// Exports the range from `trimStart` to `trimEnd`, in ms of recording time, with `fps` frames per second and the
    /// quality KelMovieExportQuality(100); otherwise like exportToVideo(). Exports the whole recording unless both ends
    /// are 0 or more. The fifth argument is ignored.
    bool exportToVideoWithTrim(const QString &path, int format, int trimStart, int trimEnd, int, int fps);

    /// The text of the last recordingError(); empty before the first.
    QString lastError() const;

signals:
    void recordingPrepared();                      ///< prepareRecording() has obtained everything
    void recordingDeclined(const QString &reason); ///< a person has not allowed it; `reason` is English
    void recordingStarted();                       ///< a recording has started
    /// The recording has ended, by stopRecording() or at its frame limit. A slot may start the next one.
    void recordingStopped();
    void recordingPaused();  ///< the recording is paused
    void recordingResumed(); ///< the recording goes on after a pause

    /// An operation failed, or a track of the running recording, whose other tracks continue. The text is English; that
    /// of a track begins with the track's name and a colon.
    void recordingError(const QString &error);

    /// A track of the running recording failed, for the first time; the other tracks continue. recordingError() with
    /// both texts follows immediately. Tracks: "Screen track", "Mouse track", "Keyboard track", "System audio track",
    /// "Microphone track".
    void trackFailed(const QString &track, const QString &problem);

private:
    class Private;

    std::unique_ptr<Private> d;
};
