#include "screen/wayland/ShmBuffer.h"

#include <unistd.h>

namespace kel
{

namespace
{

std::size_t bytes(const ShmBuffer::Shape &shape)
{
    return std::size_t(shape.stride) * std::size_t(shape.size.height());
}

} // namespace

QImage::Format ShmBuffer::imageFormat(std::uint32_t format)
{
    switch (format) {
    case WL_SHM_FORMAT_XRGB8888:
    case WL_SHM_FORMAT_ARGB8888:
        return QImage::Format_RGB32;
    case WL_SHM_FORMAT_XBGR8888:
    case WL_SHM_FORMAT_ABGR8888:
        return QImage::Format_RGBX8888;
    case WL_SHM_FORMAT_XRGB2101010:
    case WL_SHM_FORMAT_ARGB2101010:
        return QImage::Format_RGB30;
    case WL_SHM_FORMAT_XBGR2101010:
    case WL_SHM_FORMAT_ABGR2101010:
        return QImage::Format_BGR30;
    case WL_SHM_FORMAT_RGB565:
        return QImage::Format_RGB16;
    default:
        return QImage::Format_Invalid;
    }
}

ShmBuffer::ShmBuffer(wl_shm *shm, const Shape &shape)
    : m_shape(shape)
    , m_memory(bytes(shape))
{
    const int descriptor = m_memory.data() ? m_memory.descriptor() : -1;
    if (descriptor < 0)
        return;
    const WaylandPtr<wl_shm_pool> pool(wl_shm_create_pool(shm, descriptor, int(bytes(shape))));
    m_buffer.reset(
        wl_shm_pool_create_buffer(pool.get(), 0, shape.size.width(), shape.size.height(), shape.stride, shape.format));
    close(descriptor);
}

QImage ShmBuffer::image(const QRect &part) const
{
    const QImage::Format format = imageFormat(m_shape.format);
    const int bytesPerPixel = QImage::toPixelFormat(format).bitsPerPixel() / 8;
    const unsigned char *const first =
        m_memory.data() + std::ptrdiff_t(part.y()) * m_shape.stride + std::ptrdiff_t(part.x()) * bytesPerPixel;
    return {first, part.width(), part.height(), m_shape.stride, format};
}

} // namespace kel
