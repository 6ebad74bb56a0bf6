#include "widget/LabelAccessible.h"

#include "widget/FloatPanel.h"
#include "widget/LabelWidthFloatPanel.h"

#include <QAccessibleWidget>

namespace kel
{

namespace
{

class LabelAccessible final : public QAccessibleWidget
{
public:
    explicit LabelAccessible(LabelWidthFloatPanel *label)
        : QAccessibleWidget(label, QAccessible::ButtonMenu)
        , m_label(label)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? m_label->text() : QAccessibleWidget::text(kind);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = m_label->canOpen();
        state.expandable = m_label->canOpen();
        state.expanded = m_label->panel() && m_label->panel()->isVisible();
        return state;
    }

    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (m_label->canOpen())
            names.prepend(showMenuAction());
        return names;
    }

    void doAction(const QString &name) override
    {
        if (name == showMenuAction())
            m_label->togglePanel();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    LabelWidthFloatPanel *const m_label;
};

} // namespace

QAccessibleInterface *labelAccessible(const QString &className, QObject *object)
{
    if (className != QLatin1String(LabelWidthFloatPanel::staticMetaObject.className()))
        return nullptr;
    return new LabelAccessible(static_cast<LabelWidthFloatPanel *>(object));
}

} // namespace kel
