#include "ui/settings/EncodeFormatPanel.h"

#include "config/KelMovieConfigKeys.h"
#include "ui/settings/SettingsForm.h"

using namespace kel;

EncodeFormatPanel::EncodeFormatPanel(QWidget *parent)
    : QWidget(parent)
{
    using C = KelMovieConfig;
    auto *const form = new SettingsForm(this);
    connect(form, &SettingsForm::sigChanged, this, &EncodeFormatPanel::sigConfigUpdated);

    form->addHeading(tr("Export"));
    form->addChips({tr("&Format"), tr("File format of the export")},
                   {KelMovieConfigKeys::kPlaybackEncodeFormat, &C::playbackEncodeFormat},
                   {{QStringLiteral("MP4"), 0, tr("Video with sound; plays almost everywhere")},
                    {QStringLiteral("GIF"), 1, tr("256-color animation without sound; plays almost everywhere")},
                    {QStringLiteral("APNG"), 2, tr("Lossless animation in full color, without sound")},
                    {QStringLiteral("WebP"), 3, tr("Compact animation in full color, without sound")}});
    form->enableNextWhile([] { return gKelMovieConfig.playbackEncodeFormat != 0; });
    QVector<SettingsForm::Choice> plays{{tr("Forever"), 0, {}}, {tr("Once"), 1, {}}};
    for (const int times : {2, 3, 5, 10, 20})
        plays.append({tr("%n times", nullptr, times), times, {}});
    form->addList({tr("&Play"), tr("How many times an animation plays")},
                  {KelMovieConfigKeys::kEncodeGifPlayLoop, &C::encodeGifPlayLoop}, plays);
    form->enableNextWhile(nullptr);
    form->addSwitch({tr("&Exit recording after export"), tr("Exit recording mode when an export is complete")},
                    {KelMovieConfigKeys::kEncodeExitRecordAfterEncode, &C::encodeExitRecordAfterEncode});
}
