#include "screen/wayland/OutputCapture.h"

#include "screen/OpaqueCopy.h"

#include <QPainter>
#include <QTransform>

#include <chrono>
#include <cstring>
#include <utility>

namespace kel
{

using namespace std::chrono_literals;

namespace
{

constexpr std::chrono::milliseconds kRetryInterval = 200ms; // while an output is switched off

OutputCapture &self(void *data)
{
    return *static_cast<OutputCapture *>(data);
}

bool isTurned(int transform)
{
    return transform != WL_OUTPUT_TRANSFORM_NORMAL;
}

QSize uprightSize(const QSize &size, int transform)
{
    return transform % 2 == 0 ? size : size.transposed();
}

/// Turns the picture of an output upright.
QTransform uprightTransform(int transform)
{
    QTransform result;
    if (transform >= WL_OUTPUT_TRANSFORM_FLIPPED)
        result.scale(-1, 1);
    result.rotate(90 * (transform % 4)); // before it is flipped
    return result;
}

QRect scaled(const QRect &rect, const QSize &from, const QSize &to)
{
    const auto x = [&](int value) { return int(qint64(value) * to.width() / from.width()); };
    const auto y = [&](int value) { return int(qint64(value) * to.height() / from.height()); };
    return {QPoint(x(rect.left()), y(rect.top())), QPoint(x(rect.right() + 1) - 1, y(rect.bottom() + 1) - 1)};
}

/// The rows from the first to the last that differ.
QRect changedRows(const QImage &before, const QImage &after)
{
    const auto differ = [&](int y) {
        return std::memcmp(before.constScanLine(y), after.constScanLine(y),
                           std::size_t(after.width()) * after.depth() / 8) != 0;
    };
    int top = 0;
    int bottom = after.height() - 1;
    while (top <= bottom && !differ(top))
        ++top;
    while (bottom > top && !differ(bottom))
        --bottom;
    return {QPoint(0, top), QPoint(after.width() - 1, bottom)};
}

} // namespace

const zwlr_screencopy_frame_v1_listener OutputCapture::kListener = {
    /* buffer */
    [](void *data, zwlr_screencopy_frame_v1 *frame, std::uint32_t format, std::uint32_t width, std::uint32_t height,
       std::uint32_t stride) {
        self(data).m_shape = {format, QSize(int(width), int(height)), int(stride)};
        if (zwlr_screencopy_frame_v1_get_version(frame) < ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION)
            self(data).copy();
    },
    /* flags */
    [](void *data, zwlr_screencopy_frame_v1 *, std::uint32_t flags) {
        self(data).m_next->isUpsideDown = flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT;
    },
    /* ready */
    [](void *data, zwlr_screencopy_frame_v1 *, std::uint32_t, std::uint32_t, std::uint32_t) { self(data).publish(); },
    /* failed */ [](void *data, zwlr_screencopy_frame_v1 *) { self(data).fail(); },
    /* damage */
    [](void *data, zwlr_screencopy_frame_v1 *, std::uint32_t x, std::uint32_t y, std::uint32_t width,
       std::uint32_t height) { self(data).m_damage += QRect(int(x), int(y), int(width), int(height)); },
    /* linux_dmabuf */ [](void *, zwlr_screencopy_frame_v1 *, std::uint32_t, std::uint32_t, std::uint32_t) {},
    /* buffer_done */ [](void *data, zwlr_screencopy_frame_v1 *) { self(data).copy(); },
};

bool OutputCapture::Picture::hasSameLayout(const Picture &other) const
{
    return buffer->shape() == other.buffer->shape() && source == other.source && target == other.target &&
           transform == other.transform && isUpsideDown == other.isUpsideDown;
}

OutputCapture::OutputCapture(WaylandConnection &connection, const WaylandOutput &output, const QRect &region,
                             const QRect &target, bool withPointer, std::function<void()> changed)
    : m_connection(connection)
    , m_output(output)
    , m_region(region)
    , m_target(target)
    , m_withPointer(withPointer)
    , m_changedHandler(std::move(changed))
    , m_next(std::make_unique<Picture>())
{
}

void OutputCapture::requestIfDue()
{
    if (!m_frame && isConnected() && m_problem.isEmpty() && m_nextRequest.hasExpired())
        request();
}

void OutputCapture::request()
{
    m_visible = m_region & QRect({0, 0}, m_output.geometry().size());
    if (m_visible.isEmpty())
        return fail();
    m_damage = {};
    m_next->isUpsideDown = false;
    m_next->transform = m_output.transform();
    // Compositors disagree about regions of turned outputs.
    m_frame.reset(
        isTurned(m_next->transform)
            ? zwlr_screencopy_manager_v1_capture_output(m_connection.screencopy(), m_withPointer, m_output.output())
            : zwlr_screencopy_manager_v1_capture_output_region(m_connection.screencopy(), m_withPointer,
                                                               m_output.output(), m_visible.x(), m_visible.y(),
                                                               m_visible.width(), m_visible.height()));
    zwlr_screencopy_frame_v1_add_listener(m_frame.get(), &kListener, this);
}

/// The compositor has said what it needs.
void OutputCapture::copy()
{
    if (ShmBuffer::imageFormat(m_shape.format) == QImage::Format_Invalid)
        return giveUp(QStringLiteral("The pixel format of this screen (%1) is not supported.").arg(m_shape.format));
    if (!m_next->buffer || !(m_next->buffer->shape() == m_shape))
        m_next->buffer = std::make_unique<ShmBuffer>(m_connection.shm(), m_shape);
    wl_buffer *const buffer = m_next->buffer->buffer();
    if (!buffer)
        return giveUp(QStringLiteral("There is not enough memory for a frame of the screen."));
    if (hasPicture()) // before, there may never be any damage to wait for
        zwlr_screencopy_frame_v1_copy_with_damage(m_frame.get(), buffer);
    else
        zwlr_screencopy_frame_v1_copy(m_frame.get(), buffer);
}

void OutputCapture::publish()
{
    const QSize upright = uprightSize(m_shape.size, m_next->transform);
    m_next->source =
        isTurned(m_next->transform) ? scaled(m_visible, m_output.geometry().size(), upright) : QRect({0, 0}, upright);
    m_next->target = scaled(m_visible.translated(-m_region.topLeft()), m_region.size(), m_target.size());
    m_next->target.translate(m_target.topLeft());
    const bool isComparable = m_newest && m_next->hasSameLayout(*m_newest);
    const QRegion changed = isComparable ? changedPart() : QRegion();
    {
        const std::lock_guard lock(m_mutex);
        m_needsWhole = m_needsWhole || !isComparable;
        m_changed += changed;
        std::swap(m_next, m_newest);
    }
    m_hasPicture = true;
    if (!m_next)
        m_next = std::make_unique<Picture>();
    request();
    m_changedHandler();
}

/// Where the next picture differs from the newest. The reported damage is only a hint: compositors disagree whether it
/// counts from the corner of the region or of the output, and some report damage outside of the region.
QRegion OutputCapture::changedPart() const
{
    const QRect all({0, 0}, m_shape.size);
    QRegion hint = all;
    if (!isTurned(m_next->transform) && !m_next->isUpsideDown) {
        const QPoint offset = scaled(m_visible, m_visible.size(), m_shape.size).topLeft();
        hint = (m_damage + m_damage.translated(-offset)) & all;
    }
    QRegion changed;
    for (const QRect &part : hint)
        changed += changedRows(m_newest->buffer->image(part), m_next->buffer->image(part)).translated(part.topLeft());
    return changed;
}

void OutputCapture::fail()
{
    m_frame.reset();
    m_nextRequest.setRemainingTime(kRetryInterval);
}

void OutputCapture::giveUp(const QString &problem)
{
    m_frame.reset();
    m_problem = problem;
    m_changedHandler();
}

bool OutputCapture::hasChanged() const
{
    const std::lock_guard lock(m_mutex);
    return m_newest && (m_needsWhole || !m_changed.isEmpty());
}

bool OutputCapture::needsWhole() const
{
    const std::lock_guard lock(m_mutex);
    return m_needsWhole;
}

void OutputCapture::take(QImage &frame, bool whole)
{
    const std::lock_guard lock(m_mutex);
    if (!m_newest)
        return;
    const QRect all({0, 0}, m_newest->buffer->shape().size);
    for (const QRect &part : whole ? QRegion(all) : m_changed)
        copyPart(part, frame);
    m_changed = {};
    m_needsWhole = false;
}

/// `part` is in pixels of the newest picture's buffer.
void OutputCapture::copyPart(const QRect &part, QImage &frame) const
{
    const Picture &picture = *m_newest;
    const QSize size = picture.buffer->shape().size;
    QImage pixels = picture.buffer->image(part);
    QRect place = part;
    if (picture.isUpsideDown) {
        pixels = pixels.mirrored();
        place.moveTop(size.height() - part.top() - part.height());
    }
    if (isTurned(picture.transform)) {
        const QTransform upright = uprightTransform(picture.transform);
        pixels = pixels.transformed(upright);
        place = QImage::trueMatrix(upright, size.width(), size.height()).mapRect(place);
        const QRect shown = place & picture.source;
        if (shown.isEmpty())
            return;
        pixels = pixels.copy(shown.translated(-place.topLeft()));
        place = shown.translated(-picture.source.topLeft());
    }
    pixels = pixels.convertToFormat(QImage::Format_RGB32);
    if (picture.source.size() == picture.target.size()) {
        copyOpaque(pixels, picture.target.topLeft() + place.topLeft(), frame);
        return;
    }
    // The compositor's scale is a fraction, which Qt rounds.
    QPainter painter(&frame);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(scaled(place, picture.source.size(), picture.target.size()).translated(picture.target.topLeft()),
                      pixels);
}

} // namespace kel
