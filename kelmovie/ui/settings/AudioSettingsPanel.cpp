#include "ui/settings/AudioSettingsPanel.h"

#include "config/KelMovieConfigKeys.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
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
    void updateNote();

    AudioSettingsPanel *const q;
    SettingsForm *const form;
    SoundLevelView *systemLevel = nullptr;
    SoundLevelView *microphoneLevel = nullptr;
    QWidget *note = nullptr;
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
                                     {tr("System audio level"), tr("No playback device found."),
                                      tr("No sound is playing."), tr("This recording has no system audio.")},
                                     form);
    form->addWidget(systemLevel);
    form->addSwitch({tr("&Enable"), tr("Include system audio in playback and exports")},
                    {KelMovieConfigKeys::kPlaybackAudioSystemEnabled, &C::playbackAudioSystemEnabled});
    form->enableNextWhile([] { return gKelMovieConfig.playbackAudioSystemEnabled; });
    form->addSwitch({tr("&Mute"), tr("Mute system audio")},
                    {KelMovieConfigKeys::kPlaybackAudioSystemMuted, &C::playbackAudioSystemMuted});
    form->addSlider({tr("&Volume"), tr("System audio volume")},
                    {KelMovieConfigKeys::kPlaybackAudioSystemVolume, &C::playbackAudioSystemVolume}, kVolume);
    form->addSlider({tr("&Gain"), tr("Boost system audio that was recorded too quietly")},
                    {KelMovieConfigKeys::kPlaybackAudioSystemGain, &C::playbackAudioSystemGain}, kGain);
}

void AudioSettingsPanel::Private::addMicrophone()
{
    using C = KelMovieConfig;
    form->addHeading(tr("Microphone"));
    microphoneLevel =
        new SoundLevelView(eCapture,
                           {tr("Microphone level"), tr("No microphone found."), tr("The microphone is silent."),
                            tr("This recording has no microphone audio.")},
                           form);
    form->addWidget(microphoneLevel);
    form->addSwitch({tr("E&nable"), tr("Include the microphone in playback and exports")},
                    {KelMovieConfigKeys::kPlaybackAudioMicrophoneEnabled, &C::playbackAudioMicrophoneEnabled});
    form->enableNextWhile([] { return gKelMovieConfig.playbackAudioMicrophoneEnabled; });
    form->addSwitch({tr("M&ute"), tr("Mute the microphone")},
                    {KelMovieConfigKeys::kPlaybackAudioMicrophoneMuted, &C::playbackAudioMicrophoneMuted});
    form->addSlider({tr("V&olume"), tr("Microphone volume")},
                    {KelMovieConfigKeys::kPlaybackAudioMicrophoneVolume, &C::playbackAudioMicrophoneVolume}, kVolume);
    form->addSlider({tr("Ga&in"), tr("Boost a microphone that was recorded too quietly")},
                    {KelMovieConfigKeys::kPlaybackAudioMicrophoneGain, &C::playbackAudioMicrophoneGain}, kGain);
}

void AudioSettingsPanel::Private::addRecording()
{
    using C = KelMovieConfig;
    form->addRecordingHeading(tr("Recording"));
    form->addSwitch({tr("Record &system audio"), tr("Record system audio next time")},
                    {KelMovieConfigKeys::kRecordRecordSystemAudio, &C::recordRecordSystemAudio});
    form->addSwitch({tr("&Record microphone"), tr("Record the microphone next time")},
                    {KelMovieConfigKeys::kRecordRecordMicrophone, &C::recordRecordMicrophone});

    note = new QWidget(form);
    auto *const text = new QLabel(tr("Changes apply to the next recording."), note);
    text->setObjectName(QStringLiteral("Note"));
    auto *const close = new QPushButton(tr("&Don't show again"), note);
    close->setObjectName(QStringLiteral("NoteButton"));
    close->setToolTip(tr("Don't show this note again"));
    auto *const layout = new QHBoxLayout(note);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text, 1);
    layout->addWidget(close);
    form->addWidget(note);
    connect(close, &QPushButton::clicked, q, [this] {
        form->change(
            Setting<bool>{KelMovieConfigKeys::kRecordDontShowRecordingWarning, &C::recordDontShowRecordingWarning},
            true);
        updateNote();
    });
    updateNote();
}

void AudioSettingsPanel::Private::updateNote()
{
    note->setVisible(isRecording && !gKelMovieConfig.recordDontShowRecordingWarning);
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
        d->systemLevel->setPlaybackLevel({});
        d->microphoneLevel->setPlaybackLevel({});
        return;
    }
    const auto voice = [manager = QPointer<KelPlaybackTrackManager>(manager)] {
        return manager ? PlaybackInternals::engine(*manager).voiceTrack() : nullptr;
    };
    d->systemLevel->setPlaybackLevel([voice]() -> std::optional<float> {
        const KelPlaybackVoiceTrack *const track = voice();
        return track && track->hasSystemAudio() ? std::optional(track->systemAudioLevel()) : std::nullopt;
    });
    d->microphoneLevel->setPlaybackLevel([voice]() -> std::optional<float> {
        const KelPlaybackVoiceTrack *const track = voice();
        return track && track->hasMicrophone() ? std::optional(track->microphoneLevel()) : std::nullopt;
    });
}

void AudioSettingsPanel::setRecording(bool recording)
{
    d->isRecording = recording;
    d->updateNote();
}

void AudioSettingsPanel::setRecordingShown(bool shown)
{
    d->form->setRecordingShown(shown);
    if (shown)
        d->updateNote();
}
