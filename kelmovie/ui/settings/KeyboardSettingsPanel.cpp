#include "ui/settings/KeyboardSettingsPanel.h"

#include "ui/settings/SettingTexts.h"
#include "ui/settings/SettingsForm.h"

using namespace kel;

KeyboardSettingsPanel::KeyboardSettingsPanel(QWidget *parent)
    : QWidget(parent)
    , m_form(new SettingsForm(this))
{
    using C = KelMovieConfig;
    SettingsForm *const form = m_form;
    connect(form, &SettingsForm::sigChanged, this, &KeyboardSettingsPanel::sigConfigUpdated);

    form->addHeading(tr("Keys"));
    form->addBits({tr("&Show"), tr("Kinds of keys that are shown")},
                  {"KelMovie.playback.keyboard.showKeyType", &C::playbackKeyboardShowKeyType},
                  {{tr("Character Keys"), 1, tr("A-Z, 0-9")},
                   {tr("Other Keys"), 2, tr("F1-F12, ESC, TAB, SPACE, ENTER, ...")},
                   {tr("Modifier Keys"), 4, tr("Ctrl, Shift, Alt, Win/Meta")},
                   {tr("Combinations Keys"), 8, tr("Several keys pressed together, as Ctrl+C")}},
                  2);
    form->addSlider({tr("Characters in a &row"), tr("Characters typed one after another that share a box")},
                    {"KelMovie.playback.keyboard.maxContinueChar", &C::playbackKeyboardMaxContinueChar},
                    {1, 40, SettingTexts::number});
    form->addSlider({tr("&Keep for"), tr("How long a key stays after it was pressed")},
                    {"KelMovie.playback.keyboard.keepTime", &C::playbackKeyboardKeepTime},
                    {0, 10, SettingTexts::seconds});
    form->addChips({tr("&Position"), tr("Where the keys are shown")},
                   {"KelMovie.playback.keyboard.displayPos", &C::playbackKeyboardDisplayPos},
                   {{tr("Left"), 2, tr("At the bottom left")},
                    {tr("Center"), 1, tr("At the bottom in the middle")},
                    {tr("Right"), 3, tr("At the bottom right")}});

    form->addHeading(tr("Look"));
    form->addFont({tr("&Font"), tr("Font of the keys")}, &C::playbackKeyboardFont);
    form->addSlider({tr("Font si&ze"), tr("Size of the letters")},
                    {"KelMovie.playback.keyboard.fontSizePx", &C::playbackKeyboardFontSizePx},
                    {8, 96, SettingTexts::pixels});
    form->addColor({tr("Font &color"), tr("Color of the letters")},
                   {"KelMovie.playback.keyboard.fontColor", &C::playbackKeyboardFontColor});
    form->addColor({tr("&Background"), tr("Color of the boxes")},
                   {"KelMovie.playback.keyboard.bgColor", &C::playbackKeyboardBgColor});

    form->addHeading(tr("Earlier keys"));
    form->addSlider({tr("&Boxes"), tr("How many boxes are shown at a time")},
                    {"KelMovie.playback.keyboard.maxHistoryCount", &C::playbackKeyboardMaxHistoryCount},
                    {0, 20, SettingTexts::number});
    form->addSlider({tr("S&maller by"), tr("How much smaller the letters of earlier keys are")},
                    {"KelMovie.playback.keyboard.historyFontSize", &C::playbackKeyboardHistoryFontSize},
                    {0, 40, SettingTexts::pixels});

    form->addRecordingHeading(tr("Recording"));
    form->addSwitch({tr("Record k&eyboard"), tr("The next recording takes up what is typed")},
                    {"KelMovie.record.keyboard", &C::recordKeyboard});
}

void KeyboardSettingsPanel::setRecordingShown(bool shown)
{
    m_form->setRecordingShown(shown);
}
