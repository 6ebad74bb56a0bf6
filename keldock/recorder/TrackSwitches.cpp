#include "recorder/TrackSwitches.h"

#include "recorder/SwitchButton.h"

#include <KelMovie/KelConfigIO.h>
#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMovieConfigKeys.h>

using KelDockIcon::Glyph;
using State = RecordingController::State;

TrackSwitches::TrackSwitches(QWidget *toolbar)
    : QObject(toolbar)
    , m_systemAudio(
          new SwitchButton(tr("System sound"), {Glyph::Speaker, tr("System sound is recorded. Click to exclude it.")},
                           {Glyph::SpeakerOff, tr("System sound is not recorded. Click to include it.")}, toolbar))
    , m_microphone(new SwitchButton(
          tr("Microphone"), {Glyph::Microphone, tr("The microphone is recorded. Click to exclude it.")},
          {Glyph::MicrophoneOff, tr("The microphone is not recorded. Click to include it.")}, toolbar))
    , m_mouse(new SwitchButton(tr("Mouse"), {Glyph::Mouse, tr("The mouse is recorded. Click to exclude it.")},
                               {Glyph::Mouse, tr("The mouse is not recorded. Click to include it.")}, toolbar))
    , m_keys(new SwitchButton(tr("Keystrokes"),
                              {Glyph::Keyboard, tr("Keystrokes are recorded, including passwords. Click to exclude "
                                                   "them before you type anything private.")},
                              {Glyph::KeyboardOff, tr("Keystrokes are not recorded. Click to include them.")}, toolbar))
{
    saveToSettings(m_systemAudio, KelMovieConfigKeys::kRecordRecordSystemAudio);
    saveToSettings(m_microphone, KelMovieConfigKeys::kRecordRecordMicrophone);
    saveToSettings(m_mouse, KelMovieConfigKeys::kRecordMouse);
    saveToSettings(m_keys, KelMovieConfigKeys::kRecordKeyboard);
}

void TrackSwitches::saveToSettings(SwitchButton *button, const QString &key)
{
    connect(button, &SwitchButton::switched, this, [this, button, key](bool on) {
        if (isRecording())
            switchTrack(button, on);
        else
            gKelMovieConfigIO->saveBool(key, on);
    });
}

void TrackSwitches::switchTrack(SwitchButton *button, bool on)
{
    if (button == m_keys)
        emit keysSwitched(on);
    else
        emit mouseSwitched(on);
}

bool TrackSwitches::isRecording() const
{
    return m_state == State::Recording || m_state == State::Paused;
}

void TrackSwitches::refresh()
{
    if (m_state != State::Idle)
        return;
    m_systemAudio->setOn(gKelMovieConfig.recordRecordSystemAudio);
    m_microphone->setOn(gKelMovieConfig.recordRecordMicrophone);
    m_mouse->setOn(gKelMovieConfig.recordMouse);
    m_keys->setOn(gKelMovieConfig.recordKeyboard);
}

void TrackSwitches::showState(State state)
{
    m_state = state;
    const bool isIdle = state == State::Idle;
    for (SwitchButton *sound : {m_systemAudio, m_microphone}) {
        if (isIdle)
            sound->unlock();
        else
            sound->lock(tr("Sound cannot be turned on or off during a recording."));
    }
    for (SwitchButton *input : {m_mouse, m_keys}) {
        // A recording cannot get another track once it has started.
        if (isIdle || (isRecording() && (input->isChecked() || input->isEnabled())))
            input->unlock();
        else
            input->lock(tr("This can only be turned on before a recording."));
    }
    refresh();
}
