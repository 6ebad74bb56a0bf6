#pragma once

#include "recorder/RecordingController.h"

#include <QObject>
#include <QVector>

class QWidget;
class SwitchButton;

/// The switches for system sound, microphone, mouse and keystrokes on the toolbar. Before a recording they change the
/// settings. During a recording those for mouse and keystrokes affect that recording only. GUI thread.
class TrackSwitches : public QObject
{
    Q_OBJECT

public:
    /// `toolbar` is the parent of the buttons, which it has to lay out.
    explicit TrackSwitches(QWidget *toolbar);

    /// In the order in which they are shown.
    QVector<SwitchButton *> buttons() const { return {m_systemAudio, m_microphone, m_mouse, m_keys}; }
    SwitchButton *mouseButton() const { return m_mouse; }

    /// Shows the current settings, unless a recording has its own.
    void refresh();
    void showState(RecordingController::State state);

signals:
    /// During a recording.
    void keysSwitched(bool on);
    void mouseSwitched(bool on);

private:
    void saveToSettings(SwitchButton *button, const QString &key);
    void switchTrack(SwitchButton *button, bool on);
    bool isRecording() const;

    SwitchButton *const m_systemAudio;
    SwitchButton *const m_microphone;
    SwitchButton *const m_mouse;
    SwitchButton *const m_keys;
    RecordingController::State m_state = RecordingController::State::Idle;
};
