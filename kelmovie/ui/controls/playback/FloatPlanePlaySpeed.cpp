#include "ui/controls/playback/FloatPlanePlaySpeed.h"

#include "ui/controls/ChoiceList.h"
#include "ui/controls/playback/PlaySpeedLabel.h"
#include "widget/ScaleFactor.h"

#include <QVBoxLayout>

namespace kel
{

FloatPlanePlaySpeed::FloatPlanePlaySpeed(PlaySpeedLabel *label)
    : FloatPanel(label)
    , m_label(label)
    , m_list(new ChoiceList(this))
{
    m_list->setAccessibleName(tr("Playback speed"));
    for (const double speed : {0.2, 0.5, 0.8, 1.0, 1.2, 1.5, 1.8, 2.0})
        m_list->addChoice(PlaySpeedLabel::speedText(speed), speed);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    connect(m_list, &ChoiceList::sigChosen, this, [this](const QVariant &speed) {
        m_label->setSpeed(speed.toDouble());
        emit m_label->sigSpeedChanged(m_label->getSpeed());
        hideManual();
    });
    FloatPlanePlaySpeed::updateQSS();
}

void FloatPlanePlaySpeed::updateQSS()
{
    FloatPanel::updateQSS();
    m_list->fit(scaleFactor(this));
    m_list->setCurrentValue(m_label->getSpeed());
}

} // namespace kel
