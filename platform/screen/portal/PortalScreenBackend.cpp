#include "screen/portal/PortalScreenBackend.h"

#include "geometry/ScreenGeometry.h"
#include "portal/PortalRequest.h"
#include "screen/CaptureRect.h"
#include "screen/FailedScreenStreamer.h"
#include "screen/portal/PipeWireLibrary.h"
#include "screen/portal/PortalCursorSource.h"
#include "screen/portal/PortalScreenStreamer.h"
#include "screen/portal/ScreenCast.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <algorithm>
#include <utility>

namespace kel
{

namespace
{

constexpr int kMaxSide = 16384;

class PortalPreparation final : public KelScreenPreparation
{
public:
    PortalPreparation(std::shared_ptr<ScreenCast> cast, const Done &done)
        : m_cast(std::move(cast))
    {
        if (m_cast->isReady())
            QMetaObject::invokeMethod(
                &m_receiver, [done] { done({}); }, Qt::QueuedConnection);
        else
            QObject::connect(m_cast.get(), &ScreenCast::answered, &m_receiver, done);
    }

private:
    const std::shared_ptr<ScreenCast> m_cast;
    QObject m_receiver; // of the answer, while this object exists
};

} // namespace

/// Asks nobody: neither a person nor the portal, which may have to be started first.
QString PortalScreenBackend::errorString() const
{
    const QString missing = PipeWireLibrary::instance().error;
    if (!missing.isEmpty())
        return QStringLiteral("The screen cannot be captured: ") + missing;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return QStringLiteral("The screen cannot be captured: there is no session bus, and so no desktop portal.");
    const QString service = DesktopPortal::kService;
    if (!bus.interface()->isServiceRegistered(service) &&
        !bus.interface()->activatableServiceNames().value().contains(service))
        return QStringLiteral("The screen cannot be captured: there is no desktop portal. Install xdg-desktop-portal "
                              "and its part for this desktop.");
    return {};
}

std::unique_ptr<KelScreenPreparation> PortalScreenBackend::prepare(const QRect &rect, bool withPointer,
                                                                   const KelScreenPreparation::Done &done)
{
    const QString error = errorString();
    if (!error.isEmpty()) {
        done({KelScreenPermission::Answer::Failed, error});
        return nullptr;
    }
    std::shared_ptr<ScreenCast> cast = castOf(rect, withPointer);
    if (!cast) {
        cast = ScreenCast::create(rect, withPointer);
        m_casts.erase(std::remove_if(m_casts.begin(), m_casts.end(), [](const auto &one) { return one.expired(); }),
                      m_casts.end());
        m_casts.push_back(cast);
    }
    return std::make_unique<PortalPreparation>(std::move(cast), done);
}

bool PortalScreenBackend::isPointerInFrames() const
{
    const auto newest = m_casts.empty() ? nullptr : m_casts.back().lock();
    return newest && !newest->tellsPointer();
}

std::unique_ptr<KelScreenStreamer> PortalScreenBackend::createStreamer(const QRect &rect, bool withPointer)
{
    const QRect physical = physicalRect(rect);
    const QString error = captureRectError(physical, kMaxSide);
    if (!error.isEmpty())
        return std::make_unique<FailedScreenStreamer>(error);
    std::shared_ptr<ScreenCast> cast = castOf(rect, withPointer);
    if (!cast)
        return std::make_unique<FailedScreenStreamer>(
            QStringLiteral("The screen cannot be captured: nobody has been asked for it, or the cast has ended."));
    return std::make_unique<PortalScreenStreamer>(std::move(cast), rect, physical.size());
}

std::unique_ptr<KelCursorSource> PortalScreenBackend::createCursorSource(const QRect &rect)
{
    std::shared_ptr<ScreenCast> cast = castOf(rect, true);
    if (!cast || !cast->tellsPointer())
        return nullptr;
    return std::make_unique<PortalCursorSource>(std::move(cast));
}

/// The newest cast that shows the rectangle; null when there is none.
std::shared_ptr<ScreenCast> PortalScreenBackend::castOf(const QRect &rect, bool withPointer) const
{
    for (auto one = m_casts.rbegin(); one != m_casts.rend(); ++one) {
        std::shared_ptr<ScreenCast> cast = one->lock();
        if (cast && cast->shows(rect, withPointer))
            return cast;
    }
    return nullptr;
}

} // namespace kel
