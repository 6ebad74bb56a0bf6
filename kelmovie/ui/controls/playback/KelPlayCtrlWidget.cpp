#include "ui/controls/playback/KelPlayCtrlWidget.h"

#include "style/KelStyleTheme.h"
#include "text/ClockText.h"
#include "ui/controls/playback/PlayPauseButton.h"
#include "ui/controls/playback/PlayProgressBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace kel;

namespace
{

// Rounded, unlike in KelPlayTimeLable, so that playing to the end shows the total length.
QString roundedTime(int ms)
{
    return ClockText::minutesSeconds((ms + 500) / 1000);
}

} // namespace

class Q_DECL_HIDDEN KelPlayCtrlWidget::Private
{
public:
    QVBoxLayout *layout = nullptr;
    QHBoxLayout *row = nullptr;
    PlayProgressBar *progressBar = nullptr;
    QLabel *timeLabel = nullptr;
    int durationMs = 0;
    int playTimeMs = 0;
    PlayPauseButton *playPauseButton = nullptr;
};

KelPlayCtrlWidget::KelPlayCtrlWidget(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<Private>())
{
    setObjectName(QStringLiteral("KelPlayCtrlWidget"));
    updateQSS();

    d->layout = new QVBoxLayout(this);
    d->progressBar = new PlayProgressBar(true, this);
    connect(d->progressBar, &PlayProgressBar::sigPlayTimeChanged, this, &KelPlayCtrlWidget::sigPlayTimeChanged);
    connect(d->progressBar, &PlayProgressBar::sigPlayRangeChanged, this, &KelPlayCtrlWidget::sigPlayRangeChanged);
    d->layout->addWidget(d->progressBar);

    d->playPauseButton = new PlayPauseButton(this);
    connect(d->playPauseButton, &PlayPauseButton::sigPlay, this, &KelPlayCtrlWidget::sigPlayPause);
    d->timeLabel = new QLabel(QStringLiteral("00:00/00:00"), this);
    d->timeLabel->setObjectName(QStringLiteral("playTimeLabel"));
    d->timeLabel->setAccessibleName(tr("Playback time"));
    d->timeLabel->setToolTip(tr("Playback time and total length"));

    d->row = new QHBoxLayout;
    d->row->setContentsMargins(0, 0, 0, 0);
    d->row->addWidget(d->playPauseButton);
    d->row->addWidget(d->timeLabel);
    d->row->addStretch();
    d->layout->addLayout(d->row);
}

KelPlayCtrlWidget::~KelPlayCtrlWidget() = default;

void KelPlayCtrlWidget::setDuration(qint64 ms)
{
    d->durationMs = int(ms);
    d->progressBar->setDuration(d->durationMs);
    updateTime();
}

void KelPlayCtrlWidget::setPlayTime(qint64 ms)
{
    d->playTimeMs = int(ms);
    d->progressBar->setPlayTime(d->playTimeMs);
    updateTime();
}

void KelPlayCtrlWidget::setPlayButtonState(bool isPlaying)
{
    d->playPauseButton->setPlay(isPlaying);
}

PlayProgressBar *KelPlayCtrlWidget::progressBar() const
{
    return d->progressBar;
}

void KelPlayCtrlWidget::addControl(QWidget *control)
{
    d->row->addWidget(control);
}

void KelPlayCtrlWidget::updateQSS()
{
    KelStyleTheme::instance()->appleStyleTo(this, {QStringLiteral(":/KelMovie/KelPlayCtrlWidget")});
}

void KelPlayCtrlWidget::updateTime()
{
    d->timeLabel->setText(roundedTime(d->playTimeMs) + QLatin1Char('/') + roundedTime(d->durationMs));
}
