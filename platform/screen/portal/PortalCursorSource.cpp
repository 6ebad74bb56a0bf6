#include "screen/portal/PortalCursorSource.h"

#include "screen/CursorShape.h"

#include <utility>

namespace kel
{

PortalCursorSource::PortalCursorSource(std::shared_ptr<ScreenCast> cast)
    : m_cast(std::move(cast))
    , m_shapes(m_cast->monitors().size())
{
}

KelCursorPixmap PortalCursorSource::read()
{
    const std::lock_guard lock(m_mutex);
    for (std::size_t i = 0; i < m_shapes.size(); ++i) {
        const ScreenCast::Monitor &monitor = m_cast->monitors()[i];
        const CastPicture::Pointer pointer = monitor.stream->picture().pointer();
        if (pointer.shape.isNull())
            continue;
        const double scale = monitor.scale();
        KnownShape &known = m_shapes[i];
        if (known.number != pointer.shapeNumber)
            known = {pointer.shapeNumber, cursorShape(pointer.shape, pointer.hotspot, scale)};
        if (!known.shape.type.isEmpty())
            return {monitor.logical.topLeft() + pointer.position / scale, known.shape};
    }
    return {};
}

} // namespace kel
