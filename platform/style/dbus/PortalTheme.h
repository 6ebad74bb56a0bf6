#pragma once

#include "style/SystemTheme.h"

class QDBusPendingCallWatcher;
class QDBusVariant;

namespace kel
{

/// The colour scheme of the desktop portal, which the common desktops speak. Unknown until it answers, and where there
/// is none.
class PortalTheme final : public SystemTheme
{
    Q_OBJECT

public:
    PortalTheme();

private slots:
    void onSettingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void onRead(QDBusPendingCallWatcher *watcher);
    void take(QVariant value);
};

} // namespace kel
