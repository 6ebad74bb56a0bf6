#include "ui/controls/playback/ProgressBarAccessible.h"

#include "text/ClockText.h"
#include "ui/controls/playback/PlayProgressBar.h"

#include <QAccessibleWidget>

namespace kel
{

namespace
{

class ProgressBarAccessible final : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit ProgressBarAccessible(PlayProgressBar *bar)
        : QAccessibleWidget(bar, QAccessible::Slider)
        , m_bar(bar)
    {
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? ClockText::minutesSeconds(m_bar->playTimeMs() / 1000)
                                          : QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override { return m_bar->playTimeMs(); }
    void setCurrentValue(const QVariant &value) override { m_bar->seekTo(value.toInt()); }
    QVariant minimumValue() const override { return m_bar->rangeStartMs(); }
    QVariant maximumValue() const override { return m_bar->rangeEndMs(); }
    QVariant minimumStepSize() const override { return 1; }

private:
    PlayProgressBar *const m_bar;
};

} // namespace

QAccessibleInterface *progressBarAccessible(const QString &className, QObject *object)
{
    if (className != QLatin1String(PlayProgressBar::staticMetaObject.className()))
        return nullptr;
    return new ProgressBarAccessible(static_cast<PlayProgressBar *>(object));
}

} // namespace kel
