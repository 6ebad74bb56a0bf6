#include "ui/settings/ProgressSettingsPanel.h"

#include "ui/settings/SettingTexts.h"
#include "ui/settings/SettingsForm.h"

using namespace kel;

ProgressSettingsPanel::ProgressSettingsPanel(QWidget *parent)
    : QWidget(parent)
{
    using C = KelMovieConfig;
    auto *const form = new SettingsForm(this);
    connect(form, &SettingsForm::sigChanged, this, &ProgressSettingsPanel::sigConfigUpdated);

    form->addHeading(tr("Progress"));
    form->addSwitch({tr("&Show progress"), tr("Shows over the picture how far it has come")},
                    {"KelMovie.playback.progress.enable", &C::playbackProgressEnable});
    form->enableNextWhile([] { return gKelMovieConfig.playbackProgressEnable; });
    form->addChips({tr("&As"), tr("What the progress looks like")},
                   {"KelMovie.playback.progress.displayMode", &C::playbackProgressDisplayMode},
                   {{tr("Time"), 0, tr("A box with the elapsed and the total time")},
                    {tr("Bar"), 1, tr("A bar along the bottom edge")}});
    form->addSlider({tr("Si&ze"), tr("Size of the time's letters; the bar is thinner")},
                    {"KelMovie.playback.progress.size", &C::playbackProgressSize}, {8, 96, SettingTexts::pixels});
    form->addSlider({tr("&Round"), tr("Radius of the corners")},
                    {"KelMovie.playback.progress.round", &C::playbackProgressRound}, {0, 24, SettingTexts::pixels});
    form->enableNextWhile(
        [] { return gKelMovieConfig.playbackProgressEnable && gKelMovieConfig.playbackProgressDisplayMode == 1; });
    form->addColor({tr("&Color"), tr("Color of the played part of the bar")},
                   {"KelMovie.playback.progress.fgColor", &C::playbackProgressFgColor});
    form->addColor({tr("&Background"), tr("Color of the rest of the bar")},
                   {"KelMovie.playback.progress.bgColor", &C::playbackProgressBgColor});
    form->addSlider({tr("S&tep"), tr("The bar moves on once in this time at most")},
                    {"KelMovie.playback.progress.gapTime", &C::playbackProgressGapTime},
                    {0, 1000, SettingTexts::milliseconds, 10});
}
