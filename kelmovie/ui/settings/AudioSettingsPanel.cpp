#include "ui/settings/AudioSettingsPanel.h"

#include "playback/tracks/KelPlaybackVoiceTrack.h"
#include "ui/settings/SettingTexts.h"
#include "ui/settings/SettingsForm.h"
#include "ui/settings/SoundLevelView.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

using namespace kel;

namespace
{

const SettingsForm::Range kVolume{0, 100, SettingTexts::percent, 5};
const SettingsForm::Range kGain{0, 500, SettingTexts::percent, 10};

} // namespace

class Q_DECL_HIDDEN AudioSettingsPanel::Private
{
public:
    explicit Private(AudioSettingsPanel *panel);

    void addSystemAudio();
    void addMicrophone();
    void addRecording();
    void updateWarning();

    AudioSettingsPanel *const q;
    SettingsForm *const form;
    SoundLevelView *systemLevel = nullptr;
    SoundLevelView *microphoneLevel = nullptr;
    QWidget *warning = nullptr;
    bool isRecording = false;
};

AudioSettingsPanel::Private::Private(AudioSettingsPanel *panel)
    : q(panel)
    , form(new SettingsForm(panel))
{
    addSystemAudio();
    addMicrophone();
    addRecording();
}

void AudioSettingsPanel::Private::addSystemAudio()
{
    using C = KelMovieConfig;
    form->addHeading(tr("System audio"));
    systemLevel = new SoundLevelView(eRender,
                                     {tr("Level of the system audio"), tr("There is no device that plays sound."),
                                      tr("Nothing is being played."), tr("This recording has no system audio.")},
                                     form);
    form->addWidget(systemLevel);
    form->addSwitch({tr("&Play"), tr("Plays and exports what the computer played")},
                    {"KelMovie.playback.audio.system.enabled", &C::playbackAudioSystemEnabled});
    form->enableNextWhile([] { return gKelMovieConfig.playbackAudioSystemEnabled; });
    form->addSwitch({tr("&Mute"), tr("Silences the system audio for now")},
                    {"KelMovie.playback.audio.system.muted", &C::playbackAudioSystemMuted});
    form->addSlider({tr("&Volume"), tr("How loud the system audio is played")},
                    {"KelMovie.playback.audio.system.volume", &C::playbackAudioSystemVolume}, kVolume);
    form->addSlider({tr("&Gain"), tr("Amplifies system audio that was recorded too quietly")},
                    {"KelMovie.playback.audio.system.gain", &C::playbackAudioSystemGain}, kGain);
}

void AudioSettingsPanel::Private::addMicrophone()
{
    using C = KelMovieConfig;
    form->addHeading(tr("Microphone"));
    microphoneLevel =
        new SoundLevelView(eCapture,
                           {tr("Level of the microphone"), tr("There is no microphone."),
                            tr("The microphone is silent."), tr("This recording has no microphone sound.")},
                           form);
    form->addWidget(microphoneLevel);
    form->addSwitch({tr("P&lay"), tr("Plays and exports what the microphone recorded")},
                    {"KelMovie.playback.audio.microphone.enabled", &C::playbackAudioMicrophoneEnabled});
    form->enableNextWhile([] { return gKelMovieConfig.playbackAudioMicrophoneEnabled; });
    form->addSwitch({tr("M&ute"), tr("Silences the microphone for now")},
                    {"KelMovie.playback.audio.microphone.muted", &C::playbackAudioMicrophoneMuted});
    form->addSlider({tr("V&olume"), tr("How loud the microphone is played")},
                    {"KelMovie.playback.audio.microphone.volume", &C::playbackAudioMicrophoneVolume}, kVolume);
    form->addSlider({tr("Ga&in"), tr("Amplifies what the microphone recorded too quietly")},
                    {"KelMovie.playback.audio.microphone.gain", &C::playbackAudioMicrophoneGain}, kGain);
}

void AudioSettingsPanel::Private::addRecording()
{
    using C = KelMovieConfig;
    form->addRecordingHeading(tr("Recording"));
    form->addSwitch({tr("Record &system audio"), tr("The next recording takes up what the computer plays")},
                    {"KelMovie.record.recordSystemAudio", &C::recordRecordSystemAudio});
    form->addSwitch({tr("&Record microphone"), tr("The next recording takes up what the microphone hears")},
                    {"KelMovie.record.recordMicrophone", &C::recordRecordMicrophone});

    warning = new QWidget(form);
    auto *const text = new QLabel(tr("These take effect with the next recording."), warning);
    text->setObjectName(QStringLiteral("Note"));
    auto *const close = new QPushButton(tr("&Don't show again"), warning);
    close->setObjectName(QStringLiteral("NoteButton"));
    close->setToolTip(tr("Does not say this any more while recording"));
    auto *const layout = new QHBoxLayout(warning);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text, 1);
    layout->addWidget(close);
    form->addWidget(warning);
    connect(close, &QPushButton::clicked, q, [this] {
        form->change(Setting<bool>{"KelMovie.record.dontShowRecordingWarning", &C::recordDontShowRecordingWarning},
                     true);
        updateWarning();
    });
    updateWarning();
}

void AudioSettingsPanel::Private::updateWarning()
{
    warning->setVisible(isRecording && !gKelMovieConfig.recordDontShowRecordingWarning);
}

AudioSettingsPanel::AudioSettingsPanel(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<Private>(this))
{
    connect(d->form, &SettingsForm::sigChanged, this, &AudioSettingsPanel::sigConfigUpdated);
}

AudioSettingsPanel::~AudioSettingsPanel() = default;

void AudioSettingsPanel::setPlaybackManager(KelPlaybackTrackManager *manager)
{
    if (!manager) {
        d->systemLevel->setPlayedLevel({});
        d->microphoneLevel->setPlayedLevel({});
        return;
    }
    const auto voice = [manager = QPointer<KelPlaybackTrackManager>(manager)] {
        return manager ? manager->voiceTrack() : nullptr;
    };
    d->systemLevel->setPlayedLevel([voice]() -> std::optional<float> {
        const KelPlaybackVoiceTrack *const track = voice();
        return track && track->hasSystemAudio() ? std::optional(track->systemAudioLevel()) : std::nullopt;
    });
    d->microphoneLevel->setPlayedLevel([voice]() -> std::optional<float> {
        const KelPlaybackVoiceTrack *const track = voice();
        return track && track->hasMicrophone() ? std::optional(track->microphoneLevel()) : std::nullopt;
    });
}

void AudioSettingsPanel::setRecording(bool recording)
{
    d->isRecording = recording;
    d->updateWarning();
}

void AudioSettingsPanel::setRecordingShown(bool shown)
{
    d->form->setRecordingShown(shown);
    if (shown)
        d->updateWarning();
}
