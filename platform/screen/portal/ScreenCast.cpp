#include "screen/portal/ScreenCast.h"

#include "geometry/ScreenGeometry.h"
#include "logging/PlatformLog.h"
#include "screen/portal/PipeWireLibrary.h"

#include <QRegion>
#include <QtDebug>

#include <algorithm>
#include <utility>

namespace kel
{

namespace
{

// A desktop may send nothing until something on the screen changes.
constexpr std::chrono::seconds kPictureLimit{10};

QVector<QRect> monitorsShowing(const QRect &area)
{
    QVector<QRect> monitors;
    for (const ScreenGeometry &screen : screenGeometries()) {
        if (screen.logical.intersects(area))
            monitors.append(screen.logical);
    }
    return monitors;
}

/// Where the monitor of a stream is on the desktop. Its size there is that of Qt's screen, which may be scaled
/// differently from the portal's. A portal that does not tell is taken to show what was asked for.
QRect placeOf(const PortalSession::Stream &stream, const QVector<QRect> &needed)
{
    if (stream.monitor.topLeft().isNull() && stream.monitor.size().isEmpty() && needed.size() == 1)
        return needed.front();
    for (const ScreenGeometry &screen : screenGeometries()) {
        if (screen.logical.topLeft() == stream.monitor.topLeft())
            return screen.logical;
    }
    return stream.monitor;
}

bool isCovered(const QRect &area, const QVector<QRect> &monitors)
{
    QRegion open(area);
    for (const QRect &monitor : monitors)
        open -= monitor;
    return open.isEmpty();
}

} // namespace

double ScreenCast::Monitor::scale() const
{
    return logical.isEmpty() ? 1.0 : double(stream->picture().firstSize().width()) / logical.width();
}

ScreenCast::ScreenCast(bool withPointer)
    : m_withPointer(withPointer)
{
}

std::shared_ptr<ScreenCast> ScreenCast::create(const QRect &area, bool withPointer)
{
    const std::shared_ptr<ScreenCast> cast(new ScreenCast(withPointer), [](ScreenCast *one) { one->deleteLater(); });
    QMetaObject::invokeMethod(
        cast.get(), [one = cast.get(), area] { one->open(area); }, Qt::QueuedConnection);
    return cast;
}

void ScreenCast::open(const QRect &area)
{
    const QString missing = PipeWireLibrary::instance().error;
    if (!missing.isEmpty()) {
        fail(missing);
        return;
    }
    m_needed = monitorsShowing(area);
    if (m_needed.isEmpty()) {
        fail(QStringLiteral("The area to record is on no screen."));
        return;
    }
    m_pictureLimit.setSingleShot(true);
    connect(&m_pictureLimit, &QTimer::timeout, this, [this] {
        fail(QStringLiteral("The desktop sends no picture of the screen. Move the pointer and try again."));
    });
    start(m_tokens.token(m_needed));
}

void ScreenCast::start(const QString &restoreToken)
{
    m_usedToken = restoreToken;
    m_session = std::make_unique<PortalSession>();
    connect(m_session.get(), &PortalSession::started, this, &ScreenCast::onStarted);
    connect(m_session.get(), &PortalSession::declined, this, &ScreenCast::onDeclined);
    connect(m_session.get(), &PortalSession::failed, this, &ScreenCast::fail);
    connect(m_session.get(), &PortalSession::closed, this, &ScreenCast::onClosed);
    m_session->start({m_needed.size() > 1, m_withPointer, restoreToken});
}

void ScreenCast::onStarted()
{
    QVector<QRect> shown;
    for (const PortalSession::Stream &stream : m_session->streams())
        shown.append(placeOf(stream, m_needed));
    const bool showsAll =
        std::all_of(m_needed.begin(), m_needed.end(), [&](const QRect &needed) { return isCovered(needed, shown); });
    if (showsAll) {
        m_tokens.setToken(m_needed, m_session->restoreToken());
        openMonitors(shown);
        return;
    }
    // The monitors of a token may have moved since; without it a person is asked once more.
    if (!m_usedToken.isEmpty()) {
        m_tokens.setToken(m_needed, {});
        m_session.release()->deleteLater(); // which is emitting this
        start({});
        return;
    }
    fail(QStringLiteral("The area to record is on a screen that was not chosen. Try again and choose that screen."));
}

void ScreenCast::onDeclined()
{
    // Somebody was asked, so the token was not accepted.
    m_tokens.setToken(m_needed, {});
    answer({KelScreenPermission::Answer::Declined, QStringLiteral("The request to record the screen was declined.")});
}

void ScreenCast::openMonitors(const QVector<QRect> &shown)
{
    m_pictureLimit.start(kPictureLimit);
    for (int i = 0; i < shown.size(); ++i) {
        // Each monitor has its own connection, and a thread of its own.
        const quint32 node = m_session->streams()[i].node;
        m_session->openRemote([this, node, place = shown[i]](int remote, const QString &error) {
            if (remote < 0) {
                fail(QStringLiteral("The portal of this desktop does not hand out the picture of the screen: ") +
                     error);
                return;
            }
            auto stream = std::make_unique<CastStream>(remote, node);
            connect(stream.get(), &CastStream::pictureArrived, this, &ScreenCast::checkPictures);
            connect(stream.get(), &CastStream::ended, this, &ScreenCast::checkPictures);
            m_monitors.push_back({place, std::move(stream)});
            checkPictures();
        });
    }
}

void ScreenCast::checkPictures()
{
    if (m_isReady)
        return;
    for (const Monitor &monitor : m_monitors) {
        const QString error = monitor.stream->errorString();
        if (!error.isEmpty()) {
            fail(error);
            return;
        }
    }
    m_isReady = int(m_monitors.size()) == m_session->streams().size() &&
                std::none_of(m_monitors.begin(), m_monitors.end(),
                             [](const Monitor &monitor) { return monitor.stream->picture().size().isEmpty(); });
    if (m_isReady)
        answer({});
}

bool ScreenCast::shows(const QRect &area, bool withPointer) const
{
    if (!m_isReady || (!tellsPointer() && withPointer != m_withPointer))
        return false;
    QVector<QRect> shown;
    for (const Monitor &monitor : m_monitors) {
        if (monitor.stream->errorString().isEmpty())
            shown.append(monitor.logical);
    }
    const QVector<QRect> needed = monitorsShowing(area);
    return !needed.isEmpty() &&
           std::all_of(needed.begin(), needed.end(), [&](const QRect &monitor) { return isCovered(monitor, shown); });
}

void ScreenCast::onClosed()
{
    const QString reason = QStringLiteral("The desktop has ended the screen cast.");
    if (!m_isReady)
        fail(reason);
    for (const Monitor &monitor : m_monitors)
        monitor.stream->end(reason);
}

void ScreenCast::fail(const QString &error)
{
    answer({KelScreenPermission::Answer::Failed, error});
}

void ScreenCast::answer(const KelScreenPermission &permission)
{
    if (std::exchange(m_hasAnswered, true))
        return;
    m_pictureLimit.stop();
    if (!permission.reason.isEmpty())
        qCWarning(logScreen, "[ScreenCast] %s", qUtf8Printable(permission.reason));
    emit answered(permission);
}

} // namespace kel
