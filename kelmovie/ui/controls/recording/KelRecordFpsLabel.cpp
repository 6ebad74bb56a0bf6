#include "ui/controls/recording/KelRecordFpsLabel.h"

#include "config/KelMovieConfig.h"
#include "ui/controls/recording/FloatPlaneFps.h"

using namespace kel;

KelRecordFpsLabel::KelRecordFpsLabel(QWidget *parent)
    : LabelWidthFloatPanel(parent)
{
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Minimum);
    setAccessibleName(tr("Frame rate"));
    setToolTip(tr("Frames recorded per second"));
    setPanel(new FloatPlaneFps(this));
    updateText();
}

void KelRecordFpsLabel::updateText()
{
    setText(QStringLiteral("%1FPS").arg(gKelMovieConfig.recordFps));
}
