#pragma once

class QAccessibleInterface;
class QObject;
class QString;

namespace kel
{

/// For QAccessible::installFactory(): tells assistive programs that a LabelWidthFloatPanel is pressed, not read.
QAccessibleInterface *labelAccessible(const QString &className, QObject *object);

} // namespace kel
