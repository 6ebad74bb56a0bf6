#pragma once

#include <KelMovie/KelMovieGlobal.h>
#include <KelMovie/KelPlaybackRules.h>

#include <QObject>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

#include <memory>

class QPainter;
struct KelPlaybackDependencies;
struct KelRecordingMetadata;

namespace kel
{
class PlaybackInternals;
}

/// One loaded recording: creates the tracks that were recorded, keeps the current frame, converts wall-clock time into
/// frames while playing, and composes frames from the layers of all tracks.
///
/// Every track is addressed in logic frames, the recording's own frame counter at fps(). GUI thread only. Functions
/// report problems through errorString() and the log and throw nothing.
class KELMOVIE_EXPORT KelPlaybackTrackManager : public QObject
{
    Q_OBJECT

public:
    /// The states of playback.
    enum State { Playing = 0, Paused = 1, Stopped = 2 };
    Q_ENUM(State)

    /// Loads the recording in `recordDir`, synchronously. Tracks that cannot be loaded are logged and left out;
    /// isValidRecording() reports whether anything can be shown. `preferHardwareDecode` asks for a hardware H.264
    /// decoder, with a fallback to software. Needs a QGuiApplication.
    KelPlaybackTrackManager(const QString &recordDir, bool preferHardwareDecode, QObject *parent = nullptr);
    /// The same with other rules than the default ones.
    KelPlaybackTrackManager(const QString &recordDir, bool preferHardwareDecode, const KelPlaybackRules &rules,
                            QObject *parent = nullptr);
    ~KelPlaybackTrackManager() override;

    /// Whether there is a screen video that can be shown. If not, the recording counts as one frame that paints
    /// nothing.
    bool isValidRecording() const;
    /// Why isValidRecording() is false, as one English line; empty when it is true.
    QString errorString() const;

    /// The directory that was passed to the constructor.
    QString recordDir() const;
    /// The metadata as read, with defaults for what could not be read. Valid as long as the manager.
    const KelRecordingMetadata &metadata() const;

    /// The rules that were passed to the constructor.
    const KelPlaybackRules &rules() const;

    State state() const; ///< the playback state
    /// 0 to totalFrames() - 1.
    int currentFrame() const;
    /// Number of logic frames of the recording, at least 1.
    int totalFrames() const;
    /// Logic frames per second, at least 1.
    int fps() const;
    /// Recorded time without pauses in ms; 0 when the metadata does not contain it. If the recording was interrupted,
    /// the time up to what was recorded last.
    qint64 durationMs() const;
    /// Like durationMs(), but derived from the number of frames when the metadata does not contain it; above 0. A
    /// slider for the position ends here.
    qint64 lengthMs() const;
    /// The frame that was on the screen at `ms` of the recording, clamped to the recording. The range of a
    /// KelExportRequest selects frames the same way.
    int frameAtMs(qint64 ms) const;
    /// The first ms at which frameAtMs() returns `frame`, which is clamped to the recording.
    qint64 msOfFrame(int frame) const;
    /// How many frames `ms` of the recording have on average.
    int framesIn(qint64 ms) const;
    /// Playback speed as a factor; 1.0 is the recorded speed.
    double speed() const;
    /// Wall-clock ms of the last playback up to the end; 0 before the first.
    qint64 lastPlayDurationMs() const;
    /// The recorded rectangle in logical pixels of the desktop, from the metadata; may be empty.
    QRect recordArea() const;
    /// Physical pixels of the video per logical pixel of the record area.
    double devicePixelRatio() const;
    /// Size of a composed frame in logical pixels: the record area's, or the video's if the metadata has none. Empty
    /// when there is no video either.
    QSize frameSize() const;
    /// Number of frames in the screen video. Frames are only encoded when the screen changes, so that there are often
    /// fewer than logic frames. 0 without a video.
    int videoFrameCount() const;
    /// Names of the recorded tracks that were loaded, in painting order.
    QStringList trackNames() const;
    /// Whether the recording has a track for sound.
    bool hasSound() const;
    /// Why recorded sound cannot be played, a line in English for each reason; empty when all of it can.
    QStringList soundProblems() const;

    /// Starts at the current frame, or resumes. Does nothing while playing.
    void play();
    /// Does nothing unless playing.
    void pause();
    /// Ends playback and returns to frame 0. Does nothing when stopped.
    void stop();
    /// Sets the playback speed, clamped to 0.1–16. A value that is not finite is ignored.
    void setSpeed(double speed);

    /// Moves all tracks to logic frame `frame`. A frame outside of the recording is ignored.
    void seek(int frame);
    /// With `force`, clock and sound are set to `frame` even for a step so small that they could continue.
    void seek(int frame, bool force);
    /// Has the time display show the position within a trim range in ms, as an export of that range will; below 0:
    /// within the whole recording. Only with the rule timeFollowsRecording.
    void setTrimRange(qint64 startMs, qint64 endMs);
    /// Moves all tracks but the sound to `frame` and starts the mouse effects that would still be running there if the
    /// recording had been played up to it. Emits nothing. A frame outside of the recording is ignored.
    void setFrameAsPlayed(int frame);

    /// Paints the current frame, frameSize() large, at the painter's origin. A null painter does nothing.
    void paint(QPainter *painter);
    /// Increases whenever paint() may draw something else than before. Equal values mean identical output of paint().
    quint64 frameRevision() const;
    /// Whether the video covers the whole frame. If not, paint() leaves some pixels untouched.
    bool isFrameCovered() const;

public slots:
    /// Applies the settings in gKelMovieConfig to the tracks, as loading and play() do, and emits sigFrameChanged().
    /// Connect it to sigConfigUpdated of the settings panels.
    void updateSettings();

signals:
    /// Paint again. While playing, emitted when a frame is due and again after the tracks have moved to it; at high
    /// speed the tracks skip some frames.
    void sigFrameChanged(int frame);
    /// Playback reached the end or was stopped.
    void sigPlaybackStopped();
    void sigPlaybackStarted();                  ///< playback started or resumed
    void sigPlaybackPaused();                   ///< playback paused
    void sigPlaybackSpeedChanged(double speed); ///< speed() changed
    /// The sound cannot be played because there is no device; the video continues. Emitted once until a device has
    /// been available again.
    void sigSoundDeviceFailed();

private:
    friend class kel::PlaybackInternals;

    KelPlaybackTrackManager(const QString &recordDir, bool preferHardwareDecode, const KelPlaybackRules &rules,
                            const KelPlaybackDependencies &dependencies, QObject *parent);

    class Private;
    std::unique_ptr<Private> d;
};
