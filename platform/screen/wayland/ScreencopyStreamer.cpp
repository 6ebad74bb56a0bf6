#include "screen/wayland/ScreencopyStreamer.h"

#include "logging/PlatformLog.h"

#include <QDebug>

#include <algorithm>

#include <sys/eventfd.h>
#include <unistd.h>

namespace kel
{

using namespace std::chrono_literals;

namespace
{

constexpr std::chrono::milliseconds kFirstPictureLimit = 200ms;
constexpr std::chrono::milliseconds kRetryInterval = 200ms;
constexpr QImage::Format kFrameFormat = QImage::Format_ARGB32_Premultiplied;

QRect scaled(const QRect &rect, const QSize &from, const QSize &to)
{
    const double x = double(to.width()) / from.width();
    const double y = double(to.height()) / from.height();
    return {QPoint(qRound(rect.left() * x), qRound(rect.top() * y)),
            QPoint(qRound((rect.right() + 1) * x) - 1, qRound((rect.bottom() + 1) * y) - 1)};
}

} // namespace

ScreencopyStreamer::ScreencopyStreamer(std::unique_ptr<WaylandConnection> connection, const QRect &rect,
                                       const QSize &frameSize, bool withPointer)
    : m_connection(std::move(connection))
    , m_frameSize(frameSize)
    , m_wake(eventfd(0, EFD_CLOEXEC))
{
    for (const auto &output : m_connection->outputs()) {
        const QRect part = output->geometry() & rect;
        if (part.isEmpty())
            continue;
        m_captures.push_back(std::make_unique<OutputCapture>(
            *m_connection, *output, part.translated(-output->geometry().topLeft()),
            scaled(part.translated(-rect.topLeft()), rect.size(), frameSize), withPointer, [this] {
                const std::lock_guard lock(m_mutex);
                m_pictureCame.notify_all();
            }));
    }
    if (m_captures.empty() || m_wake < 0)
        setError(QStringLiteral("The screen cannot be captured: the rectangle is on no screen."));
    else
        m_thread = std::thread([this] { run(); });
}

ScreencopyStreamer::~ScreencopyStreamer()
{
    if (m_thread.joinable()) {
        eventfd_write(m_wake, 1);
        m_thread.join();
    }
    if (m_wake >= 0)
        close(m_wake);
}

void ScreencopyStreamer::run()
{
    QDeadlineTimer nextPing(WaylandConnection::kReplyTimeout);
    bool isAwakened = false;
    while (!isAwakened && errorString().isEmpty()) {
        for (const auto &capture : m_captures)
            capture->requestIfDue();
        isAwakened = m_connection->dispatch(kRetryInterval, m_wake);
        checkOutputs();
        if (nextPing.hasExpired() && m_connection->isOpen()) {
            const bool isStalled = !m_connection->ping();
            if (isStalled && !m_isStalled)
                qCWarning(logScreen, "[ScreencopyStreamer] The compositor does not respond.");
            m_isStalled = isStalled;
            nextPing.setRemainingTime(WaylandConnection::kReplyTimeout);
        }
    }
}

void ScreencopyStreamer::checkOutputs()
{
    if (!m_connection->isOpen())
        return setError(QStringLiteral("The connection to the Wayland compositor is lost."));
    if (std::none_of(m_captures.begin(), m_captures.end(), [](const auto &capture) { return capture->isConnected(); }))
        return setError(QStringLiteral("The recorded screen was disconnected."));
    for (const auto &capture : m_captures) {
        if (!capture->problem().isEmpty())
            return setError(capture->problem());
    }
}

bool ScreencopyStreamer::hasFrameChanged()
{
    if (!errorString().isEmpty())
        return false;
    return m_filledKey == 0 ||
           std::any_of(m_captures.begin(), m_captures.end(), [](const auto &capture) { return capture->hasChanged(); });
}

bool ScreencopyStreamer::captureTo(QImage &image)
{
    if (!awaitPictures())
        return false;
    bool whole = m_filledKey == 0 || image.cacheKey() != m_filledKey;
    for (const auto &capture : m_captures)
        whole = whole || capture->needsWhole();
    if (whole && !prepare(image)) {
        setError(QStringLiteral("There is not enough memory for a frame of the screen."));
        return false;
    }
    for (const auto &capture : m_captures)
        capture->take(image, whole);
    m_filledKey = image.cacheKey();
    return true;
}

/// The first pictures are on their way when the first frame is asked for.
bool ScreencopyStreamer::awaitPictures()
{
    std::unique_lock lock(m_mutex);
    const auto hasAll = [this] {
        return std::all_of(m_captures.begin(), m_captures.end(),
                           [](const auto &capture) { return capture->hasPicture(); });
    };
    m_pictureCame.wait_for(lock, kFirstPictureLimit, [&] { return !m_error.isEmpty() || hasAll(); });
    return m_error.isEmpty() && hasAll();
}

/// An image for a whole frame, black where there is no screen.
bool ScreencopyStreamer::prepare(QImage &image) const
{
    if (image.size() != m_frameSize || image.format() != kFrameFormat || !image.isDetached())
        image = QImage(m_frameSize, kFrameFormat);
    image.fill(Qt::black);
    return !image.isNull();
}

QString ScreencopyStreamer::errorString() const
{
    const std::lock_guard lock(m_mutex);
    return m_error;
}

void ScreencopyStreamer::setError(const QString &error)
{
    qCWarning(logScreen, "[ScreencopyStreamer] %s", qUtf8Printable(error));
    const std::lock_guard lock(m_mutex);
    m_error = error;
    m_pictureCame.notify_all();
}

} // namespace kel
