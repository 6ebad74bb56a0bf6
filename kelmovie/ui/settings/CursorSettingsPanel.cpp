#include "ui/settings/CursorSettingsPanel.h"

#include "ui/settings/SettingTexts.h"
#include "ui/settings/SettingsForm.h"

using namespace kel;

CursorSettingsPanel::CursorSettingsPanel(QWidget *parent)
    : QWidget(parent)
    , m_form(new SettingsForm(this))
{
    using C = KelMovieConfig;
    SettingsForm *const form = m_form;
    connect(form, &SettingsForm::sigChanged, this, &CursorSettingsPanel::sigConfigUpdated);

    form->addHeading(tr("Pointer"));
    form->addSwitch({tr("&Show pointer"), tr("Shows the recorded pointer and its effects")},
                    {"KelMovie.playback.mouse.enable", &C::playbackMouseEnable});
    form->enableNextWhile([] { return gKelMovieConfig.playbackMouseEnable; });
    form->addBits({tr("&Buttons"), tr("Clicks that are shown")},
                  {"KelMovie.playback.mouse.showActionButton", &C::playbackMouseShowActionButton},
                  {{tr("Left click"), 1, tr("Shows clicks of the left button")},
                   {tr("Right click"), 2, tr("Shows clicks of the right button")},
                   {tr("Middle click"), 4, tr("Shows clicks of the middle button")}},
                  3);
    form->addList({tr("Click &effect"), tr("What a click looks like")}, {nullptr, &C::playbackMouseClickEffect},
                  {{tr("None"), 0, {}},
                   {tr("Rays"), 1, {}},
                   {tr("Flower"), 2, {}},
                   {tr("Fireworks"), 3, {}},
                   {tr("Stars"), 4, {}},
                   {tr("Ripple"), 5, {}},
                   {tr("Press"), 6, {}}});
    form->addSwitch({tr("&Replace effects"), tr("A click ends the effect of the click before")},
                    {nullptr, &C::playbackMouseReplaceEffects});
    form->addSwitch({tr("Show &wheel"), tr("Shows turns of the wheel")},
                    {"KelMovie.playback.mouse.showWheel", &C::playbackMouseShowWheel});
    form->addColor({tr("&Color"), tr("Color of the effects")},
                   {"KelMovie.playback.mouse.color", &C::playbackMouseColor});
    form->addSlider({tr("Si&ze"), tr("Size of the effects")}, {"KelMovie.playback.mouse.size", &C::playbackMouseSize},
                    {5, 60, SettingTexts::number});

    form->addRecordingHeading(tr("Recording"));
    form->addSwitch({tr("Record &mouse"), tr("The next recording takes up the mouse")},
                    {"KelMovie.record.mouse", &C::recordMouse});
}

void CursorSettingsPanel::setRecordingShown(bool shown)
{
    m_form->setRecordingShown(shown);
}
