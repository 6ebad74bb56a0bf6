#pragma once

class QAccessibleInterface;
class QObject;
class QString;

namespace kel
{

/// For QAccessible::installFactory(): a PlayProgressBar is a slider, in ms, to assistive programs.
QAccessibleInterface *progressBarAccessible(const QString &className, QObject *object);

} // namespace kel
