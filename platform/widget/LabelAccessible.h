#pragma once

class QAccessibleInterface;
class QObject;
class QString;

namespace kel
{

/// For QAccessible::installFactory(): presents a LabelWidthFloatPanel to assistive programs as a button with a menu.
QAccessibleInterface *labelAccessible(const QString &className, QObject *object);

} // namespace kel
