#include "screen/portal/PortalScreenStreamer.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kel
{

namespace
{

constexpr QImage::Format kFrameFormat = QImage::Format_ARGB32_Premultiplied;

QRect scaled(const QRect &rect, double scale)
{
    const auto pixels = [scale](int length) { return int(std::lround(length * scale)); };
    return {QPoint(pixels(rect.x()), pixels(rect.y())), QSize(pixels(rect.width()), pixels(rect.height()))};
}

} // namespace

PortalScreenStreamer::PortalScreenStreamer(std::shared_ptr<ScreenCast> cast, const QRect &area, const QSize &frameSize)
    : m_cast(std::move(cast))
    , m_frameSize(frameSize)
{
    for (const ScreenCast::Monitor &monitor : m_cast->monitors()) {
        if (monitor.logical.intersects(area))
            m_parts.push_back(partOf(monitor, area, frameSize));
    }
}

PortalScreenStreamer::Part PortalScreenStreamer::partOf(const ScreenCast::Monitor &monitor, const QRect &area,
                                                        const QSize &frameSize) const
{
    const QRect shown = monitor.logical & area;
    const double frameScale = double(frameSize.width()) / area.width();
    Part part;
    part.stream = monitor.stream.get();
    part.source = scaled(shown.translated(-monitor.logical.topLeft()), monitor.scale());
    part.target = shown == area ? QRect({0, 0}, frameSize) : scaled(shown.translated(-area.topLeft()), frameScale);
    return part;
}

bool PortalScreenStreamer::hasFrameChanged()
{
    if (!errorString().isEmpty())
        return false;
    return std::any_of(m_parts.begin(), m_parts.end(), [](const Part &part) {
        return part.number == 0 || part.stream->picture().hasChanged(part.source, part.number);
    });
}

bool PortalScreenStreamer::captureTo(QImage &image)
{
    if (!errorString().isEmpty() || !prepare(image))
        return false;
    for (Part &part : m_parts)
        copy(part, image);
    m_filledKey = image.cacheKey();
    return true;
}

/// Makes the image one that holds the last frame, or an empty one. False without memory for it.
bool PortalScreenStreamer::prepare(QImage &image)
{
    if (image.cacheKey() == m_filledKey)
        return true;
    if (image.size() != m_frameSize || image.format() != kFrameFormat || !image.isDetached()) {
        QImage fresh(m_frameSize, kFrameFormat);
        if (fresh.isNull())
            return false;
        image = std::move(fresh);
    }
    image.fill(Qt::black);
    for (Part &part : m_parts)
        part.number = 0;
    return true;
}

void PortalScreenStreamer::copy(Part &part, QImage &image)
{
    const CastPicture &picture = part.stream->picture();
    if (part.source.size() == part.target.size()) {
        part.number = picture.copyTo(image, part.target.topLeft(), part.source, part.number);
        return;
    }
    if (part.unscaled.isNull())
        part.unscaled = QImage(part.source.size(), kFrameFormat);
    part.number = picture.copyTo(part.unscaled, {0, 0}, part.source, part.number);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(part.target, part.unscaled);
}

QString PortalScreenStreamer::errorString() const
{
    for (const Part &part : m_parts) {
        const QString error = part.stream->errorString();
        if (!error.isEmpty())
            return error;
    }
    return m_parts.empty() ? QStringLiteral("The screen cast does not show the area.") : QString();
}

bool PortalScreenStreamer::isStalled() const
{
    return std::any_of(m_parts.begin(), m_parts.end(), [](const Part &part) { return part.stream->isPaused(); });
}

} // namespace kel
