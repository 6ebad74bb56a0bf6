#include "ui/AudioSettingsPanel.h"

#include "ui/SettingTexts.h"
#include "ui/SettingsForm.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QPointer>

class AudioSettingsPanel::Private
{
public:
    QPointer<KelPlaybackTrackManager> manager;
};

AudioSettingsPanel::AudioSettingsPanel(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<Private>())
{
    using C = KelMovieConfig;
    auto *const form = new SettingsForm(this);
    connect(form, &SettingsForm::sigChanged, this, &AudioSettingsPanel::sigConfigUpdated);

    const SettingsForm::Range volume{0, 100, SettingTexts::percent, 5};
    const SettingsForm::Range gain{0, 500, SettingTexts::percent, 10};

    form->addHeading(tr("System audio"));
    form->enableNextBy(form->addSwitch({tr("&Play"), tr("Plays and exports what the computer played")},
                                       {"KelMovie.playback.audio.system.enabled", &C::playbackAudioSystemEnabled}));
    form->addSwitch({tr("&Mute"), tr("Silences it for now")},
                    {"KelMovie.playback.audio.system.muted", &C::playbackAudioSystemMuted});
    form->addSlider({tr("&Volume"), tr("How loud it is played")},
                    {"KelMovie.playback.audio.system.volume", &C::playbackAudioSystemVolume}, volume);
    form->addSlider({tr("&Gain"), tr("Amplifies what was recorded too quietly")},
                    {"KelMovie.playback.audio.system.gain", &C::playbackAudioSystemGain}, gain);

    form->addHeading(tr("Microphone"));
    form->enableNextBy(
        form->addSwitch({tr("P&lay"), tr("Plays and exports what the microphone recorded")},
                        {"KelMovie.playback.audio.microphone.enabled", &C::playbackAudioMicrophoneEnabled}));
    form->addSwitch({tr("M&ute"), tr("Silences it for now")},
                    {"KelMovie.playback.audio.microphone.muted", &C::playbackAudioMicrophoneMuted});
    form->addSlider({tr("V&olume"), tr("How loud it is played")},
                    {"KelMovie.playback.audio.microphone.volume", &C::playbackAudioMicrophoneVolume}, volume);
    form->addSlider({tr("Ga&in"), tr("Amplifies what was recorded too quietly")},
                    {"KelMovie.playback.audio.microphone.gain", &C::playbackAudioMicrophoneGain}, gain);
}

AudioSettingsPanel::~AudioSettingsPanel() = default;

void AudioSettingsPanel::setPlaybackManager(KelPlaybackTrackManager *manager)
{
    d->manager = manager;
}
