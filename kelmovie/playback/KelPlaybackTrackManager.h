#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QObject>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>

class KelPlaybackVoiceTrack;
class QPainter;
struct KelPlaybackSeams;
struct KelRecordingMetadata;

/// One loaded recording: it creates the tracks that were recorded, keeps the current frame, turns wall-clock time into
/// frames while playing, and composes one picture from the layers of all tracks.
///
/// Every track is addressed in logic frames, the recording's own frame counter at fps(). GUI thread only.
class KELMOVIE_EXPORT KelPlaybackTrackManager : public QObject
{
    Q_OBJECT

public:
    enum State { Playing = 0, Paused = 1, Stopped = 2 };
    Q_ENUM(State)

    /// Loads the recording in `recordDir` at once. What cannot be loaded is logged and left out; isValidRecording()
    /// tells whether anything is left to be seen. Needs a QGuiApplication.
    KelPlaybackTrackManager(const QString &recordDir, bool preferHardwareDecode, QObject *parent = nullptr);
    /// The same with another clock or other decoders.
    KelPlaybackTrackManager(const QString &recordDir, bool preferHardwareDecode, const KelPlaybackSeams &seams,
                            QObject *parent);
    ~KelPlaybackTrackManager() override;

    /// There is a screen video that can be shown. When false, the recording counts as one frame that paints nothing.
    bool isValidRecording() const;
    /// Why isValidRecording() is false, as one English line; empty when it is true.
    QString errorString() const;

    QString recordDir() const;
    /// The metadata as it was read, or its defaults where it could not be read.
    const KelRecordingMetadata &metadata() const;

    State state() const;
    int currentFrame() const;
    /// Logic frames of the recording, at least 1. Valid frames are 0 to totalFrames() - 1.
    int totalFrames() const;
    /// Logic frames a second, at least 1.
    int fps() const;
    /// Recorded time without pauses in ms; 0 when the metadata does not tell.
    qint64 durationMs() const;
    /// Playback speed, a factor; 1.0 is the recorded speed.
    double speed() const;
    /// Wall-clock ms that the last play-through to the end took; 0 before the first.
    qint64 lastPlayDurationMs() const;
    /// The recorded rectangle in logical pixels of the desktop, as the metadata has it; may be empty.
    QRect recordArea() const;
    /// Physical pixels of the video per logical pixel of the record area.
    double devicePixelRatio() const;
    /// Size of a composed picture in logical pixels: the record area's, or the video's where the metadata has none.
    /// Empty when there is no video either.
    QSize pictureSize() const;
    /// Frames in the screen video; it has fewer than the recording has logic frames where the screen stood still.
    int videoFrameCount() const;
    /// Names of the recorded tracks that were loaded, in painting order.
    QStringList trackNames() const;
    /// The sound; null when none was recorded. Owned by the manager.
    KelPlaybackVoiceTrack *voiceTrack() const;

    /// Starts, or resumes after a pause, at the current frame. Does nothing while playing.
    void play();
    /// Does nothing unless playing.
    void pause();
    /// Ends playing or pausing and goes back to frame 0. Does nothing when stopped.
    void stop();
    /// Bounded to 0.1 … 16; a factor that is not a number is ignored.
    void setSpeed(double speed);

    /// Moves all tracks. A frame outside of the recording is ignored.
    void seek(int frame);
    /// With `force` the clock and the sound are set anew even for a small step.
    void seek(int frame, bool force);
    /// Moves all tracks but the sound and emits nothing: for export.
    void setFrameSilently(int frame);
    /// setFrameSilently(), with the mouse effects under way that began before `frame`, as if it had been played up to
    /// there.
    void setFrameAsPlayed(int frame);
    /// Begins to decode what `frame` shows in the background: once waitForPrefetch() is true, a setFrameSilently() to
    /// it takes next to no time.
    void prefetch(int frame);
    /// Whether nothing is being decoded in the background, once at most `limit` has passed.
    bool waitForPrefetch(std::chrono::milliseconds limit) const;
    /// Paints the current frame, pictureSize() large, at the painter's origin. A null painter does nothing.
    void paint(QPainter *painter);
    /// Grows whenever paint() may draw something else than before. As long as it does not, paint() draws exactly the
    /// same, however many frames have passed.
    quint64 pictureRevision() const;
    /// Whether the video fills the picture; where it does not, paint() leaves what was there.
    bool isPictureCovered() const;
    /// Seeks so far whose video frame could not be decoded; the picture before stayed.
    int lostPictures() const;

    /// Set by an export around its work; a cancelled export leaves it set.
    void setExporting(bool on);
    bool isExporting() const;
    /// From now on the time over the picture is that of an export at `speed`: the time within logic frames `first` to
    /// `last`, or that of the whole recording when `first` is -1. No mouse effect is under way.
    void beginExport(double speed, int first, int last);
    /// As before again, at `frame`. That takes no time when it is the frame at which the export began.
    void endExport(int frame);

public slots:
    /// Hands the settings in gKelMovieConfig to the tracks, as loading and play() do, and has the picture painted
    /// again. To be connected to the sigConfigUpdated of settings panels.
    void updateSettings();

signals:
    /// Paint again. While playing, emitted when a frame is due and once more when the tracks have moved to it (at high
    /// speed they leave some out).
    void sigFrameChanged(int frame);
    /// Playback reached the end or was stopped.
    void sigPlaybackStopped();
    void sigPlaybackStarted();
    void sigPlaybackPaused();
    void sigPlaybackSpeedChanged(double speed);
    /// The sound cannot be heard, for want of a device; the picture goes on. Once, until there has been a device again.
    void sigSoundDeviceFailed();

private:
    class Private;
    std::unique_ptr<Private> d;
};
