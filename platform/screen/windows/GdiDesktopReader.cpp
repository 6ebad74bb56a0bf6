#include "screen/windows/GdiDesktopReader.h"

#include "screen/windows/ImageChanges.h"
#include "screen/windows/Monitors.h"

#include <windows.h>

#include <utility>

namespace kel
{

/// Pixels that both GDI and QImage access.
class GdiDesktopReader::Bitmap
{
public:
    explicit Bitmap(const QSize &size)
        : m_context(CreateCompatibleDC(nullptr))
    {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = size.width();
        info.bmiHeader.biHeight = -size.height(); // top-down
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        void *bits = nullptr;
        m_bitmap = CreateDIBSection(m_context, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        if (!m_bitmap)
            return;
        m_original = SelectObject(m_context, m_bitmap);
        m_image = QImage(static_cast<uchar *>(bits), size.width(), size.height(), QImage::Format_RGB32);
    }
    ~Bitmap()
    {
        if (m_bitmap)
            SelectObject(m_context, m_original);
        DeleteObject(m_bitmap);
        DeleteDC(m_context);
    }
    Bitmap(const Bitmap &) = delete;
    Bitmap &operator=(const Bitmap &) = delete;

    const QImage &image() const { return m_image; }
    void clear() { m_image.fill(Qt::black); }

    /// Copies `source` of the desktop to the position `to`. False when Windows refuses.
    bool read(const QRect &source, const QPoint &to)
    {
        // The device context of the desktop belongs to the thread that gets it, so each read gets a new one.
        HDC desktop = GetDC(nullptr);
        const bool done = desktop && BitBlt(m_context, to.x(), to.y(), source.width(), source.height(), desktop,
                                            source.x(), source.y(), SRCCOPY);
        GdiFlush(); // GDI may defer drawing
        ReleaseDC(nullptr, desktop);
        return done;
    }

private:
    HDC m_context;
    HBITMAP m_bitmap = nullptr;
    HGDIOBJ m_original = nullptr;
    QImage m_image;
};

GdiDesktopReader::GdiDesktopReader(const QRect &rect)
    : m_rect(rect)
    , m_current(std::make_unique<Bitmap>(rect.size()))
    , m_previous(std::make_unique<Bitmap>(rect.size()))
{
}

GdiDesktopReader::~GdiDesktopReader() = default;

DesktopReader::Update GdiDesktopReader::update()
{
    if (m_current->image().isNull() || m_previous->image().isNull())
        return {State::Unusable, {}};
    const QRegion visible = monitorRegion() & m_rect;
    if (visible != m_visible) {
        m_visible = visible;
        m_hasImage = false;
        m_current->clear();
        m_previous->clear();
    }
    std::swap(m_current, m_previous);
    for (const QRect &part : visible) {
        if (!m_current->read(part, part.topLeft() - m_rect.topLeft())) {
            std::swap(m_current, m_previous);
            return {State::NotNow, {}};
        }
    }
    if (!std::exchange(m_hasImage, true))
        return {State::Ready, QRect(QPoint(), m_rect.size())};
    return {State::Ready, changedRegion(m_previous->image(), m_current->image())};
}

const QImage &GdiDesktopReader::image() const
{
    static const QImage none;
    return m_hasImage ? m_current->image() : none;
}

} // namespace kel
