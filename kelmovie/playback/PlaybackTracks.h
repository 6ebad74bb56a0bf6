#pragma once

#include "recording/RecordingTimeline.h"

#include <KelMovie/KelPlaybackRules.h>

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
struct KelPlaybackDependencies;
struct KelRecordingMetadata;

namespace kel
{

/// The tracks of one loaded recording: creates them, moves them to a frame and paints them in order.
class PlaybackTracks
{
public:
    /// Creates the tracks that `metadata` lists for `recordDir`; those that cannot be created are logged and left out.
    /// `manager` is only passed on: it may still be under construction.
    PlaybackTracks(const QString &recordDir, const KelRecordingMetadata &metadata, bool preferHardwareDecode,
                   const KelPlaybackRules &rules, const KelPlaybackDependencies &dependencies,
                   KelPlaybackTrackManager *manager);
    ~PlaybackTracks();

    /// Why the recording cannot be shown, as one English line; empty when it can.
    QString errorString() const { return m_errorString; }
    /// Why recorded sound cannot be played, a line in English for each reason.
    QStringList soundProblems() const;
    /// Times and number of the recording's logic frames.
    const RecordingTimeline &timeline() const { return m_timeline; }
    /// Logic frames of the recording, at least 1.
    int totalFrames() const { return m_timeline.totalFrames(); }
    /// Size of a composed frame in logical pixels; may be empty.
    QSize frameSize() const { return m_frameSize; }
    /// Names of the recorded tracks that work, in painting order.
    QStringList names() const;

    // Null when there is none. The countdown track always exists. Owned by this.
    KelPlaybackScreenTrack *screen() const { return m_screen; }
    KelPlaybackMouseTrack *mouse() const { return m_mouse; }
    KelPlaybackVoiceTrack *voice() const { return m_voice; }
    KelPlaybackCountdownTrack *countdown() const { return m_countdown; }
    KelPlaybackKeyboardTrack *keyboard() const { return m_keyboard; }

    void applySettings();
    /// Moves all tracks but the sound, which follows the clock.
    void moveTo(int frame);
    void resetEffects();
    void paint(QPainter *painter);

    /// Increases whenever paint() may draw something else than before.
    quint64 revision() const { return m_revision; }
    /// To be called after a track has been changed directly.
    void noteChange() { ++m_revision; }

private:
    template <typename Track>
    Track *add(std::unique_ptr<Track> track);
    void createScreen(const KelRecordingMetadata &metadata, bool preferHardwareDecode,
                      const KelPlaybackDependencies &dependencies);
    void createMouse();
    void createVoice(const KelRecordingMetadata &metadata, const KelPlaybackDependencies &dependencies);
    void createCountdown();
    void createKeyboard();
    void createTimeline(const KelRecordingMetadata &metadata);

    KelPlaybackTrackManager *const m_manager;
    const QString m_recordDir;
    const double m_pixelRatio;
    const KelPlaybackRules m_rules;
    RecordingTimeline m_timeline;
    std::vector<std::unique_ptr<KelPlaybackTrack>> m_tracks; // in painting order
    KelPlaybackScreenTrack *m_screen = nullptr;              // points into m_tracks, like those below
    KelPlaybackMouseTrack *m_mouse = nullptr;
    KelPlaybackVoiceTrack *m_voice = nullptr;
    KelPlaybackCountdownTrack *m_countdown = nullptr;
    KelPlaybackKeyboardTrack *m_keyboard = nullptr;
    QString m_errorString;
    QString m_voiceProblem;
    QSize m_frameSize;
    quint64 m_revision = 0;
};

} // namespace kel
