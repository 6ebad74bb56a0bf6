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

/// How loud a source of sound is at present, and what is wrong with it. Listens only while it is seen.
class SoundLevelView : public QWidget
{
    Q_OBJECT

public:
    struct Texts {
        QString name;    ///< of the source
        QString missing; ///< there is no such device
        QString silent;  ///< nothing was heard for some seconds
        QString absent;  ///< not in the recording that is played
    };
    /// What is played; 1.0 is full scale, nothing when the recording has no such sound.
    using PlayedLevel = std::function<std::optional<float>()>;

    SoundLevelView(EDataFlow flow, const Texts &texts, QWidget *parent = nullptr);

    /// Shows what is played instead of what the device hears; an empty function puts that back.
    void setPlayedLevel(const PlayedLevel &level);

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
    SoundLevelMonitor m_monitor;
    PlayedLevel m_playedLevel;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_heardAtMs = 0;
};

} // namespace kel
