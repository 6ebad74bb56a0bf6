#include "style/StyleFollower.h"

#include "logging/PlatformLog.h"

#include <QEvent>
#include <QFile>
#include <QWidget>

namespace kel
{

StyleFollower::StyleFollower(QWidget *widget, const KelStyleParams &params, KelStyleTheme *theme)
    : QObject(widget)
    , m_widget(widget)
    , m_theme(theme)
    , m_fixedScale(params.scale)
{
    QFile file(params.sheet);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(logUi, "[KelStyleTheme] No style sheet %s: %s", qPrintable(params.sheet),
                  qPrintable(file.errorString()));
        return;
    }
    m_sheet = QString::fromUtf8(file.readAll());
    apply();
    connect(theme, &KelStyleTheme::changed, this, &StyleFollower::apply);
    widget->installEventFilter(this);
}

// The screen of a widget is known only once it is shown, and may change later.
bool StyleFollower::eventFilter(QObject *watched, QEvent *event)
{
    if ((event->type() == QEvent::Show || event->type() == QEvent::ScreenChangeInternal) &&
        !qFuzzyCompare(scale(), m_appliedScale))
        apply();
    return QObject::eventFilter(watched, event);
}

double StyleFollower::scale() const
{
    return m_fixedScale > 0 ? m_fixedScale : KelStyleTheme::scaleOf(m_widget);
}

void StyleFollower::apply()
{
    m_appliedScale = scale();
    m_widget->setStyleSheet(m_theme->expanded(m_sheet, m_appliedScale));
}

} // namespace kel
