#pragma once

#include "style/SystemTheme.h"

class QDBusPendingCallWatcher;
class QDBusVariant;

namespace kel
{

/// The color scheme of the desktop portal, which the common desktops provide. Unknown until the portal replies, and
/// without a portal.
class PortalTheme final : public SystemTheme
{
    Q_OBJECT

public:
    PortalTheme();

private slots:
    void onSettingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void onRead(QDBusPendingCallWatcher *watcher);
    void setFromPortal(QVariant value);
};

} // namespace kel
