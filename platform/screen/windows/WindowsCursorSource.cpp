#include "screen/windows/WindowsCursorSource.h"

#include "screen/CursorShape.h"
#include "screen/windows/CursorImage.h"

#include <QImage>

#include <algorithm>

namespace kel
{

namespace
{

constexpr qint64 kJiffiesPerSecond = 60; // the unit of frame durations
constexpr UINT kMaxFrames = 64;

/// Owns the bitmaps of a pointer.
class IconBitmaps
{
public:
    explicit IconBitmaps(HCURSOR cursor)
        : m_isValid(GetIconInfo(cursor, &m_info))
    {
    }
    ~IconBitmaps()
    {
        if (!m_isValid)
            return;
        DeleteObject(m_info.hbmMask);
        if (m_info.hbmColor)
            DeleteObject(m_info.hbmColor);
    }
    IconBitmaps(const IconBitmaps &) = delete;
    IconBitmaps &operator=(const IconBitmaps &) = delete;

    bool isValid() const { return m_isValid; }
    const ICONINFO &info() const { return m_info; }

private:
    ICONINFO m_info{};
    const bool m_isValid;
};

/// The pixels of a bitmap of any depth in 32 bits; null when they cannot be read.
QImage pixelsOf(HBITMAP bitmap)
{
    BITMAP described{};
    if (!GetObjectW(bitmap, sizeof described, &described))
        return {};
    QImage image(described.bmWidth, described.bmHeight, QImage::Format_ARGB32);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = described.bmWidth;
    info.bmiHeader.biHeight = -described.bmHeight; // top-down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    HDC screen = GetDC(nullptr);
    const bool done = !image.isNull() && GetDIBits(screen, bitmap, 0, UINT(described.bmHeight), image.bits(), &info,
                                                   DIB_RGB_COLORS) == described.bmHeight;
    ReleaseDC(nullptr, screen);
    return done ? image : QImage();
}

KelCursorShape shapeOf(HCURSOR cursor, double ratio)
{
    const IconBitmaps bitmaps(cursor);
    if (!bitmaps.isValid())
        return {};
    const ICONINFO &info = bitmaps.info();
    const QImage mask = pixelsOf(info.hbmMask);
    const QImage colors = info.hbmColor ? pixelsOf(info.hbmColor) : QImage();
    if (mask.isNull() || (info.hbmColor && colors.isNull()))
        return {};
    const QImage image = info.hbmColor ? CursorImage::fromColors(colors, mask) : CursorImage::fromMasks(mask);
    return cursorShape(image, {int(info.xHotspot), int(info.yHotspot)}, ratio);
}

/// One frame of an animated pointer, its duration and the number of frames. The function is undocumented; where it is
/// missing, an animated pointer shows its first frame.
HCURSOR frameOf(HCURSOR cursor, UINT number, DWORD *jiffies, UINT *count)
{
    using GetCursorFrameInfo = HCURSOR(WINAPI *)(HCURSOR, DWORD, DWORD, DWORD *, UINT *);
    static const auto function = reinterpret_cast<GetCursorFrameInfo>(
        reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(L"user32"), "GetCursorFrameInfo")));
    return function ? function(cursor, 0, number, jiffies, count) : nullptr;
}

} // namespace

WindowsCursorSource::WindowsCursorSource(const ScreenGeometry &screen)
    : m_screen(screen)
{
}

KelCursorPixmap WindowsCursorSource::read()
{
    CURSORINFO info{};
    info.cbSize = sizeof info;
    if (!GetCursorInfo(&info) || !(info.flags & CURSOR_SHOWING) || !info.hCursor)
        return {};
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (info.hCursor != m_cursor)
        load(info.hCursor);
    return {m_screen.toLogical({info.ptScreenPos.x, info.ptScreenPos.y}), currentShape()};
}

/// Other programs create and destroy pointers, and Windows reuses handles: a handle identifies an image only while the
/// pointer does not change.
void WindowsCursorSource::load(HCURSOR cursor)
{
    m_cursor = cursor;
    m_sinceLoaded.start();
    m_frames.clear();
    DWORD jiffies = 0;
    UINT count = 0;
    qint64 endMs = 0;
    HCURSOR frame = frameOf(cursor, 0, &jiffies, &count);
    for (UINT number = 1; frame && count > 1 && number <= std::min(count, kMaxFrames); ++number) {
        endMs += std::max<qint64>(jiffies, 1) * 1000 / kJiffiesPerSecond;
        m_frames.append({shapeOf(frame, m_screen.ratio), endMs});
        frame = frameOf(cursor, number, &jiffies, &count);
    }
    if (m_frames.isEmpty())
        m_frames.append({shapeOf(cursor, m_screen.ratio), 1});
}

const KelCursorShape &WindowsCursorSource::currentShape() const
{
    const qint64 now = m_sinceLoaded.elapsed() % m_frames.last().endMs;
    return std::find_if(m_frames.begin(), m_frames.end(), [now](const Frame &frame) { return now < frame.endMs; })
        ->shape;
}

} // namespace kel
