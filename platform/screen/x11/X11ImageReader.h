#pragma once

#include "screen/memory/SharedMemory.h"
#include "screen/x11/XcbConnection.h"

#include <QImage>
#include <QRect>
#include <QVector>

#include <xcb/shm.h>

#include <optional>
#include <vector>

namespace kel
{

/// Reads pixels of the root window: through shared memory, or over the connection when the server cannot share memory.
class X11ImageReader
{
public:
    /// The pixels of one rectangle, valid until the next read().
    struct Block {
        QRect rect;
        const unsigned char *bits = nullptr;
        int bytesPerLine = 0;
        XcbPtr<xcb_get_image_reply_t> owner; ///< owns the bits when they were read over the connection
    };

    /// The rectangles of one read() fit into `maxSize` pixels.
    X11ImageReader(XcbConnection &connection, const QSize &maxSize);

    /// The format of the pixels (unused bits are undefined); Format_Invalid when QImage does not support it.
    QImage::Format format() const { return m_format; }

    /// Reads disjoint rectangles inside of the root window with one round trip. Empty when the server rejected one of
    /// them, did not respond in time or is gone.
    std::optional<std::vector<Block>> read(const QVector<QRect> &rects);

private:
    void attach(std::size_t bytes);
    unsigned request(const QRect &rect, std::size_t offset);
    int bytesPerLine(int width) const;

    XcbConnection &m_connection;
    QImage::Format m_format = QImage::Format_Invalid;
    int m_bitsPerPixel = 0;
    int m_linePadBits = 0;
    std::optional<SharedMemory> m_memory; // set only when the server has attached it
    xcb_shm_seg_t m_segment = XCB_NONE;
};

} // namespace kel
