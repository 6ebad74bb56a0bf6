#include "ui/settings/ProgressSettingsPanel.h"

#include "config/KelMovieConfigKeys.h"
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
    form->addSwitch({tr("&Show progress"), tr("Show the progress over the video")},
                    {KelMovieConfigKeys::kPlaybackProgressEnable, &C::playbackProgressEnable});
    form->enableNextWhile([] { return gKelMovieConfig.playbackProgressEnable; });
    form->addChips(
        {tr("St&yle"), tr("How the progress is shown")},
        {KelMovieConfigKeys::kPlaybackProgressDisplayMode, &C::playbackProgressDisplayMode},
        {{tr("Time"), 0, tr("Elapsed and total time in a box")}, {tr("Bar"), 1, tr("Bar along the bottom edge")}});
    form->addSlider({tr("Si&ze"), tr("Font size of the time; the height of the bar follows it")},
                    {KelMovieConfigKeys::kPlaybackProgressSize, &C::playbackProgressSize},
                    {8, 96, SettingTexts::pixels});
    form->addSlider({tr("Corner &radius"), tr("Corner radius of the box or bar")},
                    {KelMovieConfigKeys::kPlaybackProgressRound, &C::playbackProgressRound},
                    {0, 24, SettingTexts::pixels});
    form->enableNextWhile(
        [] { return gKelMovieConfig.playbackProgressEnable && gKelMovieConfig.playbackProgressDisplayMode == 1; });
    form->addColor({tr("&Color"), tr("Color of the played part of the bar")},
                   {KelMovieConfigKeys::kPlaybackProgressFgColor, &C::playbackProgressFgColor});
    form->addColor({tr("&Background"), tr("Color of the remaining part of the bar")},
                   {KelMovieConfigKeys::kPlaybackProgressBgColor, &C::playbackProgressBgColor});
    form->addSlider({tr("Upda&te interval"), tr("Minimum time between updates of the bar")},
                    {KelMovieConfigKeys::kPlaybackProgressGapTime, &C::playbackProgressGapTime},
                    {0, 1000, SettingTexts::milliseconds, 10});
}
