#pragma once

#include "audio/output/AudioSync.h"
#include "playback/tracks/KelPlaybackTrack.h"

#include <QString>
#include <QStringList>

#include <array>
#include <functional>

class KelAmplifiedAudioPlayer;
struct KelPlaybackDependencies;

/// The sound of a recording: one player for the system audio, one for the microphone. It paints nothing. Callers pass
/// the position in ms of recorded time, and synchronize() keeps the sound in sync with the video. A source that cannot
/// be loaded is left out; without a sound device the track stays silent and emits deviceFailed().
class KelPlaybackVoiceTrack : public KelPlaybackTrack
{
    Q_OBJECT

public:
    /// Loads the newest sound of each source in `directory`.
    KelPlaybackVoiceTrack(const QString &directory, KelPlaybackTrackManager *manager);
    /// Loads only the given sources, with another sound device and clock.
    KelPlaybackVoiceTrack(const QString &directory, bool systemAudio, bool microphone,
                          const KelPlaybackDependencies &dependencies, KelPlaybackTrackManager *manager);
    ~KelPlaybackVoiceTrack() override;

    void setContext(const kel::RecordingTimeline &timeline, const KelPlaybackRules &rules) override;
    void seekToFrame(int frame) override;
    void paint(QPainter *painter) override;
    int nextKeyFrame() override;

    /// Moves the sound to `ms`. Moves of less than 50 ms are ignored.
    void seekToMs(qint64 ms);
    /// Starts or resumes at `ms`, playing `rate` ms of recorded time per ms.
    void play(double ms, double rate);
    /// While playing: `ms` is the position that should be heard now. Adjusts the rate, or restarts the sound there.
    void synchronize(double ms);
    void pause();
    /// Ends playback and returns to the beginning.
    void stop();
    /// Releases the sound device and the files; the track is silent from then on.
    void release();

    // Per source: whether there is a file that can be played, and the settings. Volume and gain are factors that are
    // multiplied; setters take effect at once.
    bool hasSystemAudio() const { return m_system.player != nullptr; }
    bool isSystemAudioEnabled() const { return m_system.isEnabled; }
    bool isSystemAudioMuted() const { return m_system.isMuted; }
    double systemAudioVolume() const { return m_system.volume; }
    double systemAudioGain() const { return m_system.gain; }
    void setSystemAudioEnabled(bool on) { setEnabled(m_system, on); }
    void setSystemAudioMuted(bool on) { setMuted(m_system, on); }
    void setSystemAudioVolume(double volume) { setLevel(m_system, volume, m_system.gain); }
    void setSystemAudioGain(double gain) { setLevel(m_system, m_system.volume, gain); }

    bool hasMicrophone() const { return m_microphone.player != nullptr; }
    bool isMicrophoneEnabled() const { return m_microphone.isEnabled; }
    bool isMicrophoneMuted() const { return m_microphone.isMuted; }
    double microphoneVolume() const { return m_microphone.volume; }
    double microphoneGain() const { return m_microphone.gain; }
    void setMicrophoneEnabled(bool on) { setEnabled(m_microphone, on); }
    void setMicrophoneMuted(bool on) { setMuted(m_microphone, on); }
    void setMicrophoneVolume(double volume) { setLevel(m_microphone, volume, m_microphone.gain); }
    void setMicrophoneGain(double gain) { setLevel(m_microphone, m_microphone.volume, gain); }

    /// The factor at which each source is heard: volume times gain, or 0 if it is missing, disabled or muted.
    double audibleSystemAudioGain() const { return audibleGain(m_system); }
    double audibleMicrophoneGain() const { return audibleGain(m_microphone); }

    /// Why sources that were recorded cannot be played, a line in English for each.
    QStringList problems() const;

    /// The level at which each source is being played, with its settings applied; 1.0 is full scale.
    float systemAudioLevel() const { return levelOf(m_system); }
    float microphoneLevel() const { return levelOf(m_microphone); }

signals:
    /// There is no sound device, or it has been lost. Emitted once until a device has been available again.
    void deviceFailed();

public slots:
    void onSystemAudioPositionChanged(qint64 position);
    void onMicrophonePositionChanged(qint64 position);

private:
    struct Source {
        QString problem;                           ///< why its files cannot be played
        KelAmplifiedAudioPlayer *player = nullptr; ///< a QObject child; null when there is no file that can be played
        kel::AudioSync sync;
        bool isEnabled = true;
        bool isMuted = false;
        double volume = 1.0;
        double gain = 1.0;

        bool isActive() const { return player && isEnabled; }
    };

    std::array<Source *, 2> sources() { return {&m_system, &m_microphone}; }
    static float levelOf(const Source &source);
    static double audibleGain(const Source &source);
    void load(Source &source, const QStringList &files, const QString &name,
              const KelPlaybackDependencies &dependencies);
    void start(Source &source, double ms);
    void onDeviceFailed();
    void setEnabled(Source &source, bool on);
    void setMuted(Source &source, bool on);
    void setLevel(Source &source, double volume, double gain);

    std::function<qint64()> m_nowMs;
    Source m_system;
    Source m_microphone;
    qint64 m_lastSeekMs = 0;
    double m_rate = 1.0;
    bool m_isPlaying = false;
    bool m_isDeviceMissing = false; ///< until the next play()
};
