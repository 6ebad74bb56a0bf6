#include "ui/controls/recording/KelRecordTimeLable.h"

#include "config/KelMovieConfig.h"
#include "text/ClockText.h"
#include "ui/controls/recording/FloatPlaneRecordTime.h"

using namespace kel;

class Q_DECL_HIDDEN KelRecordTimeLable::Private
{
public:
    bool isRecording = false;
    qint64 recordTimeMs = 0;
};

KelRecordTimeLable::KelRecordTimeLable(QWidget *parent)
    : LabelWidthFloatPanel(parent)
    , d(std::make_unique<Private>())
{
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Minimum);
    setAccessibleName(tr("Recording time"));
    setToolTip(tr("Recording time. Click to set a start delay"));
    setPanel(new FloatPlaneRecordTime(this));
    updateText();
}

KelRecordTimeLable::~KelRecordTimeLable() = default;

void KelRecordTimeLable::setIsRecording(bool recording)
{
    d->isRecording = recording;
    panel()->setDisplayEnable(!recording);
    updateText();
}

void KelRecordTimeLable::setRecordTime(qint64 ms)
{
    if (ms / 1000 == d->recordTimeMs / 1000)
        return;
    d->recordTimeMs = ms;
    updateText();
}

void KelRecordTimeLable::updateText()
{
    const qint64 ms = d->isRecording ? d->recordTimeMs : -gKelMovieConfig.recordDelay * qint64(1000);
    setText(ms < 0 ? QLatin1Char('-') + ClockText::minutesSeconds(-ms / 1000, 1)
                   : ClockText::minutesSeconds(ms / 1000));
}
