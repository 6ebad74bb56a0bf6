#pragma once

#include "screen/memory/SharedMemory.h"
#include "screen/wayland/WaylandPtr.h"

#include <QImage>

namespace kel
{

/// Memory that the compositor copies a picture into.
class ShmBuffer
{
public:
    struct Shape {
        std::uint32_t format = 0; ///< a wl_shm_format
        QSize size;
        int stride = 0;

        bool operator==(const Shape &other) const
        {
            return format == other.format && size == other.size && stride == other.stride;
        }
    };

    /// QImage::Format_Invalid for one that cannot be read.
    static QImage::Format imageFormat(std::uint32_t format);

    ShmBuffer(wl_shm *shm, const Shape &shape);

    const Shape &shape() const { return m_shape; }
    /// Null when there was not enough memory.
    wl_buffer *buffer() const { return m_buffer.get(); }

    /// A part of the picture, without a copy.
    QImage image(const QRect &part) const;

private:
    const Shape m_shape;
    const SharedMemory m_memory;
    WaylandPtr<wl_buffer> m_buffer;
};

} // namespace kel
