#pragma once

#include "audio/output/AudioGain.h"
#include "audio/output/AudioSink.h"
#include "audio/processing/StretchedSound.h"
#include "recording/wav/WavFrameReader.h"

#include <QAudioFormat>
#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>

/// Plays one WAV file, with optional amplification, at any rate. Reads the file while playing. The sound device is
/// opened by the first play(), so that loading a recording needs none.
///
///     no source ──setSource──▶ stopped ──play──▶ playing ──pause──▶ paused
///                                 ▲                │  ▲               │
///                                 └──stop, end─────┤  └─────play──────┤
///                                                  └◀─────stop────────┘
///
/// A failure is kept in errorString(), logged, and emitted. Positions are in ms of the file. Used from one thread,
/// which has an event loop.
class KelAmplifiedAudioPlayer : public QObject
{
    Q_OBJECT

public:
    explicit KelAmplifiedAudioPlayer(QObject *parent = nullptr);
    /// Plays on the devices that `createSink` creates.
    explicit KelAmplifiedAudioPlayer(kel::AudioSink::Factory createSink, QObject *parent = nullptr);
    ~KelAmplifiedAudioPlayer() override;

    bool setSource(const QString &path);
    /// Plays a WAV file in a device; false with its error if it is not open.
    bool setSource(std::unique_ptr<QIODevice> file);
    void play();
    void pause();
    void stop();
    /// Moves to `ms`, clamped to the file, and continues playing if it was.
    void seek(qint64 ms);

    /// A factor, clamped to 0 to 5.
    void setGain(double gain);
    void setMuted(bool on);
    /// Sets how many ms of the file are played per ms, above 0; other values are ignored. Frames are dropped or
    /// repeated, which changes the pitch unless setKeepsPitch() is on.
    void setRate(double rate);
    /// Whether the pitch stays at other rates, where StretchedSound supports the file; off by default. Rates close to
    /// 1, at which one hears no difference, are played as by default. Takes effect with the next seek, pause or stop.
    void setKeepsPitch(bool on) { m_keepsPitch = on; }

    bool isPlaying() const { return m_isPlaying; }
    /// What is being heard, as far as the device reports it.
    qint64 position() const { return qRound64(exactPosition()); }
    double exactPosition() const;
    qint64 duration() const { return m_file.durationMs(); }
    double rate() const { return m_rate; }
    float level() const { return m_gain.level(); }
    QString errorString() const { return m_errorString; }

signals:
    void positionChanged(qint64 position);
    void durationChanged(qint64 duration);
    void stateChanged(bool playing);
    void errorOccurred(const QString &error);

public slots:
    void onAudioOutputStateChanged(QAudio::State state);
    /// Fills the device's buffer.
    void processAudioData();

private:
    void unload();
    bool loadWavFile(const QString &path);
    bool takeFile(bool isOpen);
    bool openDevice();
    void closeDevice();
    void setPlaying(bool on);
    void moveTo(double frame);
    double nextFrame() const { return m_first + double(m_made) * m_rate; }
    double heardFrame() const;
    bool isOver() const { return heardFrame() >= double(m_file.frameCount()); }
    QByteArray nextPiece();
    bool shouldStretch() const;
    void stretchTo(char *bytes, int frames);
    void mapTo(char *bytes, int frames);
    const char *frame(qint64 index);
    void tick();
    bool fail(const QString &text);

    const kel::AudioSink::Factory m_createSink;
    std::unique_ptr<kel::AudioSink> m_sink;
    kel::WavFrameReader m_file;
    QAudioFormat m_format; ///< of the file
    QString m_errorString;
    kel::AudioGain m_gain;
    QTimer m_feedTimer;
    QByteArray m_pending; ///< prepared but not yet taken by the device
    double m_first = 0;   ///< frame of the file at which the current rate was set
    qint64 m_made = 0;    ///< frames prepared since
    double m_rate = 1.0;
    std::optional<kel::StretchedSound> m_stretched; ///< from m_first on, while the pitch is kept
    bool m_keepsPitch = false;
    bool m_isPlaying = false;
    bool m_isDeviceMissing = false; ///< and this was reported
    bool m_isUnreadable = false;    ///< and this was logged
};
