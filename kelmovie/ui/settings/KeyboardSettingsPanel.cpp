#include "ui/settings/KeyboardSettingsPanel.h"

#include "config/KelMovieConfigKeys.h"
#include "ui/settings/SettingTexts.h"
#include "ui/settings/SettingsForm.h"

using namespace kel;

class Q_DECL_HIDDEN KeyboardSettingsPanel::Private
{
public:
    explicit Private(KeyboardSettingsPanel *panel)
        : form(new SettingsForm(panel))
    {
    }

    SettingsForm *const form;
};

KeyboardSettingsPanel::KeyboardSettingsPanel(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<Private>(this))
{
    using C = KelMovieConfig;
    SettingsForm *const form = d->form;
    connect(form, &SettingsForm::sigChanged, this, &KeyboardSettingsPanel::sigConfigUpdated);

    form->addHeading(tr("Keys"));
    form->addBits({tr("&Show"), tr("Types of keys to show")},
                  {KelMovieConfigKeys::kPlaybackKeyboardShowKeyType, &C::playbackKeyboardShowKeyType},
                  {{tr("Character Keys"), 1, tr("A-Z, 0-9")},
                   {tr("Other Keys"), 2, tr("F1-F12, ESC, TAB, SPACE, ENTER, ...")},
                   {tr("Modifier Keys"), 4, tr("Ctrl, Shift, Alt, Win/Meta")},
                   {tr("Combinations Keys"), 8, tr("Shortcuts such as Ctrl+C")}},
                  2);
    form->addSlider({tr("Cha&racters per box"), tr("Maximum number of consecutive characters in one box")},
                    {KelMovieConfigKeys::kPlaybackKeyboardMaxContinueChar, &C::playbackKeyboardMaxContinueChar},
                    {1, 40, SettingTexts::number});
    form->addSlider({tr("&Keep for"), tr("How long a key stays visible after it is pressed")},
                    {KelMovieConfigKeys::kPlaybackKeyboardKeepTime, &C::playbackKeyboardKeepTime},
                    {0, 10, SettingTexts::seconds});
    form->addChips({tr("&Position"), tr("Where keys are shown")},
                   {KelMovieConfigKeys::kPlaybackKeyboardDisplayPos, &C::playbackKeyboardDisplayPos},
                   {{tr("Left"), 2, tr("Bottom left")},
                    {tr("Center"), 1, tr("Bottom center")},
                    {tr("Right"), 3, tr("Bottom right")}});

    form->addHeading(tr("Appearance"));
    form->addFont({tr("&Font"), tr("Font of the key labels")}, &C::playbackKeyboardFont);
    form->addSlider({tr("Font si&ze"), tr("Font size of the key labels")},
                    {KelMovieConfigKeys::kPlaybackKeyboardFontSizePx, &C::playbackKeyboardFontSizePx},
                    {8, 96, SettingTexts::pixels});
    form->addColor({tr("Font &color"), tr("Text color of the key labels")},
                   {KelMovieConfigKeys::kPlaybackKeyboardFontColor, &C::playbackKeyboardFontColor});
    form->addColor({tr("&Background"), tr("Background color of the key labels")},
                   {KelMovieConfigKeys::kPlaybackKeyboardBgColor, &C::playbackKeyboardBgColor});

    form->addHeading(tr("Previous keys"));
    form->addSlider({tr("Bo&xes"), tr("Maximum number of boxes shown at a time")},
                    {KelMovieConfigKeys::kPlaybackKeyboardMaxHistoryCount, &C::playbackKeyboardMaxHistoryCount},
                    {0, 20, SettingTexts::number});
    form->addSlider({tr("S&maller by"), tr("How much smaller the font of previous keys is")},
                    {KelMovieConfigKeys::kPlaybackKeyboardHistoryFontSize, &C::playbackKeyboardHistoryFontSize},
                    {0, 40, SettingTexts::pixels});

    form->addRecordingHeading(tr("Recording"));
    form->addSwitch({tr("Record k&eyboard"), tr("Record the keyboard next time")},
                    {KelMovieConfigKeys::kRecordKeyboard, &C::recordKeyboard});
}

KeyboardSettingsPanel::~KeyboardSettingsPanel() = default;

void KeyboardSettingsPanel::setRecordingShown(bool shown)
{
    d->form->setRecordingShown(shown);
}
