#include "SceneWindow.h"

#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>
#include <xcb/shm.h>

SceneWindow::SceneWindow(QSize size)
    : m_connection(xcb_connect(nullptr, nullptr))
{
    if (xcb_connection_has_error(m_connection)) {
        m_error = "cannot connect to the display";
        return;
    }
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    if (size.isEmpty())
        size = QSize(screen->width_in_pixels, screen->height_in_pixels);
    if (screen->root_depth != 24 || !shareCanvas(size)) {
        m_error = "the display offers no 24-bit images in shared memory";
        return;
    }
    m_window = xcb_generate_id(m_connection);
    const std::uint32_t values[] = {1, XCB_EVENT_MASK_EXPOSURE}; // no window manager in between
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, 0, 0,
                      static_cast<std::uint16_t>(size.width()), static_cast<std::uint16_t>(size.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values);
    m_context = xcb_generate_id(m_connection);
    xcb_create_gc(m_connection, m_context, m_window, 0, nullptr);
    const std::uint32_t below[] = {XCB_STACK_MODE_BELOW}; // a desktop: other windows lie on it
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, below);
    xcb_map_window(m_connection, m_window);
}

SceneWindow::~SceneWindow()
{
    xcb_disconnect(m_connection);
    if (m_memory)
        munmap(m_memory, m_memorySize);
}

bool SceneWindow::shareCanvas(const QSize &size)
{
    m_memorySize = static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height()) * 4;
    m_segment = xcb_generate_id(m_connection);
    xcb_shm_create_segment_reply_t *reply = xcb_shm_create_segment_reply(
        m_connection, xcb_shm_create_segment(m_connection, m_segment, static_cast<std::uint32_t>(m_memorySize), false),
        nullptr);
    if (!reply)
        return false;
    const int descriptor = *xcb_shm_create_segment_reply_fds(m_connection, reply);
    std::free(reply);
    void *memory = mmap(nullptr, m_memorySize, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (memory == MAP_FAILED)
        return false;
    m_memory = memory;
    m_canvas = QImage(static_cast<uchar *>(memory), size.width(), size.height(), QImage::Format_RGB32);
    return true;
}

/// Whether something that lay over the scene has gone since the last call.
bool SceneWindow::wasUncovered()
{
    bool uncovered = false;
    while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
        uncovered = uncovered || (event->response_type & 0x7f) == XCB_EXPOSE;
        std::free(event);
    }
    return uncovered;
}

bool SceneWindow::show(const QRegion &region)
{
    xcb_grab_server(m_connection);
    for (const QRect &rect : wasUncovered() ? QRegion(m_canvas.rect()) : region) {
        const auto x = static_cast<std::int16_t>(rect.x());
        const auto y = static_cast<std::int16_t>(rect.y());
        const auto width = static_cast<std::uint16_t>(rect.width());
        const auto height = static_cast<std::uint16_t>(rect.height());
        xcb_shm_put_image(m_connection, m_window, m_context, static_cast<std::uint16_t>(m_canvas.width()),
                          static_cast<std::uint16_t>(m_canvas.height()), static_cast<std::uint16_t>(x),
                          static_cast<std::uint16_t>(y), width, height, x, y, 24, XCB_IMAGE_FORMAT_Z_PIXMAP, 0,
                          m_segment, 0);
    }
    xcb_ungrab_server(m_connection);
    // The server reads the canvas on its own time: it has to be done before anything is painted again.
    std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    return xcb_connection_has_error(m_connection) == 0;
}
