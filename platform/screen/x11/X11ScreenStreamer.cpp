#include "screen/x11/X11ScreenStreamer.h"

#include "logging/PlatformLog.h"
#include "screen/OpaqueCopy.h"

#include <QDebug>

#include <utility>

namespace kel
{

namespace
{

// Beyond this many rectangles one bigger transfer is cheaper than many small ones.
constexpr int maxRects = 128;

constexpr QImage::Format frameFormat = QImage::Format_ARGB32_Premultiplied;

} // namespace

X11ScreenStreamer::X11ScreenStreamer(std::unique_ptr<XcbConnection> connection, const QRect &rect)
    : m_connection(std::move(connection))
    , m_rect(rect)
    , m_damage(*m_connection)
    , m_reader(*m_connection, rect.size())
{
    if (m_reader.format() == QImage::Format_Invalid) {
        setError(QStringLiteral("The pixels of this X screen (depth %1) have an unknown format.")
                     .arg(m_connection->screen()->root_depth));
        return;
    }
    const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(*m_connection, m_connection->screen()->root, XCB_CW_EVENT_MASK, &events);
    if (!queryRootSize())
        explainFailure();
}

bool X11ScreenStreamer::hasFrameChanged()
{
    if (!update())
        return false;
    m_asked = true;
    return m_everything || !m_changed.isEmpty();
}

bool X11ScreenStreamer::captureTo(QImage &image)
{
    if (!update())
        return false;
    if (!m_everything && !m_asked)
        takeDamage();
    m_asked = false;

    const bool whole = m_everything || image.cacheKey() != m_filledKey;
    if (whole)
        m_damage.clear();
    if (!capture(whole, image))
        return false;
    // What was drawn between the question what changed and the reading shows only where something had changed before:
    // the picture would be of two moments. Who draws without a pause is left to the next capture.
    for (int rounds = 2; rounds > 0 && update() && !m_everything && !m_changed.isEmpty(); --rounds) {
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
                setError(QStringLiteral("There is no memory for a picture of the screen."));
                return false;
            }
            m_filledKey = image.cacheKey();
            m_changed = {};
            m_everything = !m_damage.isAvailable();
            setError({});
            return true;
        }
        // The screen may have shrunk before its event could tell.
        whole = m_everything = true;
        if (!queryRootSize())
            break;
    }
    explainFailure();
    return false;
}

QString X11ScreenStreamer::errorString() const
{
    const std::lock_guard lock(m_errorMutex);
    return m_error;
}

/// Learns what happened to the screen without waiting for the server, unless something was drawn. False when the screen
/// cannot be read now.
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
    if (damaged && !m_everything)
        takeDamage();
    if (m_connection->isOpen() && !m_connection->isStalled())
        return true;
    explainFailure();
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
    m_everything = true;
}

void X11ScreenStreamer::takeDamage()
{
    if (const auto region = m_damage.take())
        m_changed += *region & m_visible;
    else
        m_everything = true;
}

QVector<QRect> X11ScreenStreamer::rectsToRead(bool whole) const
{
    if (whole && m_visible.isEmpty())
        return {};
    if (whole)
        return {m_visible};
    if (m_changed.rectCount() > maxRects)
        return {m_changed.boundingRect()};
    return {m_changed.begin(), m_changed.end()};
}

bool X11ScreenStreamer::paint(const Blocks &blocks, bool whole, QImage &image) const
{
    if (whole) {
        // All of it is written: a buffer that others share need not be copied first.
        if (image.size() != m_rect.size() || image.format() != frameFormat || !image.isDetached()) {
            QImage fresh(m_rect.size(), frameFormat);
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

void X11ScreenStreamer::explainFailure()
{
    if (!m_connection->isOpen())
        setError(QStringLiteral("The connection to the X server is lost."));
    else if (m_connection->isStalled())
        setError(QStringLiteral("The X server does not answer."));
    else
        setError(QStringLiteral("The X server refuses to hand out the pixels of the screen."));
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
