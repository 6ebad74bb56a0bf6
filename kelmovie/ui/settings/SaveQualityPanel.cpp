#include "ui/settings/SaveQualityPanel.h"

#include "export/estimate/ExportSizeEstimator.h"
#include "ui/settings/SettingsForm.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QTimer>

#include <tuple>

using namespace kel;

namespace
{

constexpr int kPollIntervalMs = 250;

/// What the estimate depends on.
auto estimateInputs(const KelExportRequest &request)
{
    return std::make_tuple(request.format, request.fps, request.quality, request.speed, request.trimStartMs,
                           request.trimEndMs, request.playbackManager, request.size.width(), request.size.height());
}

} // namespace

class Q_DECL_HIDDEN SaveQualityPanel::Private
{
public:
    explicit Private(SaveQualityPanel *panel);

    void updateEstimate();
    void show(const ExportSizeEstimator::Estimate &estimate);
    KelExportRequest request() const;

    SettingsForm *const form;
    QLabel *const size;
    ExportSizeEstimator estimator;
    KelExportRequest estimated; ///< the request that is being or was estimated
    QTimer timer;
    QPointer<KelPlaybackTrackManager> manager;
    int startMs = -1;
    int endMs = -1;
    int fps = 25;
    QSize frameSize;
};

SaveQualityPanel::Private::Private(SaveQualityPanel *panel)
    : form(new SettingsForm(panel))
    , size(new QLabel(form))
{
    using C = KelMovieConfig;
    form->addHeading(tr("Quality"));
    form->addChips({tr("&Quality"), tr("Higher quality makes a larger file")}, {{}, &C::saveQuality},
                   {{tr("Small file"), 0, tr("Some blur, smallest file")},
                    {tr("Balanced"), 1, tr("Almost no visible loss, medium-sized file")},
                    {tr("Best"), 2, tr("Highest quality")}});
    size->setObjectName(QStringLiteral("Note"));
    size->setToolTip(tr("Estimated from samples of the recording"));
    size->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->addWidget(size);
    timer.setInterval(kPollIntervalMs);
    connect(&timer, &QTimer::timeout, panel, [this] { updateEstimate(); });
    connect(&estimator, &ExportSizeEstimator::sigEstimated, panel,
            [this](const ExportSizeEstimator::Estimate &estimate) { show(estimate); });
    connect(&estimator, &ExportSizeEstimator::sigFailed, panel,
            [this] { size->setText(tr("The file size cannot be estimated.")); });
}

KelExportRequest SaveQualityPanel::Private::request() const
{
    KelExportRequest request;
    request.format = gKelMovieConfig.playbackEncodeFormat;
    request.fps = fps;
    request.quality = KelMovieExportQuality();
    request.speed = manager ? manager->speed() : 1;
    request.trimStartMs = startMs;
    request.trimEndMs = endMs;
    request.size = frameSize;
    request.playbackManager = manager;
    return request;
}

/// Restarts the estimate if its inputs have changed.
void SaveQualityPanel::Private::updateEstimate()
{
    const KelExportRequest wanted = request();
    if (estimateInputs(wanted) == estimateInputs(estimated))
        return;
    estimated = wanted;
    if (!manager) {
        estimator.stop();
        size->clear();
        return;
    }
    size->setText(tr("Estimating the file size..."));
    estimator.start(wanted);
}

void SaveQualityPanel::Private::show(const ExportSizeEstimator::Estimate &estimate)
{
    const QLocale locale;
    const auto text = [&](double bytes) {
        return locale.formattedDataSize(qint64(bytes), 1, QLocale::DataSizeSIFormat);
    };
    const auto bytes = double(estimate.bytes);
    if (estimate.error == 0.0)
        size->setText(tr("About %1").arg(text(bytes)));
    else
        size->setText(tr("About %1 (%2 to %3)")
                          .arg(text(bytes), text(bytes / (1 + estimate.error)), text(bytes * (1 + estimate.error))));
}

SaveQualityPanel::SaveQualityPanel(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<Private>(this))
{
    connect(d->form, &SettingsForm::sigChanged, this, &SaveQualityPanel::sigConfigUpdated);
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

void SaveQualityPanel::setFrameRate(int fps)
{
    d->fps = fps;
}

void SaveQualityPanel::setFrameSize(const QSize &size)
{
    d->frameSize = size;
}

void SaveQualityPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    d->estimated = {};
    d->timer.start();
}

void SaveQualityPanel::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    d->timer.stop();
    d->estimator.stop();
}
