#include "ui/settings/CursorSettingsPanel.h"

#include "config/KelMovieConfigKeys.h"
#include "ui/settings/SettingTexts.h"
#include "ui/settings/SettingsForm.h"

using namespace kel;

class Q_DECL_HIDDEN CursorSettingsPanel::Private
{
public:
    explicit Private(CursorSettingsPanel *panel)
        : form(new SettingsForm(panel))
    {
    }

    SettingsForm *const form;
};

CursorSettingsPanel::CursorSettingsPanel(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<Private>(this))
{
    using C = KelMovieConfig;
    SettingsForm *const form = d->form;
    connect(form, &SettingsForm::sigChanged, this, &CursorSettingsPanel::sigConfigUpdated);

    form->addHeading(tr("Pointer"));
    form->addSwitch({tr("&Show pointer"), tr("Show the recorded pointer and its effects")},
                    {KelMovieConfigKeys::kPlaybackMouseEnable, &C::playbackMouseEnable});
    form->enableNextWhile([] { return gKelMovieConfig.playbackMouseEnable; });
    form->addBits({tr("&Buttons"), tr("Mouse buttons whose clicks are shown")},
                  {KelMovieConfigKeys::kPlaybackMouseShowActionButton, &C::playbackMouseShowActionButton},
                  {{tr("Left click"), 1, tr("Show left clicks")},
                   {tr("Right click"), 2, tr("Show right clicks")},
                   {tr("Middle click"), 4, tr("Show middle clicks")}},
                  3);
    form->addList({tr("Click &effect"), tr("Animation shown at each click")}, {{}, &C::playbackMouseClickEffect},
                  {{tr("None"), 0, {}},
                   {tr("Rays"), 1, {}},
                   {tr("Flower"), 2, {}},
                   {tr("Fireworks"), 3, {}},
                   {tr("Stars"), 4, {}},
                   {tr("Ripple"), 5, {}},
                   {tr("Press"), 6, {}}});
    form->addSwitch({tr("&One effect at a time"), tr("End the previous effect at the next click")},
                    {{}, &C::playbackMouseReplaceEffects});
    form->addSwitch({tr("Show &wheel"), tr("Show wheel scrolling")},
                    {KelMovieConfigKeys::kPlaybackMouseShowWheel, &C::playbackMouseShowWheel});
    form->addColor({tr("&Color"), tr("Effect color")},
                   {KelMovieConfigKeys::kPlaybackMouseColor, &C::playbackMouseColor});
    form->addSlider({tr("Si&ze"), tr("Effect size")}, {KelMovieConfigKeys::kPlaybackMouseSize, &C::playbackMouseSize},
                    {5, 60, SettingTexts::number});

    form->addRecordingHeading(tr("Recording"));
    form->addSwitch({tr("Record &mouse"), tr("Record the mouse next time")},
                    {KelMovieConfigKeys::kRecordMouse, &C::recordMouse});
}

CursorSettingsPanel::~CursorSettingsPanel() = default;

void CursorSettingsPanel::setRecordingShown(bool shown)
{
    d->form->setRecordingShown(shown);
}
