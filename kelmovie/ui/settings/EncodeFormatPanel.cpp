#include "ui/settings/EncodeFormatPanel.h"

#include "ui/settings/SettingsForm.h"

using namespace kel;

EncodeFormatPanel::EncodeFormatPanel(QWidget *parent)
    : QWidget(parent)
{
    using C = KelMovieConfig;
    auto *const form = new SettingsForm(this);
    connect(form, &SettingsForm::sigChanged, this, &EncodeFormatPanel::sigConfigUpdated);

    form->addHeading(tr("Export"));
    form->addChips({tr("&Format"), tr("Kind of file to export to")},
                   {"KelMovie.playback.encodeFormat", &C::playbackEncodeFormat},
                   {{QStringLiteral("MP4"), 0, tr("Video with sound; plays nearly everywhere")},
                    {QStringLiteral("GIF"), 1, tr("Animation with 256 colors, without sound; shown nearly everywhere")},
                    {QStringLiteral("APNG"), 2, tr("Animation in all colors without loss, without sound")},
                    {QStringLiteral("WebP"), 3, tr("Animation in all colors in a small file, without sound")}});
    form->enableNextWhile([] { return gKelMovieConfig.playbackEncodeFormat != 0; });
    QVector<SettingsForm::Choice> plays{{tr("Endlessly"), 0, {}}};
    for (const int times : {1, 2, 3, 5, 10, 20})
        plays.append({tr("%n time(s)", nullptr, times), times, {}});
    form->addList({tr("&Play"), tr("How often an animation is played")},
                  {"KelMovie.encode.gif.playLoop", &C::encodeGifPlayLoop}, plays);
    form->enableNextWhile(nullptr);
    form->addSwitch({tr("&Leave recording after export"), tr("Leaves the recording mode when an export is complete")},
                    {"KelMovie.encode.exitRecordAfterEncode", &C::encodeExitRecordAfterEncode});
}
