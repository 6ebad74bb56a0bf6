#include "ui/SaveQualityPanel.h"

#include "ui/SettingsForm.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QPointer>

class SaveQualityPanel::Private
{
public:
    QPointer<KelPlaybackTrackManager> manager;
    int startMs = -1;
    int endMs = -1;
};

SaveQualityPanel::SaveQualityPanel(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<Private>())
{
    using C = KelMovieConfig;
    auto *const form = new SettingsForm(this);
    connect(form, &SettingsForm::sigChanged, this, &SaveQualityPanel::sigConfigUpdated);

    form->addHeading(tr("Quality"));
    form->addChips({tr("&Quality"), tr("A better picture makes a larger file")}, {nullptr, &C::saveQuality},
                   {{tr("Small file"), 0, tr("Somewhat blurred, in a small file")},
                    {tr("Balanced"), 1, tr("Hardly any loss, in a file of moderate size")},
                    {tr("Best"), 2, tr("As true as the format allows")}});
}

SaveQualityPanel::~SaveQualityPanel() = default;

void SaveQualityPanel::setPlaybackManager(KelPlaybackTrackManager *manager)
{
    d->manager = manager;
}

void SaveQualityPanel::setRange(int startMs, int endMs)
{
    d->startMs = startMs;
    d->endMs = endMs;
}
