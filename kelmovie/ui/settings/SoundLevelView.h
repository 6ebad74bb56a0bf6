#pragma once

#include "audio/capture/SoundLevelMonitor.h"

#include <QElapsedTimer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>

class QLabel;

namespace kel
{

class SoundLevelMeter;

/// The current level of an audio source and a note about what is wrong with it. Captures only while visible.
class SoundLevelView : public QWidget
{
    Q_OBJECT

public:
    struct Texts {
        QString name;    ///< accessible name of the meter
        QString missing; ///< the device is missing
        QString silent;  ///< no sound for some seconds
        QString absent;  ///< the played recording has no such track
    };
    /// The playback level, 1.0 being full scale; empty if the recording has no such track.
    using PlaybackLevel = std::function<std::optional<float>()>;

    SoundLevelView(EDataFlow flow, const Texts &texts, QWidget *parent = nullptr);
    ~SoundLevelView() override;

    /// Shows the playback level instead of what the device captures; an empty function switches back.
    void setPlaybackLevel(const PlaybackLevel &level);

    QString note() const;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void refresh();
    void showDevice(qint64 nowMs);
    void setNote(const QString &text, bool isWarning);

    const Texts m_texts;
    SoundLevelMeter *const m_meter;
    QLabel *const m_icon;
    QLabel *const m_note;
    SoundLevelMonitor *const m_monitor;
    PlaybackLevel m_playbackLevel;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_lastSoundMs = 0;
};

} // namespace kel
