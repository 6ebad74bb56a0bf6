#pragma once

class QAccessibleInterface;
class QObject;
class QString;

namespace kel
{

/// A factory for QAccessible::installFactory() that exposes PlayProgressBar as a slider in ms.
QAccessibleInterface *progressBarAccessible(const QString &className, QObject *object);

} // namespace kel
