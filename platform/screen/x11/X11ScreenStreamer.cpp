#include "screen/x11/X11ScreenStreamer.h"

#include "logging/PlatformLog.h"
#include "screen/OpaqueCopy.h"

#include <QDebug>

#include <utility>

namespace kel
{

namespace
{

// With more rectangles than this, one large transfer is cheaper than many small ones.
constexpr int kMaxRects = 128;

constexpr QImage::Format kFrameFormat = QImage::Format_ARGB32_Premultiplied;

} // namespace

X11ScreenStreamer::X11ScreenStreamer(std::unique_ptr<XcbConnection> connection, const QRect &rect)
    : m_connection(std::move(connection))
    , m_rect(rect)
    , m_damage(*m_connection)
    , m_reader(*m_connection, rect.size())
{
    if (m_reader.format() == QImage::Format_Invalid) {
        setError(QStringLiteral("The pixel format of this X screen (depth %1) is not supported.")
                     .arg(m_connection->screen()->root_depth));
        return;
    }
    const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(*m_connection, m_connection->screen()->root, XCB_CW_EVENT_MASK, &events);
    if (!queryRootSize())
        reportFailure();
}

bool X11ScreenStreamer::hasFrameChanged()
{
    if (!update())
        return false;
    m_isDamageFresh = true;
    return m_needsFullRead || !m_changed.isEmpty();
}

bool X11ScreenStreamer::captureTo(QImage &image)
{
    if (!update())
        return false;
    if (!m_needsFullRead && !m_isDamageFresh)
        takeDamage();
    m_isDamageFresh = false;

    const bool whole = m_needsFullRead || image.cacheKey() != m_filledKey;
    if (whole)
        m_damage.clear();
    if (!capture(whole, image))
        return false;
    // Drawing between the damage request and the read is captured only inside of the damaged area, so the frame could
    // mix two states. It is completed here, but not endlessly when a program draws without a pause.
    for (int rounds = 2; rounds > 0 && update() && !m_needsFullRead && !m_changed.isEmpty(); --rounds) {
        if (!capture(false, image))
            return false;
    }
    return true;
}

bool X11ScreenStreamer::capture(bool whole, QImage &image)
{
    for (int attempts = 3; attempts > 0; --attempts) {
        if (const auto blocks = m_reader.read(rectsToRead(whole))) {
            if (!paint(*blocks, whole, image)) {
                setError(QStringLiteral("There is not enough memory for a frame of the screen."));
                return false;
            }
            m_filledKey = image.cacheKey();
            m_changed = {};
            m_needsFullRead = !m_damage.isAvailable();
            setError({});
            return true;
        }
        // The screen may have shrunk before its event was received.
        whole = m_needsFullRead = true;
        if (!queryRootSize())
            break;
    }
    reportFailure();
    return false;
}

QString X11ScreenStreamer::errorString() const
{
    const std::lock_guard lock(m_errorMutex);
    return m_error;
}

/// Processes events without waiting for the server, unless something was drawn. False when the screen cannot currently
/// be read.
bool X11ScreenStreamer::update()
{
    if (m_reader.format() == QImage::Format_Invalid || m_connection->isStalled())
        return false;
    bool damaged = false;
    while (const auto event = m_connection->nextEvent()) {
        if (m_damage.isNotify(*event)) {
            damaged = true;
        } else if ((event->response_type & 0x7f) == XCB_CONFIGURE_NOTIFY) {
            const auto &root = reinterpret_cast<const xcb_configure_notify_event_t &>(*event);
            setRootSize({root.width, root.height});
        }
    }
    if (damaged && !m_needsFullRead)
        takeDamage();
    if (m_connection->isOpen() && !m_connection->isStalled()) {
        m_isStalled = false;
        return true;
    }
    reportFailure();
    return false;
}

bool X11ScreenStreamer::queryRootSize()
{
    const auto root =
        m_connection->await<xcb_get_geometry_reply_t>(xcb_get_geometry(*m_connection, m_connection->screen()->root));
    if (root)
        setRootSize({root->width, root->height});
    return bool(root);
}

void X11ScreenStreamer::setRootSize(const QSize &size)
{
    if (size == m_rootSize)
        return;
    m_rootSize = size;
    m_visible = m_rect & QRect({0, 0}, size);
    m_needsFullRead = true;
}

void X11ScreenStreamer::takeDamage()
{
    if (const auto region = m_damage.take())
        m_changed += *region & m_visible;
    else
        m_needsFullRead = true;
}

QVector<QRect> X11ScreenStreamer::rectsToRead(bool whole) const
{
    if (whole && m_visible.isEmpty())
        return {};
    if (whole)
        return {m_visible};
    if (m_changed.rectCount() > kMaxRects)
        return {m_changed.boundingRect()};
    return {m_changed.begin(), m_changed.end()};
}

bool X11ScreenStreamer::paint(const Blocks &blocks, bool whole, QImage &image) const
{
    if (whole) {
        // All pixels are overwritten, so a shared buffer need not be copied first.
        if (image.size() != m_rect.size() || image.format() != kFrameFormat || !image.isDetached()) {
            QImage fresh(m_rect.size(), kFrameFormat);
            if (fresh.isNull())
                return false;
            image = std::move(fresh);
        }
        if (m_visible != m_rect)
            image.fill(Qt::black);
    }
    for (const X11ImageReader::Block &block : blocks) {
        const QImage pixels(block.bits, block.rect.width(), block.rect.height(), block.bytesPerLine, m_reader.format());
        copyOpaque(pixels.convertToFormat(QImage::Format_RGB32), block.rect.topLeft() - m_rect.topLeft(), image);
    }
    return true;
}

void X11ScreenStreamer::reportFailure()
{
    if (!m_connection->isOpen())
        setError(QStringLiteral("The connection to the X server is lost."));
    else if (m_connection->isStalled())
        reportStall();
    else
        setError(QStringLiteral("The X server refuses access to the pixels of the screen."));
}

void X11ScreenStreamer::reportStall()
{
    if (!m_isStalled.exchange(true))
        qCWarning(logScreen, "[X11ScreenStreamer] The X server does not respond.");
}

void X11ScreenStreamer::setError(const QString &error)
{
    {
        const std::lock_guard lock(m_errorMutex);
        if (error == m_error)
            return;
        m_error = error;
    }
    if (!error.isEmpty())
        qCWarning(logScreen, "[X11ScreenStreamer] %s", qUtf8Printable(error));
}

} // namespace kel
