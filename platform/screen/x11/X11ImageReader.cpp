#include "screen/x11/X11ImageReader.h"

#include <QSysInfo>

namespace kel
{

namespace
{

const xcb_visualtype_t *rootVisual(const xcb_screen_t &screen)
{
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0; xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == screen.root_visual)
                return visual.data;
        }
    }
    return nullptr;
}

QImage::Format imageFormat(int bitsPerPixel, const xcb_visualtype_t &visual)
{
    struct Known {
        int bitsPerPixel;
        unsigned red, green, blue;
        QImage::Format format;
    };
    static constexpr Known kKnownFormats[] = {
        {32, 0xff0000, 0xff00, 0xff, QImage::Format_RGB32},
        {32, 0x3ff00000, 0xffc00, 0x3ff, QImage::Format_RGB30},
        {16, 0xf800, 0x7e0, 0x1f, QImage::Format_RGB16},
        {16, 0x7c00, 0x3e0, 0x1f, QImage::Format_RGB555},
    };
    for (const Known &known : kKnownFormats) {
        if (known.bitsPerPixel == bitsPerPixel && known.red == visual.red_mask && known.green == visual.green_mask &&
            known.blue == visual.blue_mask)
            return known.format;
    }
    return QImage::Format_Invalid;
}

bool hasSharedMemoryByDescriptor(XcbConnection &connection)
{
    const auto *shm = xcb_get_extension_data(connection, &xcb_shm_id);
    if (!shm || !shm->present)
        return false;
    const auto version = connection.await<xcb_shm_query_version_reply_t>(xcb_shm_query_version(connection));
    return version && (version->major_version > 1 || (version->major_version == 1 && version->minor_version >= 2));
}

} // namespace

X11ImageReader::X11ImageReader(XcbConnection &connection, const QSize &maxSize)
    : m_connection(connection)
{
    const xcb_setup_t *setup = xcb_get_setup(connection);
    const xcb_screen_t &screen = *connection.screen();
    for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem > 0; xcb_format_next(&format)) {
        if (format.data->depth == screen.root_depth) {
            m_bitsPerPixel = format.data->bits_per_pixel;
            m_linePadBits = format.data->scanline_pad;
        }
    }
    const bool sameByteOrder =
        (setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST) == (QSysInfo::ByteOrder == QSysInfo::LittleEndian);
    const xcb_visualtype_t *visual = rootVisual(screen);
    if (!sameByteOrder || !visual)
        return;
    m_format = imageFormat(m_bitsPerPixel, *visual);
    if (hasSharedMemoryByDescriptor(connection))
        attach(std::size_t(bytesPerLine(maxSize.width())) * std::size_t(maxSize.height()));
}

void X11ImageReader::attach(std::size_t bytes)
{
    m_memory.emplace(bytes);
    const int descriptor = m_memory->data() ? m_memory->descriptor() : -1;
    if (descriptor >= 0) {
        m_segment = xcb_generate_id(m_connection);
        if (m_connection.check(xcb_shm_attach_fd_checked(m_connection, m_segment, descriptor, false)))
            return;
    }
    m_memory.reset(); // the server runs on another machine and cannot share memory
}

std::optional<std::vector<X11ImageReader::Block>> X11ImageReader::read(const QVector<QRect> &rects)
{
    std::vector<Block> blocks;
    std::vector<unsigned> sequences;
    std::size_t offset = 0;
    for (const QRect &rect : rects) {
        Block block;
        block.rect = rect;
        block.bytesPerLine = bytesPerLine(rect.width());
        if (m_memory)
            block.bits = m_memory->data() + offset;
        sequences.push_back(request(rect, offset));
        blocks.push_back(std::move(block));
        offset += std::size_t(bytesPerLine(rect.width())) * std::size_t(rect.height());
    }

    bool complete = true;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (!complete) {
            xcb_discard_reply(m_connection, sequences[i]);
        } else if (m_memory) {
            complete = bool(m_connection.await<xcb_shm_get_image_reply_t>(xcb_shm_get_image_cookie_t{sequences[i]}));
        } else {
            Block &block = blocks[i];
            block.owner = m_connection.await<xcb_get_image_reply_t>(xcb_get_image_cookie_t{sequences[i]});
            complete =
                block.owner && xcb_get_image_data_length(block.owner.get()) >= block.bytesPerLine * block.rect.height();
            block.bits = complete ? xcb_get_image_data(block.owner.get()) : nullptr;
        }
    }
    if (!complete)
        return std::nullopt;
    return blocks;
}

unsigned X11ImageReader::request(const QRect &rect, std::size_t offset)
{
    const xcb_window_t root = m_connection.screen()->root;
    const auto x = int16_t(rect.x()), y = int16_t(rect.y());
    const auto width = uint16_t(rect.width()), height = uint16_t(rect.height());
    if (m_memory)
        return xcb_shm_get_image(m_connection, root, x, y, width, height, ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment,
                                 uint32_t(offset))
            .sequence;
    return xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, x, y, width, height, ~0u).sequence;
}

int X11ImageReader::bytesPerLine(int width) const
{
    return (width * m_bitsPerPixel + m_linePadBits - 1) / m_linePadBits * m_linePadBits / 8;
}

} // namespace kel
