#include "ui/controls/recording/FloatPlaneFps.h"

#include "config/KelMovieConfig.h"
#include "config/KelMovieConfigKeys.h"
#include "ui/controls/ChoiceList.h"
#include "ui/controls/Setting.h"
#include "ui/controls/recording/KelRecordFpsLabel.h"
#include "widget/ScaleFactor.h"

#include <QVBoxLayout>

namespace kel
{

FloatPlaneFps::FloatPlaneFps(KelRecordFpsLabel *label)
    : FloatPanel(label)
    , m_list(new ChoiceList(this))
{
    m_list->setAccessibleName(tr("Frame rate"));
    for (const int fps : {5, 16, 24, 60})
        m_list->addChoice(QStringLiteral("%1FPS").arg(fps), fps);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    connect(m_list, &ChoiceList::sigChosen, this, [this, label](const QVariant &fps) {
        Setting<int>{KelMovieConfigKeys::kRecordFps, &KelMovieConfig::recordFps}.setValue(fps.toInt());
        label->updateText();
        hideManual();
    });
    FloatPlaneFps::updateQSS();
}

void FloatPlaneFps::updateQSS()
{
    FloatPanel::updateQSS();
    m_list->fit(scaleFactor(this));
    m_list->setCurrentValue(gKelMovieConfig.recordFps);
}

} // namespace kel
