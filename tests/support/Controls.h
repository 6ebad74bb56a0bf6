#pragma once

#include <QAbstractButton>
#include <QAccessible>
#include <QButtonGroup>
#include <QSet>
#include <QStringList>
#include <QWidget>

/// Accessibility faults of the visible controls in a window: not reachable by Tab, no accessible name, no tooltip.
inline QStringList controlFaults(QWidget *window)
{
    QSet<const QWidget *> reached;
    for (QWidget *widget = window->nextInFocusChain(); widget != window; widget = widget->nextInFocusChain()) {
        if (widget->focusPolicy() & Qt::TabFocus)
            reached.insert(widget);
    }
    QStringList faults;
    const auto widgets = window->findChildren<QWidget *>();
    for (QWidget *const widget : widgets) {
        const auto *const button = qobject_cast<QAbstractButton *>(widget);
        const bool isButton = button && button->focusPolicy() != Qt::NoFocus;
        // Tab reaches the checked button of a group, arrow keys the others.
        const bool isOneOfGroup = isButton && button->group() && button->group()->exclusive();
        if (!widget->isVisible() || !(isButton || reached.contains(widget)))
            continue;
        const QString name =
            QString("%1 %2 %3")
                .arg(QString::fromLatin1(widget->metaObject()->className()), widget->objectName(), widget->toolTip());
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(widget);
        if (!accessible || accessible->text(QAccessible::Name).isEmpty())
            faults.append(name + " has no name");
        if (isButton && widget->toolTip().isEmpty())
            faults.append(name + " has no tool tip");
        if (isButton && !isOneOfGroup && !reached.contains(widget) && widget->isEnabled())
            faults.append(name + " cannot be reached");
    }
    return faults;
}
