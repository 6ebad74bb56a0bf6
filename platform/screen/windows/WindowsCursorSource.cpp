#include "screen/windows/WindowsCursorSource.h"

#include "screen/CursorShape.h"
#include "screen/windows/CursorPicture.h"

#include <QImage>

#include <algorithm>

namespace kel
{

namespace
{

constexpr qint64 jiffiesPerSecond = 60; // the unit of an animation's rates
constexpr UINT maxFrames = 64;

/// Frees what a system call has handed out.
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

/// The pixels of a bitmap, whatever its depth, in 32 bits; null when they cannot be read.
QImage pixelsOf(HBITMAP bitmap)
{
    BITMAP described{};
    if (!GetObjectW(bitmap, sizeof described, &described))
        return {};
    QImage image(described.bmWidth, described.bmHeight, QImage::Format_ARGB32);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = described.bmWidth;
    info.bmiHeader.biHeight = -described.bmHeight; // the first line is the top one
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
    const QImage picture = info.hbmColor ? CursorPicture::fromColors(colors, mask) : CursorPicture::fromMasks(mask);
    return cursorShape(picture, {int(info.xHotspot), int(info.yHotspot)}, ratio);
}

/// One picture of an animated pointer, for how long it is shown and how many there are. Windows has the function
/// without describing it; where it is missing, a pointer shows its first picture.
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

/// Other programs make and destroy pointers, and handles are used again: only as long as a pointer stays is its handle
/// trusted to mean the same picture.
void WindowsCursorSource::load(HCURSOR cursor)
{
    m_cursor = cursor;
    m_sinceSeen.start();
    m_frames.clear();
    DWORD jiffies = 0;
    UINT count = 0;
    qint64 endMs = 0;
    HCURSOR frame = frameOf(cursor, 0, &jiffies, &count);
    for (UINT number = 1; frame && count > 1 && number <= std::min(count, maxFrames); ++number) {
        endMs += std::max<qint64>(jiffies, 1) * 1000 / jiffiesPerSecond;
        m_frames.append({shapeOf(frame, m_screen.ratio), endMs});
        frame = frameOf(cursor, number, &jiffies, &count);
    }
    if (m_frames.isEmpty())
        m_frames.append({shapeOf(cursor, m_screen.ratio), 1});
}

const KelCursorShape &WindowsCursorSource::currentShape() const
{
    const qint64 now = m_sinceSeen.elapsed() % m_frames.last().endMs;
    return std::find_if(m_frames.begin(), m_frames.end(), [now](const Frame &frame) { return now < frame.endMs; })
        ->shape;
}

} // namespace kel
