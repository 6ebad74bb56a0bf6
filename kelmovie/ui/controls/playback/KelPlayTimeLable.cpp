#include "ui/controls/playback/KelPlayTimeLable.h"

#include "text/ClockText.h"

using namespace kel;

class Q_DECL_HIDDEN KelPlayTimeLable::Private
{
public:
    qint64 durationMs = 0;
    qint64 playTimeMs = 0;
};

KelPlayTimeLable::KelPlayTimeLable(QWidget *parent)
    : QLabel(parent)
    , d(std::make_unique<Private>())
{
    setAccessibleName(tr("Playback time"));
    setToolTip(tr("Playback time and total length"));
    updateText();
}

KelPlayTimeLable::~KelPlayTimeLable() = default;

void KelPlayTimeLable::setDuration(qint64 ms)
{
    d->durationMs = ms;
}

void KelPlayTimeLable::setPlayTime(qint64 ms)
{
    d->playTimeMs = ms;
    updateText();
}

void KelPlayTimeLable::updateText()
{
    const QString played = ClockText::minutesSeconds(d->playTimeMs / 1000);
    setText(d->durationMs < 1 ? played : played + QLatin1Char('/') + ClockText::minutesSeconds(d->durationMs / 1000));
}
