#include "ui/controls/recording/FloatPlaneRecordTime.h"

#include "config/KelMovieConfig.h"
#include "config/KelMovieConfigKeys.h"
#include "style/KelStyleTheme.h"
#include "ui/controls/ChoiceList.h"
#include "ui/controls/Setting.h"
#include "ui/controls/recording/KelRecordTimeLable.h"
#include "widget/ScaleFactor.h"

#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>

namespace kel
{

FloatPlaneRecordTime::FloatPlaneRecordTime(KelRecordTimeLable *label)
    : FloatPanel(label)
    , m_title(new QLabel(tr("Record delay"), this))
    , m_list(new ChoiceList(this))
{
    m_title->setObjectName(QStringLiteral("DescLabel"));
    m_list->setAccessibleName(m_title->text());
    for (const int seconds : {0, 1, 2, 3, 5, 10})
        m_list->addChoice(seconds == 0 ? tr("No delay") : tr("-%1s").arg(seconds), seconds);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_title);
    layout->addWidget(m_list);
    connect(m_list, &ChoiceList::sigChosen, this, [this, label](const QVariant &seconds) {
        Setting<int>{KelMovieConfigKeys::kRecordDelay, &KelMovieConfig::recordDelay}.setValue(seconds.toInt());
        label->updateText();
        hideManual();
    });
    FloatPlaneRecordTime::updateQSS();
}

void FloatPlaneRecordTime::updateQSS()
{
    FloatPanel::updateQSS();
    KelStyleTheme::instance()->appleStyleTo(this, {QStringLiteral(":/KelMovie/FloatPanel"), scaleFactor(this)});
    m_list->fit(scaleFactor(this));
    m_list->setFixedWidth(std::max(m_list->width(), m_title->sizeHint().width()));
    m_list->setCurrentValue(gKelMovieConfig.recordDelay);
}

} // namespace kel
