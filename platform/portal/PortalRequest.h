#pragma once

#include <QObject>
#include <QTimer>
#include <QVariant>

#include <chrono>

class QDBusPendingCallWatcher;

namespace kel
{

/// The service that lets a desktop's programs do what needs the user's permission.
namespace DesktopPortal
{
inline const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
inline const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");

/// A name for a request or a session that no other has.
QString newToken();
} // namespace DesktopPortal

/// A call of the portal that is answered later, perhaps by a person. Its deletion withdraws an open question.
class PortalRequest : public QObject
{
    Q_OBJECT

public:
    /// Calls `method` of `interface` with `arguments` and then `options`. Without an answer after `limit` it fails.
    PortalRequest(const QString &interface, const QString &method, QVariantList arguments, QVariantMap options,
                  std::chrono::milliseconds limit, QObject *parent = nullptr);
    ~PortalRequest() override;

signals:
    /// Exactly one of these is emitted, once.
    void succeeded(const QVariantMap &results);
    void declined();
    void failed(const QString &error); ///< English

private slots:
    void onResponse(uint code, const QVariantMap &results);

private:
    void onReply(QDBusPendingCallWatcher *watcher);
    bool end();
    void fail(const QString &error);

    const QString m_method;
    const QString m_path;
    QTimer m_limit;
    bool m_hasEnded = false;
};

} // namespace kel
