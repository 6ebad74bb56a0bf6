#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class KelPlaybackCountdownTrack;
class KelPlaybackKeyboardTrack;
class KelPlaybackMouseTrack;
class KelPlaybackScreenTrack;
class KelPlaybackTrack;
class KelPlaybackTrackManager;
class KelPlaybackVoiceTrack;
class QPainter;
struct KelPlaybackSeams;
struct KelRecordingMetadata;

namespace kel
{

/// The tracks of one loaded recording: creates them, brings them to a frame and paints them over each other.
class PlaybackTracks
{
public:
    /// Creates what `metadata` says was recorded in `recordDir`; what cannot be created is logged and left out. Nothing
    /// asks the manager yet, who is being constructed.
    PlaybackTracks(const QString &recordDir, const KelRecordingMetadata &metadata, bool preferHardwareDecode,
                   const KelPlaybackSeams &seams, KelPlaybackTrackManager *manager);
    ~PlaybackTracks();

    /// Why there is no screen track; empty when there is one.
    QString errorString() const { return m_errorString; }
    /// Logic frames of the recording, at least 1.
    int totalFrames() const { return m_totalFrames; }
    /// Of the whole picture, in logical pixels; may be empty.
    QSize pictureSize() const { return m_pictureSize; }
    /// Of the recorded tracks that work, in painting order.
    QStringList names() const;

    // Null where there is none; the countdown always is.
    KelPlaybackScreenTrack *screen() const { return m_screen; }
    KelPlaybackMouseTrack *mouse() const { return m_mouse; }
    KelPlaybackVoiceTrack *voice() const { return m_voice; }
    KelPlaybackCountdownTrack *countdown() const { return m_countdown; }
    KelPlaybackKeyboardTrack *keyboard() const { return m_keyboard; }

    void applySettings();
    /// All but the sound, which follows the clock.
    void moveTo(int frame);
    void resetEffects();
    void paint(QPainter *painter);

    /// Grows whenever paint() may draw something else than before.
    quint64 revision() const { return m_revision; }
    /// A track was changed from outside.
    void noteChange() { ++m_revision; }

private:
    template <typename Track>
    Track *add(std::unique_ptr<Track> track);
    void createScreen(const KelRecordingMetadata &metadata, bool preferHardwareDecode, const KelPlaybackSeams &seams);
    void createMouse();
    void createVoice(const KelRecordingMetadata &metadata, const KelPlaybackSeams &seams);
    void createCountdown(const KelRecordingMetadata &metadata);
    void createKeyboard();
    void decideFrameCount(bool isScreenRecorded);

    KelPlaybackTrackManager *const m_manager;
    const QString m_recordDir;
    const double m_pixelRatio;
    std::vector<std::unique_ptr<KelPlaybackTrack>> m_tracks; // in painting order
    KelPlaybackScreenTrack *m_screen = nullptr;              // the one in m_tracks, as are the others
    KelPlaybackMouseTrack *m_mouse = nullptr;
    KelPlaybackVoiceTrack *m_voice = nullptr;
    KelPlaybackCountdownTrack *m_countdown = nullptr;
    KelPlaybackKeyboardTrack *m_keyboard = nullptr;
    QString m_errorString;
    QSize m_pictureSize;
    int m_totalFrames = 1;
    quint64 m_revision = 0;
};

} // namespace kel
