#pragma once

#include <QImage>
#include <QRegion>
#include <QSize>
#include <QString>

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>

/// A bare window in the upper left corner of an X screen, painted through shared memory.
class SceneWindow
{
public:
    /// An empty `size` means the whole screen.
    explicit SceneWindow(QSize size);
    ~SceneWindow();
    SceneWindow(const SceneWindow &) = delete;
    SceneWindow &operator=(const SceneWindow &) = delete;

    /// Why the window could not be created; empty on success.
    QString errorString() const { return m_error; }

    /// The image to paint into. Keeps its previous content.
    QImage &canvas() { return m_canvas; }

    /// Shows this part of the canvas at once, so that nobody captures half a frame. False when the display is lost.
    bool show(const QRegion &region);

private:
    bool shareCanvas(const QSize &size);
    bool wasUncovered();

    xcb_connection_t *m_connection = nullptr;
    xcb_window_t m_window = 0;
    xcb_gcontext_t m_context = 0;
    std::uint32_t m_segment = 0;
    void *m_memory = nullptr;
    std::size_t m_memorySize = 0;
    QImage m_canvas;
    QString m_error;
};
