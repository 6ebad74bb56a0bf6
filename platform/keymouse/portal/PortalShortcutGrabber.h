#pragma once

#include "keymouse/GlobalShortcutGrabber.h"

#include <QHash>
#include <QMap>
#include <QTimer>
#include <QVariant>

#include <functional>

class QDBusMessage;
class QDBusObjectPath;

namespace kel
{

class PortalRequest;

/// Shortcuts of the desktop portal, which may ask the user and let the user choose other keys. All are bound at once,
/// as a session of the portal cannot change them.
class PortalShortcutGrabber final : public GlobalShortcutGrabber
{
    Q_OBJECT

public:
    PortalShortcutGrabber();
    ~PortalShortcutGrabber() override;

    QString problem() override;
    QString grab(int combination, const ShortcutPurpose &purpose) override;
    void release(int combination) override;
    QString trigger(int combination) const override;

private slots:
    void onActivated(const QDBusObjectPath &session, const QString &id);
    void onShortcutsChanged(const QDBusMessage &message);
    void onClosed();

private:
    void bind();
    void bindShortcuts();
    void request(const QString &method, const QVariantList &arguments, const QVariantMap &options,
                 const std::function<void(const QVariantMap &results)> &done);
    void setTriggers(const QVariant &shortcuts);
    void dropRequest();
    void close();
    void fail(const QString &error);

    QMap<int, ShortcutPurpose> m_wanted; // by combination
    QMap<int, ShortcutPurpose> m_bound;  // in the session, or on the way there
    QTimer m_bindSoon;                   // several are grabbed and released in a row
    PortalRequest *m_request = nullptr;
    QString m_session;                  // its path; empty without
    QHash<QString, QString> m_triggers; // by the purpose's id
};

} // namespace kel
